// A text that reads as an object path has a text that reads as the same path.
#include "fuzz/Target.hpp"

#include "OW_CIMException.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_String.hpp"

using OpenWBEM::CIMObjectPath;
using OpenWBEM::String;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CIMObjectPath path(OpenWBEM::CIMNULL);
    try {
        path = CIMObjectPath::parse(String(fuzz::TextWithoutNul(data, size).c_str()));
    } catch (const OpenWBEM::Exception&) {
        return 0;
    }
    ++fuzz::understood;
    const String text = path.toString();
    try {
        if (!(CIMObjectPath::parse(text) == path)) {
            fuzz::Fail(std::string("another path: ") + text.c_str());
        }
    } catch (const OpenWBEM::Exception& error) {
        fuzz::Fail(std::string("unreadable: ") + text.c_str() + ": " + error.getMessage());
    }
    return 0;
}
