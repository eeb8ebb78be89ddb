// Any text is an object path, which has a text of its own, or is refused.
#include "fuzz/Target.hpp"

#include "OW_CIMObjectPath.hpp"
#include "OW_Exception.hpp"
#include "OW_String.hpp"

using OpenWBEM::CIMObjectPath;
using OpenWBEM::String;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(fuzz::TextWithoutNul(data, size).c_str());
    CIMObjectPath path(OpenWBEM::CIMNULL);
    try {
        path = CIMObjectPath::parse(text);
    } catch (const OpenWBEM::Exception&) {
        return 0;
    }
    if (!path) {
        return 0; // of an empty text
    }
    ++fuzz::understood;
    if (path.toString().empty()) {
        fuzz::Fail(std::string("a path without text: ") + text.c_str());
    }
    return 0;
}
