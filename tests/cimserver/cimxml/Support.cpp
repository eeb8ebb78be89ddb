#include "Support.hpp"

#include "support/CallHeaders.hpp"
#include "support/DtdCheck.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace cimxml_test {

void TextOutput::Head(const cimserver::cimxml::Status& status) {
    EXPECT_EQ(text, "") << "the head comes first";
    head = status;
}

void TextOutput::Write(std::string_view part) {
    if (part.size() > room_ - std::min(room_, text.size())) {
        throw std::runtime_error("no room for the answer");
    }
    text += part;
}

void TextOutput::Restart() {
    EXPECT_FALSE(HasLeft());
    text.clear();
}

void TextOutput::Trailers(const cimserver::cimxml::HeaderList& list) {
    EXPECT_TRUE(HasLeft());
    trailers = list;
}

std::string Reply::Header(std::string_view name) const {
    for (const auto& [key, value] : status.headers) {
        if (key == name) {
            return value;
        }
    }
    return "(absent)";
}

cimserver::cimxml::HeaderList OperationHeaders(std::string_view body) {
    cimserver::cimxml::HeaderList headers = test_support::CallHeaders(body);
    headers.insert(headers.begin(), {"CIMOperation", "MethodCall"});
    return headers;
}

Reply Ask(std::string_view body, cimserver::operations::Executor& executor) {
    return Ask(body, executor, OperationHeaders(body));
}

Reply Ask(std::string_view body, cimserver::operations::Executor& executor,
          const cimserver::cimxml::HeaderList& headers, const std::string& method) {
    TextOutput output;
    Reply reply;
    cimserver::cimxml::Answer({method, headers, body, "somebody", true}, executor, output);
    reply.status = output.head;
    reply.text = output.text;
    if (reply.status.httpStatus == 200) {
        EXPECT_THAT(test_support::DtdProblems(reply.text), testing::IsEmpty()) << reply.text;
        EXPECT_THAT(test_support::PlainClientProblems(reply.text), testing::IsEmpty())
            << reply.text;
    } else {
        EXPECT_EQ(reply.text, "");
    }
    return reply;
}

std::string RefusalOf(std::string_view body) {
    FakeExecutor executor;
    const Reply reply = Ask(body, executor);
    EXPECT_FALSE(executor.last.has_value());
    if (reply.status.httpStatus == 200) {
        return ErrorIn(reply.text);
    }
    return std::to_string(reply.status.httpStatus) + " " + reply.Header("CIMError");
}

std::string Parameter(const std::string& name, const std::string& value) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + value + "</IPARAMVALUE>";
}

std::string Shown(const OpenWBEM::CIMValue& value) {
    if (!value) {
        return "null";
    }
    return std::string(value.getCIMDataType().toString().c_str()) +
           (value.isArray() ? "[] " : " ") + value.toString().c_str();
}

std::string Shown(const OpenWBEM::CIMInstance& instance) {
    std::string text = std::string(instance.getClassName().c_str()) + ":";
    const OpenWBEM::CIMPropertyArray properties = instance.getProperties();
    for (const OpenWBEM::CIMProperty& property : properties) {
        const OpenWBEM::CIMDataType type = property.getDataType();
        const OpenWBEM::CIMValue value = property.getValue();
        text.append(property.getName().c_str()).append("=");
        text.append(value ? Shown(value)
                          : std::string(type.toString().c_str()) +
                                (type.isArrayType() ? "[] null" : " null"));
        text.append(";");
    }
    return text;
}

std::string Results(const std::function<void(ResultSink&)>& action) {
    FakeExecutor executor([&](const Request&, ResultSink& sink) { action(sink); });
    return Ask(test_support::IntrinsicCall(
                   "EnumerateInstances",
                   R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="A"/></IPARAMVALUE>)"),
               executor)
        .text;
}

std::string ReturnValue(const std::function<void(ResultSink&)>& action) {
    const std::string answer = Results(action);
    return Between(answer, "<IRETURNVALUE>", "</IRETURNVALUE>");
}

std::string Between(std::string_view text, std::string_view start, std::string_view end) {
    const std::size_t from = text.find(start);
    const std::size_t to = from == text.npos ? from : text.find(end, from + start.size());
    if (to == text.npos) {
        ADD_FAILURE() << start << " ... " << end << " is not in " << text;
        return {};
    }
    return std::string(text.substr(from + start.size(), to - from - start.size()));
}

std::string ErrorIn(std::string_view answer) {
    if (answer.find("<ERROR CODE=\"") == answer.npos) {
        return std::string(answer);
    }
    return Between(answer, "<ERROR CODE=\"", "\"") + ": " +
           Between(answer, "DESCRIPTION=\"", "\"></ERROR>");
}

} // namespace cimxml_test
