// Headers, an empty line, a body: whatever they are, the answer is valid or there is none.
#include "cimserver/cimxml/CimXml.hpp"
#include "fuzz/Target.hpp"
#include "support/DtdCheck.hpp"

#include "OW_CIMException.hpp"

#include <algorithm>

namespace {

using cimserver::cimxml::HeaderList;
using cimserver::cimxml::Message;

class Collected : public cimserver::cimxml::Output {
public:
    void Head(const cimserver::cimxml::Status&) override {}
    void Write(std::string_view part) override { text.append(part); }
    bool HasLeft() const override { return false; }
    void Restart() override { text.clear(); }
    void Trailers(const HeaderList&) override {}
    void LimitTime(cimserver::cimxml::MakeLateAnswer) override {}
    void LiftLimit() override {}

    std::string text;
};

/// Fails every call with the request's own bytes as reason, which then stand in the answer.
class Failing : public cimserver::operations::Executor {
public:
    explicit Failing(std::string reason) : reason_(std::move(reason)) {}
    void Execute(const cimserver::operations::Request&,
                 cimserver::operations::ResultSink&) override {
        OW_THROWCIMMSG(OpenWBEM::CIMException::FAILED, reason_.c_str());
    }

private:
    std::string reason_;
};

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

Message MessageOf(std::string_view text) {
    Message message;
    message.method = TakeLine(text);
    for (std::string_view line = TakeLine(text); !line.empty(); line = TakeLine(text)) {
        const std::size_t colon = std::min(line.find(':'), line.size());
        message.headers.emplace_back(line.substr(0, colon),
                                     line.substr(std::min(colon + 1, line.size())));
    }
    message.body = text;
    return message;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Message message = MessageOf(fuzz::Text(data, size));
    Failing executor(std::string(message.body.substr(0, 200)));
    Collected output;
    cimserver::cimxml::Answer(message, executor, output);
    if (!output.text.empty()) {
        ++fuzz::understood;
        for (const std::string& problem : test_support::DtdProblems(output.text)) {
            fuzz::Fail(problem + " in " + output.text);
        }
    }
    return 0;
}
