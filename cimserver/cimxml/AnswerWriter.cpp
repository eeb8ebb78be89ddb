#include "cimserver/cimxml/AnswerWriter.hpp"

#include "cimserver/cimxml/Elements.hpp"
#include "cimserver/cimxml/Results.hpp"
#include "cimserver/cimxml/Trailers.hpp"
#include "cimserver/cimxml/Values.hpp"

namespace cimserver::cimxml {

using OpenWBEM::CIMException;

AnswerWriter::AnswerWriter(Output& output, const AnswerTo& request)
    : output_(output), xml_(output), instances_(xml_), request_(request) {
}

void AnswerWriter::Begin(Frame frame) {
    frame_ = frame;
    OpenEnvelope();
    if (frame_ == Frame::ReturnValue) {
        xml_.Markup("<IRETURNVALUE>");
    }
}

void AnswerWriter::Finish() {
    WriteResult([this] {
        if (frame_ == Frame::ReturnValue) {
            xml_.Markup("</IRETURNVALUE>");
        }
        CloseEnvelope();
    });
}

void AnswerWriter::Fail(const CIMException& error) {
    if (output_.HasLeft()) {
        output_.Trailers(TrailersOf(error));
        return;
    }
    xml_.Restart();
    OpenEnvelope();
    xml_.Markup("<ERROR CODE=\"");
    xml_.Number(static_cast<int>(error.getErrNo()));
    xml_.Markup("\" DESCRIPTION=\"");
    xml_.Attribute(error.getMessage());
    xml_.Markup("\"></ERROR>");
    CloseEnvelope();
}

void AnswerWriter::OpenEnvelope() {
    xml_.Markup("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"");
    xml_.Attribute(request_.messageId);
    xml_.Markup("\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP>");
    xml_.Markup(request_.isExtrinsic ? "<METHODRESPONSE NAME=\"" : "<IMETHODRESPONSE NAME=\"");
    xml_.Attribute(request_.methodName);
    xml_.Markup("\">");
}

void AnswerWriter::CloseEnvelope() {
    xml_.Markup(request_.isExtrinsic ? "</METHODRESPONSE>" : "</IMETHODRESPONSE>");
    xml_.Markup("</SIMPLERSP></MESSAGE></CIM>\n");
    xml_.Flush();
}

void AnswerWriter::ThrowEarlierFailure() const {
    if (failure_) {
        throw CIMException(*failure_);
    }
}

template <class Write>
void AnswerWriter::WriteResult(Write write) {
    ThrowEarlierFailure();
    try {
        write();
        return;
    } catch (const CIMException& error) {
        failure_.emplace(error);
    } catch (const std::exception& error) {
        failure_.emplace(__FILE__, __LINE__, CIMException::FAILED, error.what());
    }
    ThrowEarlierFailure();
}

void AnswerWriter::Class(const OpenWBEM::CIMClass& cimClass) {
    WriteResult([&] { WriteClass(xml_, cimClass); });
}

void AnswerWriter::ClassName(const OpenWBEM::String& name) {
    WriteResult([&] { WriteClassName(xml_, name); });
}

void AnswerWriter::QualifierType(const OpenWBEM::CIMQualifierType& qualifier) {
    WriteResult([&] { WriteQualifierType(xml_, qualifier); });
}

void AnswerWriter::Instance(const OpenWBEM::CIMInstance& instance) {
    WriteResult([&] { instances_.Write(instance); });
}

void AnswerWriter::NamedInstance(const OpenWBEM::CIMInstance& instance) {
    WriteResult([&] { instances_.WriteNamed(instance); });
}

void AnswerWriter::InstanceName(const OpenWBEM::CIMObjectPath& path) {
    WriteResult([&] { WriteInstanceName(xml_, path); });
}

void AnswerWriter::InstanceWithPath(const OpenWBEM::CIMObjectPath& path,
                                    const OpenWBEM::CIMInstance& instance) {
    WriteResult([&] { WriteInstanceWithPath(xml_, instances_, path, instance); });
}

void AnswerWriter::ClassWithPath(const OpenWBEM::CIMObjectPath& path,
                                 const OpenWBEM::CIMClass& cimClass) {
    WriteResult([&] { WriteClassWithPath(xml_, path, cimClass); });
}

void AnswerWriter::InstancePath(const OpenWBEM::CIMObjectPath& path) {
    WriteResult([&] { WriteInstancePath(xml_, path); });
}

void AnswerWriter::ClassPath(const OpenWBEM::CIMObjectPath& path) {
    WriteResult([&] { WriteClassPath(xml_, path); });
}

void AnswerWriter::PropertyValue(const OpenWBEM::CIMValue& value) {
    WriteResult([&] { WritePropertyValue(xml_, value); });
}

void AnswerWriter::MethodResult(const OpenWBEM::CIMValue& returnValue,
                                const OpenWBEM::CIMParamValueArray& out) {
    WriteResult([&] { WriteMethodResult(xml_, returnValue, out); });
}

} // namespace cimserver::cimxml
