#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_String.hpp"

namespace OpenWBEM {

String::String(const CIMDateTime& value) : String(value.toString()) {
}

String::String(const CIMObjectPath& path) : String(path.toString()) {
}

} // namespace OpenWBEM
