#include "cimserver/operations/Conversions.hpp"

#include "OW_CIMException.hpp"
#include "OW_CIMValueCast.hpp"

namespace cimserver::operations {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::Exception;
using OpenWBEM::String;

namespace {

const CIMException* AsCimException(const Exception& error) {
    return dynamic_cast<const CIMException*>(&error);
}

/// Without the phrase that a CIM error puts around its text.
String TextOf(const Exception& error) {
    String message = error.getMessage();
    if (const CIMException* cimError = AsCimException(error)) {
        const String start =
            String(CIMException(__FILE__, __LINE__, cimError->getErrNo()).getMessage()) + " (";
        if (message.startsWith(start) && message.endsWith(")")) {
            return message.substring(start.length(), message.length() - start.length() - 1);
        }
    }
    return message;
}

/// Throws for the first whose value cannot have the type that the class declares.
void NameCulprit(const char* kind, const CIMPropertyArray& properties, const CIMClass& cimClass) {
    for (const CIMProperty& property : properties) {
        CIMProperty declared = cimClass.getProperty(property.getName());
        if (!declared || !property.getValue()) {
            continue;
        }
        try {
            declared.setValue(property.getValue());
        } catch (const Exception& error) {
            RethrowNaming(String(kind) + declared.getName(), error);
        }
    }
}

} // namespace

void RethrowNaming(const String& what, const Exception& error) {
    const CIMException* cimError = AsCimException(error);
    RethrowNaming(what, error, cimError == nullptr ? CIMException::FAILED : cimError->getErrNo());
}

void RethrowNaming(const String& what, const Exception& error, CIMException::ErrNoType number) {
    const String text = what + ": " + TextOf(error);
    OW_THROWCIMMSG(number, text.c_str());
}

void SyncWithClass(OpenWBEM::CIMInstance& instance, const CIMClass& cimClass) {
    try {
        instance.syncWithClass(cimClass);
    } catch (const Exception&) {
        NameCulprit("Property ", instance.getProperties(), cimClass);
        throw;
    }
}

void SyncWithClass(OpenWBEM::CIMObjectPath& path, const CIMClass& cimClass) {
    try {
        path.syncWithClass(cimClass);
    } catch (const Exception&) {
        NameCulprit("Key ", path.getKeys(), cimClass);
        throw;
    }
}

} // namespace cimserver::operations
