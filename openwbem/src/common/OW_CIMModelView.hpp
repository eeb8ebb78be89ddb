// Reading instances without taking shares of their data: every copied handle costs two atomic
// operations, which for somebody who writes a hundred thousand instances are most of the work.
// For the embedded server; no part of the provider API.
#pragma once

#include "OW_CIMDateTime.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMValue.hpp"

namespace OpenWBEM {

/// What is returned stays good while the object lives and is not changed. A null instance or
/// property throws NULLCOWIntrusiveReferenceException.
struct CIMModelView {
    static const String& className(const CIMInstance& instance);
    static const CIMPropertyArray& properties(const CIMInstance& instance);
    static const CIMPropertyArray& keys(const CIMInstance& instance);
    static const CIMQualifierArray& qualifiers(const CIMInstance& instance);

    static const String& name(const CIMProperty& property);
    static const CIMDataType& type(const CIMProperty& property);
    static const CIMValue& value(const CIMProperty& property);
    static const CIMQualifierArray& qualifiers(const CIMProperty& property);
    static const String& originClass(const CIMProperty& property);

    static const String& name(const CIMQualifier& qualifier);
    static const CIMValue& value(const CIMQualifier& qualifier);

    /// Null unless the value is a scalar string.
    static const String* text(const CIMValue& value);

    /// What toString gives, without an end mark; returns its length.
    static std::size_t writeText(const CIMDateTime& value, char* text);
    static const std::size_t longestDateTime = 64;
};

} // namespace OpenWBEM
