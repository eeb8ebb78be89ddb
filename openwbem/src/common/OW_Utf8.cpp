#include "OW_Utf8.hpp"

namespace OpenWBEM {

namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isIn(UInt32 character, UInt32 first, UInt32 last) {
    return character >= first && character <= last;
}

// Length by the first byte and the smallest code point that needs it.
struct Form {
    int length;
    UInt32 bits;
    UInt32 smallest;
};

Form formOf(unsigned char first) {
    if (first >= 0xC2 && first <= 0xDF) {
        return {2, first & 0x1FU, 0x80};
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return {3, first & 0x0FU, 0x800};
    }
    if (first >= 0xF0 && first <= 0xF4) {
        return {4, first & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

// Alphabets whose capitals stand in one block, their small letters `distance` above.
struct Block {
    UInt32 first;
    UInt32 last;
    UInt32 distance;
};

constexpr Block BLOCKS[] = {
    {'A', 'Z', 32},       {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0386, 0x0386, 38},
    {0x0388, 0x038A, 37}, {0x038C, 0x038C, 64}, {0x038E, 0x038F, 63}, {0x0391, 0x03A1, 32},
    {0x03A3, 0x03AB, 32}, {0x0400, 0x040F, 80}, {0x0410, 0x042F, 32}, {0x04C0, 0x04C0, 15},
};

// Ranges in which each capital is followed by its small letter, the first one a capital.
struct Pairs {
    UInt32 first;
    UInt32 last;
};

constexpr Pairs PAIRS[] = {
    {0x0100, 0x012F}, {0x0132, 0x0137}, {0x0139, 0x0148}, {0x014A, 0x0177}, {0x0179, 0x017E},
    {0x03D8, 0x03EF}, {0x0460, 0x0481}, {0x048A, 0x04BF}, {0x04C1, 0x04CE}, {0x04D0, 0x052F},
};

constexpr UInt32 CAPITAL_Y_DIAERESIS = 0x0178;
constexpr UInt32 SMALL_Y_DIAERESIS = 0x00FF;
constexpr UInt32 CAPITAL_SIGMA = 0x03A3;
constexpr UInt32 SMALL_FINAL_SIGMA = 0x03C2;
constexpr UInt32 SMALL_SIGMA = 0x03C3;

} // namespace

UInt32 Utf8::take(const char*& begin, const char* end) {
    const auto first = static_cast<unsigned char>(*begin++);
    if (first < 0x80) {
        return first;
    }
    const Form form = formOf(first);
    UInt32 character = form.bits;
    for (int i = 1; i < form.length; ++i) {
        if (end - begin < i || !isContinuation(begin[i - 1])) {
            return INVALID_BYTE + first;
        }
        character = (character << 6) | (static_cast<unsigned char>(begin[i - 1]) & 0x3FU);
    }
    if (form.length == 0 || character < form.smallest || character > 0x10FFFF ||
        isIn(character, 0xD800, 0xDFFF)) {
        return INVALID_BYTE + first;
    }
    begin += form.length - 1;
    return character;
}

int Utf8::put(UInt32 character, char* out) {
    if (character < 0x80) {
        out[0] = static_cast<char>(character);
        return 1;
    }
    if (character < 0x800) {
        out[0] = static_cast<char>(0xC0 | (character >> 6));
        out[1] = static_cast<char>(0x80 | (character & 0x3F));
        return 2;
    }
    out[0] = static_cast<char>(0xE0 | (character >> 12));
    out[1] = static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (character & 0x3F));
    return 3;
}

UInt32 Utf8::toLower(UInt32 character) {
    for (const Block& block : BLOCKS) {
        if (isIn(character, block.first, block.last)) {
            return character + block.distance;
        }
    }
    for (const Pairs& pairs : PAIRS) {
        if (isIn(character, pairs.first, pairs.last)) {
            return character + ((character - pairs.first) % 2 == 0 ? 1 : 0);
        }
    }
    return character == CAPITAL_Y_DIAERESIS ? SMALL_Y_DIAERESIS : character;
}

UInt32 Utf8::toUpper(UInt32 character) {
    for (const Block& block : BLOCKS) {
        if (isIn(character, block.first + block.distance, block.last + block.distance)) {
            return character - block.distance;
        }
    }
    for (const Pairs& pairs : PAIRS) {
        if (isIn(character, pairs.first, pairs.last)) {
            return character - ((character - pairs.first) % 2 == 0 ? 0 : 1);
        }
    }
    if (character == SMALL_FINAL_SIGMA) {
        return CAPITAL_SIGMA;
    }
    return character == SMALL_Y_DIAERESIS ? CAPITAL_Y_DIAERESIS : character;
}

UInt32 Utf8::fold(UInt32 character) {
    return character == SMALL_FINAL_SIGMA ? SMALL_SIGMA : toLower(character);
}

} // namespace OpenWBEM
