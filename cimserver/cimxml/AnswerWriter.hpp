// Writes the answer to one operation while its results arrive.
#pragma once

#include "cimserver/cimxml/InstanceWriter.hpp"
#include "cimserver/cimxml/XmlBuffer.hpp"
#include "cimserver/operations/Operations.hpp"

#include <optional>
#include <string>

namespace cimserver::cimxml {

/// What the answer repeats of its request.
struct AnswerTo {
    std::string messageId;
    std::string methodName;
    bool isExtrinsic = false;
};

/// What stands around the results of a call that succeeds.
enum class Frame {
    ReturnValue, ///< IRETURNVALUE
    None         ///< of operations that return nothing, and of methods
};

/// Call Begin, hand it to the operation as sink, then Finish; or Fail at any time instead of the
/// rest. A result that cannot be written throws CIMException to whoever delivers it. Should that be
/// caught on the way, every later result and Finish throw it again, so that no half element is ever
/// sent.
class AnswerWriter final : public operations::ResultSink {
public:
    AnswerWriter(Output& output, const AnswerTo& request);

    void Begin(Frame frame);
    void Finish();
    /// Drops what was written; the answer is this error. Once text has left, the text stops where
    /// it is and the error follows as trailers.
    void Fail(const OpenWBEM::CIMException& error);

    void Class(const OpenWBEM::CIMClass& cimClass) override;
    void ClassName(const OpenWBEM::String& name) override;
    void QualifierType(const OpenWBEM::CIMQualifierType& qualifier) override;
    void Instance(const OpenWBEM::CIMInstance& instance) override;
    void NamedInstance(const OpenWBEM::CIMInstance& instance) override;
    void InstanceName(const OpenWBEM::CIMObjectPath& path) override;
    void InstanceWithPath(const OpenWBEM::CIMObjectPath& path,
                          const OpenWBEM::CIMInstance& instance) override;
    void ClassWithPath(const OpenWBEM::CIMObjectPath& path,
                       const OpenWBEM::CIMClass& cimClass) override;
    void InstancePath(const OpenWBEM::CIMObjectPath& path) override;
    void ClassPath(const OpenWBEM::CIMObjectPath& path) override;
    void PropertyValue(const OpenWBEM::CIMValue& value) override;
    void MethodResult(const OpenWBEM::CIMValue& returnValue,
                      const OpenWBEM::CIMParamValueArray& out) override;

private:
    void OpenEnvelope();
    void CloseEnvelope();
    void ThrowEarlierFailure() const;
    template <class Write>
    void WriteResult(Write write);

    Output& output_;
    XmlBuffer xml_;
    InstanceWriter instances_;
    const AnswerTo& request_;
    Frame frame_ = Frame::None;
    std::optional<OpenWBEM::CIMException> failure_;
};

} // namespace cimserver::cimxml
