// The parameters of one intrinsic call.
#pragma once

#include "cimserver/cimxml/XmlTree.hpp"
#include "cimserver/operations/Operations.hpp"

#include "OW_CIM.hpp"

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

    OpenWBEM::String RequiredClassName(const char* name);
    OpenWBEM::CIMObjectPath RequiredInstanceName(const char* name);

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

    std::vector<Parameter> parameters_;
};

} // namespace cimserver::cimxml
