// The text of the provider API: a reference-counted, copy-on-write byte string, UTF-8 by
// convention.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_Exception.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <iosfwd>

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(StringConversion, OW_COMMON_API)

// One pointer. The characters stand behind a small header in a single malloc'ed block, always
// terminated by a NUL; copying raises the block's count, changing a shared text copies it first. A
// String belongs to one thread at a time; Strings that share a block may be used in several
// threads.
//
// A String that never held text, or whose text was erased, has no block. It reads as "", and
// differs from a filled empty text in two places: operator[] throws, and so does every numeric
// conversion.
//
// Ignoring case, and changing it, know UTF-8 and nothing of the locale: ASCII; Latin-1 and Latin
// Extended-A (U+00C0-U+017E without the dotted and dotless i and the letters that have one case);
// Greek and Coptic, final sigma equal to sigma when compared; Cyrillic with its
// extensions (U+0400-U+052F). Each of these letters has as many bytes in one case as in the other.
// Bytes that are no UTF-8 stand for themselves.
class OW_COMMON_API String {
public:
    enum ETakeOwnershipFlag { E_TAKE_OWNERSHIP };
    // The two older names act as the two newer ones.
    enum EReturnDelimitersFlag {
        E_DISCARD_TOKENS = 0,
        E_RETURN_TOKENS = 1,
        E_DISCARD_DELIMITERS = 2,
        E_RETURN_DELIMITERS = 3
    };
    enum EEmptyTokenReturnFlag { E_SKIP_EMPTY_TOKENS, E_RETURN_EMPTY_TOKENS };
    enum EIgnoreCaseFlag { E_CASE_SENSITIVE, E_CASE_INSENSITIVE };
    static const size_t npos = ~static_cast<size_t>(0);

    String() noexcept : m_block(nullptr) {}
    // A null pointer gives the String that never held text.
    String(const char* text);
    String(const String& other) noexcept : m_block(other.m_block) {
        if (m_block) {
            m_block->count.fetch_add(1, std::memory_order_relaxed);
        }
    }
    String(String&& other) noexcept : m_block(other.m_block) { other.m_block = nullptr; }
    // Decimal text. There is no implicit way from a number to a String.
    explicit String(Int32 value);
    explicit String(UInt32 value);
    explicit String(Int64 value);
    explicit String(UInt64 value);
    // Six significant digits, whatever the locale.
    explicit String(Real64 value);
    // A NUL character gives the String that never held text.
    explicit String(char character);
    explicit String(const char* text, size_t length);
    // Takes over `length` characters and their NUL, made with new[].
    explicit String(ETakeOwnershipFlag, char* allocatedMemory, size_t length);
    // Older spellings of the argument's own toString().
    explicit String(const Char16Array& characters);
    explicit String(const Bool& value);
    explicit String(const Char16& character);
    explicit String(const CIMDateTime& value);
    explicit String(const CIMObjectPath& path);
    ~String() { release(m_block); }

    String& operator=(const String& other) noexcept {
        String(other).swap(*this);
        return *this;
    }
    String& operator=(String&& other) noexcept {
        swap(other);
        return *this;
    }
    void swap(String& other) noexcept {
        Block* const mine = m_block;
        m_block = other.m_block;
        other.m_block = mine;
    }

    // Valid until the String changes; never null.
    const char* c_str() const noexcept { return m_block ? m_block->text() : ""; }
    // Bytes.
    size_t length() const noexcept { return m_block ? m_block->length : 0; }
    bool empty() const noexcept { return length() == 0; }
    // Characters: bytes that do not continue a UTF-8 sequence.
    size_t UTF8Length() const;

    // NUL beyond the end.
    char charAt(size_t index) const { return index < length() ? m_block->text()[index] : '\0'; }
    // Beyond the end: a NUL, which may be written to without effect. Throws
    // NULLCOWIntrusiveReferenceException for a String without a block.
    const char& operator[](size_t index) const;
    char& operator[](size_t index);

    String& concat(const char* text);
    String& concat(const String& text);
    String& concat(char character);
    String& operator+=(const char* text) { return concat(text); }
    String& operator+=(const String& text) { return concat(text); }
    String& operator+=(char character) { return concat(character); }

    // Below, at or above 0, by bytes. A null pointer counts as "" here and in all that follows.
    int compareTo(const String& other) const;
    int compareTo(const char* other) const;
    int compareToIgnoreCase(const String& other) const;
    int compareToIgnoreCase(const char* other) const;
    // Lists are searched with it: most texts differ in length or in their first byte.
    bool equals(const String& other) const noexcept {
        if (m_block == other.m_block) {
            return true;
        }
        const size_t size = length();
        return size == other.length() && *c_str() == *other.c_str() &&
               std::memcmp(c_str(), other.c_str(), size) == 0;
    }
    bool equals(const char* other) const;
    bool equalsIgnoreCase(const String& other) const;
    bool equalsIgnoreCase(const char* other) const;

