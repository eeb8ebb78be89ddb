// The CIM-XML layer without its neighbours: an executor that does what the test says and remembers
// what it was asked, and an output that keeps the text.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"
#include "support/CimClient.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace cimxml_test {

using cimserver::operations::Request;
using cimserver::operations::ResultSink;

class FakeExecutor : public cimserver::operations::Executor {
public:
    using Action = std::function<void(const Request&, ResultSink&)>;
    explicit FakeExecutor(Action action = {}) : action_(std::move(action)) {}

    void Execute(const Request& request, ResultSink& sink) override {
        if (const auto* faulty = std::get_if<cimserver::operations::FaultyCall>(&request.call)) {
            throw OpenWBEM::CIMException(faulty->error);
        }
        last = request;
        if (action_) {
            action_(request, sink);
        }
    }

    std::optional<Request> last;

private:
    Action action_;
};

/// Keeps what it is given. Text leaves when so many bytes of it are there; with `room`, writing
/// fails beyond that.
class TextOutput : public cimserver::cimxml::Output {
public:
    explicit TextOutput(std::size_t leavesAt = std::string::npos,
                        std::size_t room = std::string::npos)
        : leavesAt_(leavesAt), room_(room) {}

    void Head(const cimserver::cimxml::Status& status) override;
    void Write(std::string_view part) override;
    bool HasLeft() const override { return text.size() >= leavesAt_; }
    void Restart() override;
    void Trailers(const cimserver::cimxml::HeaderList& list) override;
    void LimitTime(cimserver::cimxml::MakeLateAnswer late) override {
        limit = std::move(late);
        ++limits;
    }
    void LiftLimit() override { limit = nullptr; }

    cimserver::cimxml::Status head;
    std::string text;
    cimserver::cimxml::HeaderList trailers;
    cimserver::cimxml::MakeLateAnswer limit; ///< null: none
    int limits = 0;

private:
    std::size_t leavesAt_;
    std::size_t room_;
};

struct Reply {
    cimserver::cimxml::Status status;
    std::string text;

    std::string Header(std::string_view name) const;
};

/// The headers of an operation request with that body.
cimserver::cimxml::HeaderList OperationHeaders(std::string_view body);

/// Sends a body as a client does. Every text that comes back must be valid; it is a test failure
/// when it is not.
Reply Ask(std::string_view body, cimserver::operations::Executor& executor);
Reply Ask(std::string_view body, cimserver::operations::Executor& executor,
          const cimserver::cimxml::HeaderList& headers, const std::string& method = "POST");

/// The call that a request with this body becomes; a test failure when it becomes another one.
template <class Call>
Call Read(std::string_view body) {
    FakeExecutor executor;
    const Reply reply = Ask(body, executor);
    if (!executor.last || !std::holds_alternative<Call>(executor.last->call)) {
        ADD_FAILURE() << "another call, or none: " << reply.text;
        return {};
    }
    return std::get<Call>(executor.last->call);
}

/// How a request is refused before it becomes a call: the error, or the HTTP status and CIMError.
std::string RefusalOf(std::string_view body);

/// `<IPARAMVALUE NAME="name">value</IPARAMVALUE>`
std::string Parameter(const std::string& name, const std::string& value);

// Types and values as text: `uint16[] 1,2`, `string null`; properties as `Name=string x;Count=...`.
std::string Shown(const OpenWBEM::CIMValue& value);
std::string Shown(const OpenWBEM::CIMInstance& instance);

/// The answer to an EnumerateInstances whose results `action` delivers.
std::string Results(const std::function<void(ResultSink&)>& action);

/// What stands between the IRETURNVALUE tags of such an answer.
std::string ReturnValue(const std::function<void(ResultSink&)>& action);

/// `text` between the first `start` and the next `end` after it; fails the test when they are not
/// there.
std::string Between(std::string_view text, std::string_view start, std::string_view end);

/// "4: invalid parameter ..." of an ERROR answer; the whole text when it is none.
std::string ErrorIn(std::string_view answer);

} // namespace cimxml_test
