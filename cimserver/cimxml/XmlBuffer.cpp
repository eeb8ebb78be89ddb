#include "cimserver/cimxml/XmlBuffer.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace cimserver::cimxml {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

constexpr std::array<bool, 256> PlainBytes() {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte < 0x80; ++byte) {
        plain[byte] = byte != '<' && byte != '>' && byte != '&' && byte != '"';
    }
    plain['\t'] = plain['\n'] = true;
    return plain;
}

constexpr std::array<bool, 256> isPlain = PlainBytes();

constexpr std::uint64_t InEveryByte(unsigned char byte) {
    return 0x0101010101010101U * byte;
}

constexpr std::uint64_t ZeroBytes(std::uint64_t bytes) {
    return (bytes - InEveryByte(1)) & ~bytes;
}

template <class Word>
std::uint64_t Load(const char* at) {
    Word word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

/// Eight bytes at once: false only when all are plain; a tab or line end also makes it true.
bool MayHoldSpecial(std::uint64_t bytes) {
    const std::uint64_t controls = (bytes - InEveryByte(0x20)) & ~bytes;
    const std::uint64_t angles = ZeroBytes((bytes & InEveryByte(0xFD)) ^ InEveryByte('<'));
    const std::uint64_t quoteOrAnd = ZeroBytes((bytes & InEveryByte(0xFB)) ^ InEveryByte('"'));
    return ((bytes | controls | angles | quoteOrAnd) & InEveryByte(0x80)) != 0;
}

/// True only when all bytes are plain and there is no tab and no line end. The last eight may have
/// been looked at already.
bool IsPlain(std::string_view bytes) {
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    if (bytes.size() >= 8) {
        for (; end - at > 8; at += 8) {
            if (MayHoldSpecial(Load<std::uint64_t>(at))) {
                return false;
            }
        }
        return !MayHoldSpecial(Load<std::uint64_t>(end - 8));
    }
    if (bytes.size() >= 4) {
        return !MayHoldSpecial(Load<std::uint32_t>(at) | Load<std::uint32_t>(end - 4) << 32);
    }
    return std::all_of(at, end, [](char byte) {
        return byte >= ' ' && isPlain[static_cast<unsigned char>(byte)];
    });
}

const char* EndOfPlain(const char* at, const char* end) {
    while (end - at >= 8 && !MayHoldSpecial(Load<std::uint64_t>(at))) {
        at += 8;
    }
    while (at != end && isPlain[static_cast<unsigned char>(*at)]) {
        ++at;
    }
    return at;
}

struct Sequence {
    std::size_t length;
    bool isCharacter;
};

bool IsBetween(unsigned char byte, unsigned char first, unsigned char last) {
    return first <= byte && byte <= last;
}

std::size_t AnnouncedLength(unsigned char lead) {
    if (IsBetween(lead, 0xC2, 0xDF)) {
        return 2;
    }
    if (IsBetween(lead, 0xE0, 0xEF)) {
        return 3;
    }
    return IsBetween(lead, 0xF0, 0xF4) ? 4 : 1;
}

/// The second byte is where overlong forms, surrogates and numbers above U+10FFFF show.
bool IsSecondByte(unsigned char lead, unsigned char byte) {
    const unsigned char first = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char last = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return IsBetween(byte, first, last);
}

/// The UTF-8 sequence at `at`, whose first byte is not ASCII.
Sequence SequenceAt(const char* at, const char* end) {
    const auto byte = [at](std::size_t i) { return static_cast<unsigned char>(at[i]); };
    const auto available = static_cast<std::size_t>(end - at);
    const std::size_t length = AnnouncedLength(byte(0));
    if (length == 1) {
        return {1, false};
    }
    std::size_t good = 1;
    while (good < length && good < available &&
           (good == 1 ? IsSecondByte(byte(0), byte(1)) : IsBetween(byte(good), 0x80, 0xBF))) {
        ++good;
    }
    const bool isNoncharacter = good == 3 && byte(0) == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE;
    return {good, good == length && !isNoncharacter};
}

std::string_view EntityFor(char byte) {
    switch (byte) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\r':
        return "&#13;";
    default:
        return replacement;
    }
}

} // namespace

XmlBuffer::XmlBuffer(Output& output)
    : output_(output), memory_(new char[capacity]), next_(memory_.get()) {
}

void XmlBuffer::MarkupInPortions(std::string_view bytes) {
    while (!bytes.empty()) {
        MakeRoom(1);
        const std::size_t count = std::min(bytes.size(), Room());
        std::memcpy(next_, bytes.data(), count);
        next_ += count;
        bytes.remove_prefix(count);
    }
}

void XmlBuffer::Text(std::string_view bytes) {
    if (IsPlain(bytes)) {
        Markup(bytes);
        return;
    }
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    while (at != end) {
        const char* const plainEnd = EndOfPlain(at, end);
        Markup({at, static_cast<std::size_t>(plainEnd - at)});
        at = plainEnd == end ? end : Special(plainEnd, end);
    }
}

void XmlBuffer::Attribute(std::string_view bytes) {
    if (IsPlain(bytes)) {
        Markup(bytes);
        return;
    }
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find_first_of("\t\n"), bytes.size());
        Text(bytes.substr(0, end));
        bytes.remove_prefix(end);
        if (!bytes.empty()) {
            Markup(bytes.front() == '\t' ? "&#9;" : "&#10;");
            bytes.remove_prefix(1);
        }
    }
}

const char* XmlBuffer::Special(const char* at, const char* end) {
    if (static_cast<unsigned char>(*at) < 0x80) {
        Markup(EntityFor(*at));
        return at + 1;
    }
    const Sequence sequence = SequenceAt(at, end);
    Markup(sequence.isCharacter ? std::string_view(at, sequence.length) : replacement);
    return at + sequence.length;
}

void XmlBuffer::Flush() {
    output_.Write({memory_.get(), capacity - Room()});
    flushed_ = Position();
    next_ = memory_.get();
}

void XmlBuffer::Restart() {
    flushed_ = Position();
    next_ = memory_.get();
    output_.Restart();
}

} // namespace cimserver::cimxml
