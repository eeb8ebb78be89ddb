#include "OW_String.hpp"

#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_Char16.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <limits>
#include <new>
#include <ostream>
#include <string>
#include <string_view>

namespace OpenWBEM {

namespace {

size_t lengthOf(const char* text) {
    return text ? std::strlen(text) : 0;
}

// Beyond this a text that grows gets no room in advance.
constexpr size_t LARGEST_SPARE = std::numeric_limits<UInt32>::max();

} // namespace

const size_t String::npos;

String::Block* String::allocate(size_t length, size_t spare) {
    const size_t room = std::min(spare, LARGEST_SPARE);
    void* const memory = std::malloc(sizeof(Block) + length + room + 1);
    if (!memory) {
        throw std::bad_alloc();
    }
    Block* const block = new (memory) Block;
    block->count.store(1, std::memory_order_relaxed);
    block->spare = static_cast<UInt32>(room);
    block->length = length;
    block->text()[length] = '\0';
    return block;
}

String::Block* String::copyOf(const char* text, size_t length, size_t spare) {
    Block* const block = allocate(length, spare);
    if (length > 0) {
        std::memcpy(block->text(), text, length);
    }
    return block;
}

void String::destroy(Block* block) noexcept {
    std::free(block);
}

String::String(const char* text) : m_block(text ? copyOf(text, std::strlen(text)) : nullptr) {
}

String::String(char character) : m_block(character != '\0' ? copyOf(&character, 1) : nullptr) {
}

String::String(const char* text, size_t length) : m_block(text ? copyOf(text, length) : nullptr) {
}

String::String(ETakeOwnershipFlag, char* allocatedMemory, size_t length)
    : String(allocatedMemory, length) {
    delete[] allocatedMemory;
}

String::String(const Char16Array& characters) : m_block(nullptr) {
    for (const Char16& character : characters) {
        concat(character.toString());
    }
}

String::String(const Bool& value) : String(value.toString()) {
}

String::String(const Char16& character) : String(character.toString()) {
}

size_t String::UTF8Length() const {
    const char* const text = c_str();
    return static_cast<size_t>(std::count_if(text, text + length(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    }));
}

const char& String::operator[](size_t index) const {
    if (!m_block) {
        throwNullCOWIntrusiveReference();
    }
    return m_block->text()[std::min(index, m_block->length)];
}

char& String::operator[](size_t index) {
    if (!m_block) {
        throwNullCOWIntrusiveReference();
    }
    if (index >= m_block->length) {
        thread_local char beyond;
        beyond = '\0';
        return beyond;
    }
    detach();
    return m_block->text()[index];
}

void String::detach() {
    if (m_block->count.load(std::memory_order_acquire) != 1) {
        Block* const own = copyOf(m_block->text(), m_block->length);
        release(m_block);
        m_block = own;
    }
}

void String::append(const char* text, size_t length) {
    Block* const old = m_block;
    if (old && old->spare >= length && old->count.load(std::memory_order_acquire) == 1) {
        std::memmove(old->text() + old->length, text, length);
        old->length += length;
        old->spare -= static_cast<UInt32>(length);
        old->text()[old->length] = '\0';
        return;
    }
    const size_t before = this->length();
    m_block = allocate(before + length, old ? (before + length) / 2 : 0);
    if (old) {
        std::memcpy(m_block->text(), old->text(), before);
    }
    std::memcpy(m_block->text() + before, text, length);
    release(old);
}

void String::keep(size_t begin, size_t length) {
    if (length == 0) {
        erase();
        return;
    }
    if (m_block->count.load(std::memory_order_acquire) == 1) {
        std::memmove(m_block->text(), m_block->text() + begin, length);
        m_block->text()[length] = '\0';
        m_block->length = length;
        m_block->spare = 0;
        return;
    }
    String(m_block->text() + begin, length).swap(*this);
}

String& String::concat(const char* text) {
    const size_t added = lengthOf(text);
    if (added > 0) {
        append(text, added);
    }
    return *this;
}

String& String::concat(const String& text) {
    if (!text.empty()) {
        append(text.c_str(), text.length());
    }
    return *this;
}

String& String::concat(char character) {
    if (character != '\0') {
        append(&character, 1);
    }
    return *this;
}

String String::substring(size_t begin, size_t length) const {
    if (begin >= this->length()) {
        return {};
    }
    const size_t rest = this->length() - begin;
    if (begin == 0 && length >= rest) {
        return *this;
    }
    return length == 0 ? String() : String(c_str() + begin, std::min(length, rest));
}

String& String::erase() {
    String().swap(*this);
    return *this;
}

String& String::erase(size_t index, size_t length) {
    const size_t whole = this->length();
    if (index < whole) {
        const size_t removed = std::min(length, whole - index);
        if (removed == whole) {
            return erase();
        }
        detach();
        char* const gap = m_block->text() + index;
        std::memmove(gap, gap + removed, whole - index - removed);
        keep(0, whole - removed);
    }
    return *this;
}

UInt32 String::hashCode() const {
    UInt32 hash = 0;
    for (const char byte : std::string_view(c_str(), length())) {
        hash = (hash << 4) + static_cast<UInt32>(static_cast<signed char>(byte) * 13);
        const UInt32 high = hash & 0xF0000000U;
        hash ^= high >> 24;
        hash ^= high;
    }
    return hash;
}

char* String::allocateCString() const {
    char* const copy = static_cast<char*>(std::malloc(length() + 1));
    if (!copy) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, c_str(), length() + 1);
    return copy;
}

int String::format(const char* fmt, ...) {
    va_list arguments;
    va_start(arguments, fmt);
    va_list again;
    va_copy(again, arguments);
    const int printed = std::vsnprintf(nullptr, 0, fmt, arguments);
    va_end(arguments);
    if (printed >= 0) {
        const auto size = static_cast<size_t>(printed);
        Block* const block = allocate(size, 0);
        std::vsnprintf(block->text(), size + 1, fmt, again);
        release(m_block);
        m_block = block;
    }
    va_end(again);
    return printed;
}

String String::getLine(std::istream& stream) {
    std::string line;
    std::getline(stream, line);
    return String(line.data(), line.size());
}

std::ostream& operator<<(std::ostream& stream, const String& text) {
    return stream << std::string_view(text.c_str(), text.length());
}

namespace {

template <class A, class B>
String joined(const A& a, const B& b) {
    String both(a);
    both.concat(b);
    return both;
}

} // namespace

String operator+(const String& a, const String& b) {
    return joined(a, b);
}

String operator+(const char* a, const String& b) {
    return joined(a, b);
}

String operator+(const String& a, const char* b) {
    return joined(a, b);
}

String operator+(char a, const String& b) {
    return joined(a, b);
}

String operator+(const String& a, char b) {
    return joined(a, b);
}

} // namespace OpenWBEM
