// Writes the answer to one operation while its results arrive.
#pragma once

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

/// Call Begin, hand it to the operation as sink, then Finish; or Fail at any time instead of the
/// rest. A result that cannot be written throws CIMException to whoever delivers it. Should that be
/// caught on the way, every later result and Finish throw it again, so that no half element is ever
/// sent.
class AnswerWriter final : public operations::ResultSink {
public:
    AnswerWriter(Output& output, const AnswerTo& request);

    void Begin();
    void Finish();
    /// Drops what was written; the answer is this error. Once text has left, the text stops where
    /// it is and the error follows as trailers.
    void Fail(const OpenWBEM::CIMException& error);

    void Class(const OpenWBEM::CIMClass& cimClass) override;
    void ClassName(const OpenWBEM::String& name) override;
    void Instance(const OpenWBEM::CIMInstance& instance) override;
    void NamedInstance(const OpenWBEM::CIMInstance& instance) override;
    void InstanceName(const OpenWBEM::CIMObjectPath& path) override;

private:
    void OpenEnvelope();
    void CloseEnvelope();
    void ThrowEarlierFailure() const;
    template <class Write>
    void WriteResult(Write write);

    Output& output_;
    XmlBuffer xml_;
    const AnswerTo& request_;
    std::optional<OpenWBEM::CIMException> failure_;
};

} // namespace cimserver::cimxml
