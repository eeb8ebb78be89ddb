// Writes the instances of one answer (DMTF DSP0201: INSTANCE, VALUE.NAMEDINSTANCE). Nearly all of
// them have the properties of the one before in the same order, so what stands in front of each
// value is kept and repeated as it is.
#pragma once

#include "cimserver/cimxml/XmlBuffer.hpp"

#include "OW_CIM.hpp"

#include <string>
#include <vector>

namespace cimserver::cimxml {

/// All functions throw CIMException FAILED for what has no XML form. The buffer must outlive it.
class InstanceWriter {
public:
    explicit InstanceWriter(XmlBuffer& xml);

    /// INSTANCE.
    void Write(const OpenWBEM::CIMInstance& instance);
    /// VALUE.NAMEDINSTANCE: the instance behind the name that its keys give it.
    void WriteNamed(const OpenWBEM::CIMInstance& instance);

private:
    /// What was written in front of a value or of all values, and of what kind of property or key.
    struct Start {
        std::string name;
        OpenWBEM::CIMDataType::Type type = OpenWBEM::CIMDataType::INVALID;
        OpenWBEM::CIMQualifierArray qualifiers;
        std::string markup; ///< empty when it could not be kept
    };

    void WriteStart(const OpenWBEM::String& className,
                    const OpenWBEM::CIMQualifierArray& qualifiers);
    void WriteName(const OpenWBEM::String& className, const OpenWBEM::CIMPropertyArray& keys);
    void WriteProperty(const OpenWBEM::CIMProperty& property, Start& start);
    template <class Function>
    void Keep(Start& start, const OpenWBEM::CIMProperty& property, OpenWBEM::CIMDataType::Type type,
              Function write);

    XmlBuffer& xml_;
    std::string className_;
    Start start_;
    Start key_;
    std::vector<Start> properties_;
};

} // namespace cimserver::cimxml
