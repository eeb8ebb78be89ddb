#include "support/HttpHead.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string>
#include <utility>

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
Number ReadNumber(std::string_view text, int base = 10) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::runtime_error("not a number: " + std::string(text));
    }
    return number;
}

HeaderList TakeHeaders(std::string_view& lines) {
    HeaderList headers;
    while (!lines.empty()) {
        const std::string_view line = TakeLine(lines);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            throw std::runtime_error("not a header line: " + std::string(line));
        }
        const std::size_t value = std::min(line.find_first_not_of(' ', colon + 1), line.size());
        headers.emplace_back(line.substr(0, colon), line.substr(value));
    }
    return headers;
}

/// Where the first chunk of size 0 begins; nothing while it has not come.
std::optional<std::size_t> EndOfChunks(std::string_view received, std::size_t at) {
    for (;;) {
        const std::size_t lineEnd = received.find("\r\n", at);
        if (lineEnd == std::string_view::npos) {
            return std::nullopt;
        }
        const auto size = ReadNumber<std::size_t>(received.substr(at, lineEnd - at), 16);
        if (size == 0) {
            return at;
        }
        at = lineEnd + 2 + size + 2;
        if (at > received.size()) {
            return std::nullopt;
        }
        if (received.substr(at - 2, 2) != "\r\n") {
            throw std::runtime_error("a chunk is longer than it says");
        }
    }
}

std::string JoinChunks(std::string_view chunks) {
    std::string body;
    while (!chunks.empty()) {
        const auto size = ReadNumber<std::size_t>(TakeLine(chunks), 16);
        body += chunks.substr(0, size);
        chunks.remove_prefix(size + 2);
    }
    return body;
}

std::optional<ReceivedAnswer> ReadChunked(std::string_view received, HttpHead head) {
    const auto end = EndOfChunks(received, head.length);
    if (!end) {
        return std::nullopt;
    }
    std::string_view rest = received.substr(*end);
    const std::size_t size = rest.find("\r\n\r\n");
    if (size == std::string_view::npos) {
        return std::nullopt;
    }
    rest = rest.substr(0, size + 2);
    TakeLine(rest);
    head.answer.trailers = TakeHeaders(rest);
    head.answer.body = JoinChunks(received.substr(head.length, *end - head.length));
    return ReceivedAnswer{*end + size + 4, std::move(head.answer)};
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
    head.answer.headers = TakeHeaders(rest);
    head.isChunked = head.answer.Header("Transfer-Encoding") == "chunked";
    if (head.answer.status >= 200 && !head.isChunked) {
        head.bodyLength = ReadNumber<std::size_t>(head.answer.Header("Content-Length"));
    }
    return head;
}

std::optional<ReceivedAnswer> ReadAnswer(std::string_view received) {
    std::optional<HttpHead> head = ReadHead(received);
    if (!head) {
        return std::nullopt;
    }
    if (head->isChunked) {
        return ReadChunked(received, std::move(*head));
    }
    if (received.size() < head->length + head->bodyLength) {
        return std::nullopt;
    }
    head->answer.body = received.substr(head->length, head->bodyLength);
    return ReceivedAnswer{head->length + head->bodyLength, std::move(head->answer)};
}

} // namespace test_support
