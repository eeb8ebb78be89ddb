// Any bytes are a tree of known elements or a refusal.
#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/XmlTree.hpp"
#include "fuzz/Target.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const cimserver::cimxml::Element root =
            cimserver::cimxml::ParseXml(fuzz::Text(data, size), {});
        ++fuzz::understood;
        if (root.name.empty()) {
            fuzz::Fail("an element without name");
        }
    } catch (const cimserver::cimxml::ProtocolError&) {
        // refused, as most texts are
    }
    return 0;
}
