// An answer of so many instances passes through the server without staying in its memory. The
// benchmark asks for a million; here fewer do, because the sanitizers run this too.
#include "support/CimClient.hpp"
#include "support/server/ServerProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

const std::string tag = "<INSTANCE CLASSNAME=";

/// Counts the tag in a text that comes in pieces.
class Counter {
public:
    void Take(const std::string& piece) {
        const std::string text = rest_ + piece;
        std::size_t at = 0;
        for (std::size_t next = 0; (next = text.find(tag, at)) != std::string::npos; ++count_) {
            at = next + tag.size();
        }
        rest_ = text.substr(std::max(at, text.size() - std::min(text.size(), tag.size() - 1)));
    }
    long Count() const { return count_; }

private:
    std::string rest_;
    long count_ = 0;
};

/// What a client counts that reads as it comes and keeps nothing.
long CountInstances(std::uint16_t port) {
    test_support::CimClient client(port);
    const std::string body = test_support::IntrinsicCall(
        "EnumerateInstances",
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="TS_Many"/></IPARAMVALUE>)");
    client.Send("POST /cimom HTTP/1.1\r\nHost: localhost\r\n"
                "Content-Type: application/xml; charset=\"utf-8\"\r\nCIMOperation: MethodCall\r\n"
                "CIMMethod: EnumerateInstances\r\nCIMObject: root%2Fcimv2\r\nTE: trailers\r\n"
                "Connection: TE, close\r\nContent-Length: " +
                std::to_string(body.size()) + "\r\n\r\n" + body);
    Counter counter;
    std::string end;
    while (!end.ends_with("\r\n0\r\n\r\n")) {
        const std::string piece = client.ReceiveBytes(1);
        counter.Take(piece);
        end.append(piece);
        end.erase(0, end.size() - std::min<std::size_t>(end.size(), 7));
    }
    return counter.Count();
}

TEST(ManyInstances, DoNotStayInTheServersMemory) {
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1); // else it keeps what is freed
    const test_support::ServerProcess server(
        {"--provider-dir", MILLION_PROVIDERS, "--mof", MILLION_MOF});
    const double idle = server.ResidentMegabytes();
    // The edge of a chunk may cut the tag.
    const long counted = CountInstances(server.Port());
    EXPECT_GT(counted, 198'000);
    EXPECT_LE(counted, 200'000);
    EXPECT_LT(server.PeakMegabytes() - idle, 16.0);
}

} // namespace
