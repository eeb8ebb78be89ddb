#include "OW_CIMException.hpp"
#include "OW_CIMModelData.hpp"
#include "OW_CIMObjectPath.hpp"

#include <string>

namespace OpenWBEM {

namespace {

constexpr const char* defaultNameSpace = "root";

[[noreturn]] void throwNoPath(const std::string& text) {
    const std::string message = "Invalid object path: " + text;
    OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, message.c_str());
}

// Reads a path text from left to right.
class PathParser {
public:
    explicit PathParser(const String& text) : text_(text.c_str(), text.length()) {}

    CIMObjectPath parse() {
        parseHost();
        parseNameSpaceAndClass();
        CIMObjectPath path{CIMName(toOwString(className_))};
        path.setFullNameSpace(nameSpace_);
        do {
            const std::string name = parseKeyName();
            path.addKey(CIMName(toOwString(name)), CIMValue(parseKeyValue()));
        } while (takeComma());
        return path;
    }

private:
    void parseHost() {
        const std::size_t mark = text_.find("://");
        if (mark == std::string::npos || mark > text_.find_first_of(".=\"")) {
            return;
        }
        const std::size_t start = mark + 3;
        const std::size_t end = text_.find('/', start);
        if (end == std::string::npos || end == start) {
            throwNoPath(text_);
        }
        nameSpace_.setProtocol(toOwString(text_.substr(0, mark)));
        setAddress(text_.substr(start, end - start));
        position_ = end + 1;
    }

    // An IPv6 address stands in brackets, so that its colons are not taken for that of the port.
    void setAddress(const std::string& address) {
        const std::size_t colon = address.find(':', address[0] == '[' ? address.find(']') : 0);
        nameSpace_.setHost(toOwString(address.substr(0, colon)));
        if (colon != std::string::npos) {
            try {
                nameSpace_.setPort(toOwString(address.substr(colon + 1)).toUInt16());
            } catch (const StringConversionException&) {
                throwNoPath(text_);
            }
        }
    }

    void parseNameSpaceAndClass() {
        const std::size_t end = std::min(text_.find('=', position_), text_.size());
        const std::size_t colon = text_.substr(0, end).rfind(':');
        if (colon != std::string::npos && colon >= position_) {
            nameSpace_.setNameSpace(toOwString(text_.substr(position_, colon - position_)));
            position_ = colon + 1;
        } else {
            nameSpace_.setNameSpace(defaultNameSpace);
        }
        const std::size_t dot = text_.find('.', position_);
        if (dot > end || dot == position_) {
            throwNoPath(text_);
        }
        className_ = text_.substr(position_, dot - position_);
        position_ = dot + 1;
    }

    std::string parseKeyName() {
        const std::size_t end = text_.find('=', position_);
        if (end == std::string::npos || end == position_) {
            throwNoPath(text_);
        }
        std::string name = text_.substr(position_, end - position_);
        position_ = end + 1;
        return name;
    }

    String parseKeyValue() {
        const bool isQuoted = position_ < text_.size() && text_[position_] == '"';
        const std::size_t start = isQuoted ? position_ + 1 : position_;
        const std::size_t end =
            isQuoted ? closingQuote(start) : std::min(text_.find(',', start), text_.size());
        if (!isQuoted && end == start) {
            throwNoPath(text_);
        }
        position_ = isQuoted ? end + 1 : end;
        const String value = toOwString(text_.substr(start, end - start));
        return isQuoted ? CIMObjectPath::unEscape(value) : value;
    }

    std::size_t closingQuote(std::size_t start) const {
        for (std::size_t i = start; i < text_.size(); ++i) {
            if (text_[i] == '"') {
                return i;
            }
            if (text_[i] == '\\') {
                ++i;
            }
        }
        throwNoPath(text_);
    }

    // False at the end.
    bool takeComma() {
        if (position_ == text_.size()) {
            return false;
        }
        if (text_[position_] != ',') {
            throwNoPath(text_);
        }
        ++position_;
        return true;
    }

    std::string text_;
    std::size_t position_ = 0;
    CIMNameSpace nameSpace_;
    std::string className_;
};

void appendEscaped(std::string& text, char c) {
    static const char names[] = "btnfr";
    static const char characters[] = "\b\t\n\f\r";
    const char* const found = c == '\0' ? nullptr : std::char_traits<char>::find(characters, 5, c);
    if (c == '"' || c == '\\') {
        text += {'\\', c};
    } else if (found) {
        text += {'\\', names[found - characters]};
    } else if (static_cast<unsigned char>(c) < 0x20) {
        static const char digits[] = "0123456789ABCDEF";
        text += "\\x00";
        text += {digits[c >> 4], digits[c & 0xf]};
    } else {
        text += c;
    }
}

} // namespace

CIMObjectPath CIMObjectPath::parse(const String& text) {
    return text.empty() ? CIMObjectPath(CIMNULL) : PathParser(text).parse();
}

String CIMObjectPath::escape(const String& text) {
    const char* const begin = text.c_str();
    const char* const end = begin + text.length();
    const auto isSpecial = [](char c) {
        return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
    };
    if (std::none_of(begin, end, isSpecial)) {
        return text;
    }
    std::string result;
    std::for_each(begin, end, [&result](char c) { appendEscaped(result, c); });
    return toOwString(result);
}

String CIMObjectPath::unEscape(const String& text) {
    std::string result;
    for (std::size_t i = 0; i < text.length(); ++i) {
        if (text.charAt(i) == '\\') {
            ++i;
        }
        if (i < text.length()) {
            result += text.charAt(i);
        }
    }
    return toOwString(result);
}

} // namespace OpenWBEM
