// What HTTP itself demands (RFC 9110, RFC 9112).
#include "cimserver/conformance/Table.hpp"

namespace conformance {

namespace {

const std::string head = "Host: localhost\r\nContent-Length: 0\r\n\r\n";

Request Chunked(const std::string& version, const std::string& chunks) {
    return Request()
        .Without("Content-Length")
        .Adding("Transfer-Encoding", "chunked")
        .Raw("POST /cimom " + version +
             "\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks);
}

} // namespace

Section HttpLibraryRows() {
    const Request good;
    return {"Answered by the HTTP library",
            {
                {"a request line without version", good.Raw("POST /cimom\r\n" + head), Status(400)},
                {"a request line of two words", good.Raw("hello world\r\n\r\n"), Status(400)},
                {"`HTTP/2.0` in the request line", good.Line("/cimom HTTP/2.0"), Status(505)},
                {"another protocol in the request line", good.Line("/cimom HTTX/1.1"), Status(400)},
                {"a header line without colon", good.Raw("POST / HTTP/1.1\r\nfoo\r\n" + head),
                 Status(400)},
                {"headers of more than 64 KiB", good.Adding("X", std::string(70'000, 'x')),
                 Status(431)},
                {"a target of more than 64 KiB",
                 good.Line("/" + std::string(70'000, 'x') + " HTTP/1.1"), Status(414)},
                {"`Content-Length: x`", good.With("Content-Length", "x"), Status(400)},
                {"`Content-Length: -1`", good.With("Content-Length", "-1"), Status(400)},
                {"`Content-Length: +5`", good.With("Content-Length", "+5"), Status(400)},
                {"`Content-Length: 5, 5`", good.With("Content-Length", "5, 5"), Status(400)},
                {"`Content-Length` with a blank behind it", good.With("Content-Length", "5 "),
                 Status(400)},
                {"a `Content-Length` of more than 64 bits",
                 good.With("Content-Length", "99999999999999999999"), Status(413)},
                {"a chunk whose size is no number", Chunked("HTTP/1.1", "zz\r\nhello\r\n0\r\n\r\n"),
                 Status(400)},
            }};
}

Section HttpRows() {
    const Request good;
    return {
        "The head of the request",
        {
            {"method `GET`", good.Method("GET"), Status(405)},
            {"method `HEAD`", good.Method("HEAD"), Status(405)},
            {"method `PUT`", good.Method("PUT"), Status(405)},
            {"method `DELETE`", good.Method("DELETE"), Status(405)},
            {"method `OPTIONS`", good.Method("OPTIONS"), Status(405)},
            {"method `post`", good.Method("post"), Status(405)},
            {"method `M-GET`", good.Method("M-GET"), Status(405)},
            {"no `Host`", good.Without("Host"), Status(400)},
            {"two `Host`", good.Adding("Host", "localhost"), Status(400)},
            {"a `Host` that is neither an address nor `localhost`, where nobody has to log in",
             good.With("Host", "rebound.example"), Status(421)},
            {"a blank before a header's colon", good.Adding("X-A ", "1"), Status(400)},
            {"`Content-Length` twice, equal", good.Body("").Adding("Content-Length", "0"),
             Status(400)},
            {"`Content-Length` twice, different", good.Adding("Content-Length", "3"), Status(400)},
            {"`Content-Length` and `Transfer-Encoding: chunked`",
             good.Adding("Transfer-Encoding", "chunked"), Status(400)},
            {"`Transfer-Encoding: chunked` in HTTP/1.0", Chunked("HTTP/1.0", "0\r\n\r\n"),
             Status(400)},
            {"headers of more than 8 KiB", good.Adding("X", std::string(9'000, 'x')), Status(431)},
            {"neither `Content-Length` nor `Transfer-Encoding`", good.Without("Content-Length"),
             Status(411)},
            {"a `Content-Length` of more than 1 MiB", good.With("Content-Length", "1048577"),
             Status(413)},
            {"`Transfer-Encoding: gzip`",
             good.Without("Content-Length").Adding("Transfer-Encoding", "gzip"), Status(501)},
            {"`Transfer-Encoding: gzip, chunked`",
             good.Without("Content-Length").Adding("Transfer-Encoding", "gzip, chunked"),
             Status(501)},
            {"`Content-Type: application/json`", good.With("Content-Type", "application/json"),
             Status(415)},
            {"`Content-Type: text/plain`", good.With("Content-Type", "text/plain; charset=utf-8"),
             Status(415)},
            {"`Content-Type` with charset `iso-8859-1`",
             good.With("Content-Type", "application/xml; charset=iso-8859-1"), Status(415)},
            {"`Content-Type` with charset `utf-16`",
             good.With("Content-Type", "application/xml; charset=utf-16"), Status(415)},
            {"`Content-Encoding: gzip`", good.Adding("Content-Encoding", "gzip"), Status(415)},
        }};
}

} // namespace conformance
