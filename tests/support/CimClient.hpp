// A raw HTTP client for tests: it sends exactly the bytes it is told and hands back what came, so
// that a test can see headers, framing and time as they are. One connection; one thread at a time.
// Whatever goes wrong (refused, closed early, nothing for 30 seconds) is a std::runtime_error with
// the reason.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

struct HttpAnswer {
    int status = 0;
    HeaderList headers;
    std::string body;
    HeaderList trailers;

    /// The value of the first header of that name (any case); empty when there is none.
    std::string Header(std::string_view name) const;
};

class CimClient {
public:
    /// Connects to 127.0.0.1.
    explicit CimClient(std::uint16_t port);
    ~CimClient();
    CimClient(const CimClient&) = delete;
    CimClient& operator=(const CimClient&) = delete;

    /// The bytes go out as they are.
    void Send(std::string_view bytes);
    /// Reads one answer, in chunks or with its length announced.
    HttpAnswer Receive();
    /// Everything that has come, as it is, once it is so much.
    std::string ReceiveBytes(std::size_t atLeast);
    /// Waits until the other side has closed; true when nothing came before.
    bool IsClosedByServer();
    /// No more bytes will follow; answers can still be read.
    void FinishSending();

    /// A request with Host, Content-Length and the headers given; then its answer.
    HttpAnswer Request(std::string_view method, const HeaderList& headers, std::string_view body);
    /// A CIM-XML operation request with the headers that every client sends.
    HttpAnswer Post(std::string_view body, const HeaderList& moreHeaders = {});

private:
    bool Fill();

    int socket_ = -1;
    std::string received_;
};

/// The body of an intrinsic CIM-XML request in namespace root/cimv2; `parameters` is the XML of its
/// IPARAMVALUE elements.
std::string IntrinsicCall(std::string_view operation, std::string_view parameters);

/// The body of a call of a class's method in namespace root/cimv2; `object` is the XML of the
/// INSTANCENAME or CLASSNAME, `parameters` that of the PARAMVALUE elements.
std::string ExtrinsicCall(std::string_view method, std::string_view object,
                          std::string_view parameters);

} // namespace test_support
