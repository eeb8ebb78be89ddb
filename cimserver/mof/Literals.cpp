#include "cimserver/mof/Literals.hpp"

#include <charconv>
#include <cstdio>

namespace cimserver::mof::syntax {

namespace {

constexpr std::size_t longestQuote = 40;

bool IsHighSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

char ToByte(std::uint32_t bits) {
    return static_cast<char>(static_cast<unsigned char>(bits));
}

void AppendUtf8(std::string& text, std::uint32_t code) {
    if (code < 0x80) {
        text += ToByte(code);
    } else if (code < 0x800) {
        text += ToByte(0xC0 | (code >> 6));
        text += ToByte(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += ToByte(0xE0 | (code >> 12));
        text += ToByte(0x80 | ((code >> 6) & 0x3F));
        text += ToByte(0x80 | (code & 0x3F));
    } else {
        text += ToByte(0xF0 | (code >> 18));
        text += ToByte(0x80 | ((code >> 12) & 0x3F));
        text += ToByte(0x80 | ((code >> 6) & 0x3F));
        text += ToByte(0x80 | (code & 0x3F));
    }
}

class Unescaper {
public:
    Unescaper(std::string_view raw, Place place) : raw_(raw), place_(place) {}

    std::string Run() {
        while (at_ < raw_.size()) {
            if (raw_[at_] == '\\') {
                TakeEscape();
            } else {
                text_ += raw_[at_++];
            }
        }
        return std::move(text_);
    }

private:
    [[noreturn]] void Fail(std::size_t at, const std::string& text) const {
        throw Error({place_.line, place_.column + at}, text);
    }

    void TakeEscape() {
        const std::size_t start = at_;
        const char letter = raw_[at_ + 1];
        if (letter == 'x' || letter == 'X') {
            TakeCode(start);
            return;
        }
        static constexpr std::string_view letters = "btnfr\"'\\";
        static constexpr std::string_view meanings = "\b\t\n\f\r\"'\\";
        const std::size_t index = letters.find(letter);
        if (index == std::string_view::npos) {
            Fail(start, "unknown escape " + Quote(raw_.substr(start, 2)));
        }
        text_ += meanings[index];
        at_ += 2;
    }

    void TakeCode(std::size_t start) {
        std::uint32_t code = TakeUnit();
        if (IsHighSurrogate(code) && at_ + 1 < raw_.size() && raw_[at_] == '\\' &&
            (raw_[at_ + 1] == 'x' || raw_[at_ + 1] == 'X')) {
            const std::uint32_t low = TakeUnit();
            if (IsLowSurrogate(low)) {
                AppendUtf8(text_, 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00));
                return;
            }
        }
        if (code == 0 || IsHighSurrogate(code) || IsLowSurrogate(code)) {
            Fail(start, Quote(raw_.substr(start, at_ - start)) + " stands for no character");
        }
        AppendUtf8(text_, code);
    }

    std::uint32_t TakeUnit() {
        const std::size_t start = at_;
        at_ += 2;
        const std::size_t digits = at_;
        std::uint32_t code = 0;
        while (at_ < raw_.size() && at_ - digits < 4 && IsHexDigit(raw_[at_])) {
            ++at_;
        }
        if (at_ == digits) {
            Fail(start, "expected a hexadecimal digit after " + Quote(raw_.substr(start, 2)));
        }
        std::from_chars(raw_.data() + digits, raw_.data() + at_, code, 16);
        return code;
    }

    std::string_view raw_;
    Place place_;
    std::size_t at_ = 0;
    std::string text_;
};

struct Digits {
    std::string_view text;
    int base = 10;
};

Digits SplitBase(std::string_view text) {
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        return {text.substr(2), 16};
    }
    if (text.size() > 1 && (text.back() == 'b' || text.back() == 'B')) {
        return {text.substr(0, text.size() - 1), 2};
    }
    if (text.size() > 1 && text[0] == '0') {
        return {text.substr(1), 8};
    }
    return {text, 10};
}

std::string_view WithoutSign(std::string_view text) {
    return text.front() == '+' || text.front() == '-' ? text.substr(1) : text;
}

} // namespace

std::string Unescape(std::string_view raw, Place place) {
    return Unescaper(raw, place).Run();
}

Integer ToInteger(const Literal& number) {
    const Digits digits = SplitBase(WithoutSign(number.text));
    Integer integer;
    integer.negative = number.text.front() == '-';
    const char* end = digits.text.data() + digits.text.size();
    const auto [stop, problem] =
        std::from_chars(digits.text.data(), end, integer.magnitude, digits.base);
    if (stop != end) {
        throw Error(number.place, Quote(number.text) + " is not a whole number");
    }
    if (problem != std::errc()) {
        throw Error(number.place, Quote(number.text) + " is too big for any type");
    }
    return integer;
}

double ToReal(const Literal& number) {
    const std::string_view text = WithoutSign(number.text);
    const char* end = text.data() + text.size();
    double real = 0;
    const auto [stop, problem] = std::from_chars(text.data(), end, real);
    if (stop != end) {
        throw Error(number.place, Quote(number.text) + " is not a number");
    }
    if (problem != std::errc()) {
        throw Error(number.place, Quote(number.text) + " is out of range");
    }
    return number.text.front() == '-' ? -real : real;
}

std::string Quote(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text.substr(0, longestQuote)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            quoted += c;
        } else {
            char hex[5];
            std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(byte));
            quoted += hex;
        }
    }
    return quoted + (text.size() > longestQuote ? "...'" : "'");
}

} // namespace cimserver::mof::syntax