    // Only an empty text starts or ends with "".
    bool startsWith(const char* text, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
    bool startsWith(const String& text, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
    bool startsWith(char character) const;
    bool endsWith(const char* text, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
    bool endsWith(const String& text, EIgnoreCaseFlag ignoreCase = E_CASE_SENSITIVE) const;
    bool endsWith(char character) const;

    // npos when absent. "" is found where the search begins, and nowhere in an empty text.
    size_t indexOf(char character, size_t from = 0) const;
    size_t indexOf(const char* text, size_t from = 0) const;
    size_t indexOf(const String& text, size_t from = 0) const;
    // The last place at or before `from`.
    size_t lastIndexOf(char character, size_t from = npos) const;
    size_t lastIndexOf(const char* text, size_t from = npos) const;
    size_t lastIndexOf(const String& text, size_t from = npos) const;

    // What lies inside the text; nothing of it is an error.
    String substring(size_t begin, size_t length = npos) const;

    String& toLowerCase();
    String& toUpperCase();
    // White space of the C locale. A text that is nothing else loses its block.
    String& ltrim();
    String& rtrim();
    String& trim();
    String& erase();
    String& erase(size_t index, size_t length = npos);
    bool isSpaces() const;

    UInt32 hashCode() const;
    String toString() const { return *this; }
    // A copy made with malloc; the caller frees it.
    char* allocateCString() const;
    // Replaces the text by what printf would print and returns its length. The arguments may point
    // into the old text.
    int format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    // Up to the next newline, which is taken from the stream and left out.
    static String getLine(std::istream& stream);

    // The whole text must be a number by the rules of strtol, strtoul and strtod and fit the type,
    // else StringConversionException. "" is 0. toBool takes "true" and "false" in any case.
    UInt8 toUInt8(int base = 10) const;
    Int8 toInt8(int base = 10) const;
    UInt16 toUInt16(int base = 10) const;
    Int16 toInt16(int base = 10) const;
    UInt32 toUInt32(int base = 10) const;
    Int32 toInt32(int base = 10) const;
    UInt64 toUInt64(int base = 10) const;
    Int64 toInt64(int base = 10) const;
    unsigned int toUnsignedInt(int base = 10) const;
    int toInt(int base = 10) const;
    Real32 toReal32() const;
    Real64 toReal64() const;
    bool toBool() const;

    // Cuts at every character of `delims`. An empty token is one between two adjacent delimiters:
    // none is seen before the first or after the last. Without delimiters the text is one token.
    StringArray tokenize(const char* delims = " \n\r\t\v",
                         EReturnDelimitersFlag returnDelimiters = E_DISCARD_DELIMITERS,
                         EEmptyTokenReturnFlag returnEmptyTokens = E_SKIP_EMPTY_TOKENS) const;

private:
    struct Block {
        std::atomic<UInt32> count;
        // Bytes that may be appended in place.
        UInt32 spare;
        size_t length;

        char* text() { return reinterpret_cast<char*>(this + 1); }
        const char* text() const { return reinterpret_cast<const char*>(this + 1); }
    };

    static Block* allocate(size_t length, size_t spare);
    static Block* copyOf(const char* text, size_t length, size_t spare = 0);
    static void destroy(Block* block) noexcept;
    // With a count of 1 nobody else is left who could raise it: no read-modify-write is needed.
    static void release(Block* block) noexcept {
        if (block && (block->count.load(std::memory_order_acquire) == 1 ||
                      block->count.fetch_sub(1, std::memory_order_acq_rel) == 1)) {
            destroy(block);
        }
    }
    // Needs a block; keep also needs begin and length to lie inside. An empty rest drops the block.
    void detach();
    void append(const char* text, size_t length);
    void keep(size_t begin, size_t length);

    [[noreturn]] void refuse(const char* type) const;
    template <class Convert>
    auto convertAll(const char* type, Convert convert) const;
    template <class T>
    T toSigned(const char* type, int base) const;
    template <class T>
    T toUnsigned(const char* type, int base) const;
    template <class T>
    T toReal(const char* type, T (*read)(const char*, char**)) const;

    Block* m_block;
};

inline void swap(String& a, String& b) noexcept {
    a.swap(b);
}

OW_COMMON_API std::ostream& operator<<(std::ostream& stream, const String& text);

OW_COMMON_API String operator+(const String& a, const String& b);
OW_COMMON_API String operator+(const char* a, const String& b);
OW_COMMON_API String operator+(const String& a, const char* b);
OW_COMMON_API String operator+(char a, const String& b);
OW_COMMON_API String operator+(const String& a, char b);

inline bool operator==(const String& a, const String& b) {
    return a.equals(b);
}
inline bool operator==(const String& a, const char* b) {
    return a.equals(b);
}
inline bool operator==(const char* a, const String& b) {
    return b.equals(a);
}
inline bool operator!=(const String& a, const String& b) {
    return !a.equals(b);
}
inline bool operator!=(const String& a, const char* b) {
    return !a.equals(b);
}
inline bool operator!=(const char* a, const String& b) {
    return !b.equals(a);
}
inline bool operator<(const String& a, const String& b) {
    return a.compareTo(b) < 0;
}
inline bool operator<(const String& a, const char* b) {
    return a.compareTo(b) < 0;
}
inline bool operator<(const char* a, const String& b) {
    return b.compareTo(a) > 0;
}
inline bool operator<=(const String& a, const String& b) {
    return a.compareTo(b) <= 0;
}
inline bool operator<=(const String& a, const char* b) {
    return a.compareTo(b) <= 0;
}
inline bool operator<=(const char* a, const String& b) {
    return b.compareTo(a) >= 0;
}
inline bool operator>(const String& a, const String& b) {
    return a.compareTo(b) > 0;
}
inline bool operator>(const String& a, const char* b) {
    return a.compareTo(b) > 0;
}
inline bool operator>(const char* a, const String& b) {
    return b.compareTo(a) < 0;
}
inline bool operator>=(const String& a, const String& b) {
    return a.compareTo(b) >= 0;
}
inline bool operator>=(const String& a, const char* b) {
    return a.compareTo(b) >= 0;
}
inline bool operator>=(const char* a, const String& b) {
    return b.compareTo(a) <= 0;
}

} // namespace OpenWBEM
