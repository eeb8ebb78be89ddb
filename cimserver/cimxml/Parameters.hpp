// The parameters of one intrinsic call.
#pragma once

#include "cimserver/cimxml/XmlTree.hpp"
#include "cimserver/operations/Operations.hpp"

#include "OW_CIM.hpp"

#include <utility>
#include <vector>

namespace cimserver::cimxml {

/// Names are taken in any case. A parameter without value counts as left out. All members throw as
/// ReadRequest does.
class Parameters {
public:
    /// `call` is the IMETHODCALL and must stay alive.
    explicit Parameters(const Element& call);

    // These leave the target as it is when the client left the parameter out.
    void ReadFlag(const char* name, bool& flag);
    void ReadClassName(const char* name, OpenWBEM::String& className);
    void ReadNames(const char* name, operations::PropertyList& names);
    void ReadText(const char* name, OpenWBEM::String& text);
    /// A value without type, so a string, an array of strings or a reference.
    void ReadUntyped(const char* name, OpenWBEM::CIMValue& value);

    OpenWBEM::String RequiredClassName(const char* name);
    OpenWBEM::CIMObjectPath RequiredInstanceName(const char* name);
    /// Of an instance or of a class.
    OpenWBEM::CIMObjectPath RequiredObjectName(const char* name);
    OpenWBEM::String RequiredText(const char* name);
    OpenWBEM::CIMInstance RequiredInstance(const char* name);
    std::pair<OpenWBEM::CIMObjectPath, OpenWBEM::CIMInstance>
    RequiredNamedInstance(const char* name);

    /// To be called at the end: throws when the client gave something that was not read.
    void ExpectAllRead() const;

private:
    struct Parameter {
        OpenWBEM::String name;
        const Element* element;
        bool isRead;
    };

    /// The element that holds the value; null when the client left it out.
    const Element* ValueOf(const char* name);
    const Element& RequiredValueOf(const char* name);

    std::vector<Parameter> parameters_;
};

} // namespace cimserver::cimxml
