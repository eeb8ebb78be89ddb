#include "cimserver/cimxml/AnswerWriter.hpp"
#include "cimserver/cimxml/CallReader.hpp"
#include "cimserver/cimxml/CimXml.hpp"
#include "cimserver/cimxml/Extension.hpp"
#include "cimserver/cimxml/Headers.hpp"
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
                Output& output) {
    output.Head(AnswerStatus());
    const auto answerTo =
        std::make_shared<const AnswerTo>(AnswerTo{call.messageId, call.name, call.isExtrinsic});
    AnswerWriter writer(output, *answerTo);
    TimeLimit timeLimit(output, answerTo);
    try {
        operations::Request request = ReadRequest(call);
        request.user = message.user;
        request.watch = &timeLimit;
        writer.Begin(FrameOf(request.call));
        executor.Execute(request, writer);
        writer.Finish();
    } catch (const OpenWBEM::CIMException& error) {
        writer.Fail(error);
    }
}

void AnswerRequest(const Message& message, const std::string& prefix,
                   operations::Executor& executor, Output& output) {
    try {
        CheckHeaders(message, prefix);
        const Element root = ParseXml(message.body);
        const MethodCall call = ReadMethodCall(root);
        CheckAgainstHeaders(call, message, prefix);
        AnswerCall(call, message, executor, output);
    } catch (const ProtocolError& error) {
        output.Head(error.AsStatus());
    }
}

} // namespace

void Answer(const Message& message, operations::Executor& executor, Output& output) {
    try {
        const Extension extension = ExtensionOf(message);
        ExtendedOutput extended(output, extension);
        AnswerRequest(message, extension.prefix, executor, extended);
    } catch (const ProtocolError& error) {
        output.Head(error.AsStatus());
    }
}

} // namespace cimserver::cimxml
