#include "cimserver/cimxml/AnswerWriter.hpp"
#include "cimserver/cimxml/CallReader.hpp"
#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/cimxml/Extension.hpp"
#include "cimserver/cimxml/Headers.hpp"
#include "cimserver/cimxml/Note.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/TimeLimit.hpp"

#include <memory>

namespace cimserver::cimxml {

namespace {

Status AnswerStatus() {
    return {200,
            {{"Content-Type", "application/xml; charset=\"utf-8\""},
             {"CIMOperation", "MethodResponse"}}};
}

Frame FrameOf(const operations::Call& call) {
    const bool returnsNothing = std::holds_alternative<operations::SetProperty>(call) ||
                                std::holds_alternative<operations::ModifyInstance>(call) ||
                                std::holds_alternative<operations::DeleteInstance>(call) ||
                                std::holds_alternative<operations::InvokeMethod>(call);
    return returnsNothing ? Frame::None : Frame::ReturnValue;
}

void AnswerCall(const MethodCall& call, const Message& message, operations::Executor& executor,
                Output& output, Outcome& outcome) {
    output.Head(AnswerStatus());
    const auto answerTo =
        std::make_shared<const AnswerTo>(AnswerTo{call.messageId, call.name, call.isExtrinsic});
    AnswerWriter writer(output, *answerTo);
    TimeLimit timeLimit(output, answerTo);
    try {
        operations::Request request = ReadRequest(call);
        request.user = message.user;
        request.mayChange = message.mayChange;
        request.watch = &timeLimit;
        Note(request.call, outcome);
        writer.Begin(FrameOf(request.call));
        executor.Execute(request, writer);
        writer.Finish();
    } catch (const OpenWBEM::CIMException& error) {
        outcome.cimError = static_cast<int>(error.getErrNo());
        writer.Fail(error);
    }
}

void Refuse(const ProtocolError& error, Output& output, Outcome& outcome) {
    outcome.httpStatus = error.AsStatus().httpStatus;
    outcome.reached = error.reached;
    output.Head(error.AsStatus());
}

void AnswerRequest(const Message& message, const std::string& prefix, const XmlLimits& limits,
                   operations::Executor& executor, Output& output, Outcome& outcome) {
    try {
        CheckHeaders(message, prefix);
        const Element root = ParseXml(message.body, limits);
        const MethodCall call = ReadMethodCall(root);
        Note(call, outcome);
        CheckAgainstHeaders(call, message, prefix);
        AnswerCall(call, message, executor, output, outcome);
    } catch (const ProtocolError& error) {
        Refuse(error, output, outcome);
    }
}

} // namespace

Outcome Answer(const Message& message, operations::Executor& executor, Output& output,
               const XmlLimits& limits) {
    Outcome outcome;
    try {
        const Extension extension = ExtensionOf(message);
        ExtendedOutput extended(output, extension);
        AnswerRequest(message, extension.prefix, limits, executor, extended, outcome);
    } catch (const ProtocolError& error) {
        Refuse(error, output, outcome);
    }
    return outcome;
}

} // namespace cimserver::cimxml
