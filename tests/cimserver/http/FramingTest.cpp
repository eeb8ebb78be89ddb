// Requests whose head does not tell for certain where they end.
#include "cimserver/http/Framing.hpp"

#include <gtest/gtest.h>

namespace {

using cimserver::http::FramingFault;
using cimserver::http::Header;
using cimserver::http::Request;

struct Row {
    const char* method;
    const char* version;
    std::vector<Header> headers;
    int fault; ///< 0: taken
};

TEST(Framing, FaultsOfTheHead) {
    const Header host{"Host", "h"};
    const Header length{"Content-Length", "3"};
    const Row rows[] = {
        {"POST", "HTTP/1.1", {host, length}, 0},
        {"POST", "HTTP/1.1", {{"host", ""}, {"content-length", "3"}}, 0},
        {"POST", "HTTP/1.1", {host, {"Transfer-Encoding", "Chunked"}}, 0},
        {"POST", "HTTP/1.0", {length}, 0},
        {"GET", "HTTP/1.1", {host}, 0},
        {"POST", "HTTP/1.1", {length}, 400},
        {"POST", "HTTP/1.1", {host, host, length}, 400},
        {"GET", "HTTP/1.1", {}, 400},
        {"POST", "HTTP/1.0", {host, {"Transfer-Encoding", "chunked"}}, 400},
        {"POST", "HTTP/1.1", {host, length, length}, 400},
        {"POST", "HTTP/1.1", {host, length, {"content-length", "4"}}, 400},
        {"POST", "HTTP/1.1", {host, length, {"Transfer-Encoding", "chunked"}}, 400},
        {"POST", "HTTP/1.1", {host, {"Content-Length ", "3"}}, 400},
        {"POST", "HTTP/1.1", {host, length, {"X\tY", "3"}}, 400},
        {"POST", "HTTP/1.1", {host, {"Transfer-Encoding", "gzip"}}, 501},
        {"POST", "HTTP/1.1", {host, {"Transfer-Encoding", "gzip, chunked"}}, 501},
        {"POST",
         "HTTP/1.1",
         {host, {"Transfer-Encoding", "gzip"}, {"Transfer-Encoding", "chunked"}},
         501},
        {"POST", "HTTP/1.1", {host}, 411},
        {"M-POST", "HTTP/1.1", {host}, 411},
    };
    int number = 0;
    for (const Row& row : rows) {
        Request request;
        request.method = row.method;
        request.headers = row.headers;
        EXPECT_EQ(FramingFault(request, row.version).value_or(0), row.fault) << "row " << number;
        ++number;
    }
}

TEST(Framing, AHostIsThisMachineByAddressOrAsLocalhost) {
    const auto hasNoName = [](const std::string& host) {
        Request request;
        request.headers = {{"hOST", host}};
        return cimserver::http::HasNoNamedHost(request);
    };
    for (const char* own : {"localhost", "LOCALHOST:5988", "127.0.0.1", "127.0.0.1:5988", "[::1]",
                            "[::1]:5988", "", "192.0.2.1:80"}) {
        EXPECT_TRUE(hasNoName(own)) << own;
    }
    for (const char* other :
         {"rebound.example", "rebound.example:5988", "localhost.example", "127.0.0.1.example", "h",
          "[rebound.example]", "[::1", "[::1]rebound.example"}) {
        EXPECT_FALSE(hasNoName(other)) << other;
    }
    EXPECT_TRUE(cimserver::http::HasNoNamedHost(Request()));
}

} // namespace
