#include "support/HttpHead.hpp"

#include <charconv>
#include <stdexcept>

#include <strings.h>

namespace test_support {

namespace {

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find("\r\n");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 2);
    return line;
}

template <class Number>
Number ReadNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::runtime_error("not a number: " + std::string(text));
    }
    return number;
}

} // namespace

std::string HttpAnswer::Header(std::string_view name) const {
    for (const auto& [key, value] : headers) {
        if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0) {
            return value;
        }
    }
    return {};
}

std::optional<HttpHead> ReadHead(std::string_view received) {
    const std::size_t end = received.find("\r\n\r\n");
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    HttpHead head;
    head.length = end + 4;
    std::string_view rest = received.substr(0, end + 2);
    const std::string_view statusLine = TakeLine(rest);
    if (!statusLine.starts_with("HTTP/1.1 ") || statusLine.size() < 12) {
        throw std::runtime_error("not an HTTP answer: " + std::string(statusLine));
    }
    head.answer.status = ReadNumber<int>(statusLine.substr(9, 3));
    while (!rest.empty()) {
        const std::string_view line = TakeLine(rest);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            throw std::runtime_error("not a header line: " + std::string(line));
        }
        const std::size_t value = std::min(line.find_first_not_of(' ', colon + 1), line.size());
        head.answer.headers.emplace_back(line.substr(0, colon), line.substr(value));
    }
    if (head.answer.status >= 200) {
        head.bodyLength = ReadNumber<std::size_t>(head.answer.Header("Content-Length"));
    }
    return head;
}

} // namespace test_support
