// Fields hold neither tab nor newline, and end with the refusal of one too many.
#include "fuzz/Target.hpp"
#include "provider/common/Common.hpp"

#include "OW_CIMException.hpp"

namespace {

constexpr int moreThanAnyRecord = 12;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string line = fuzz::TextWithoutNul(data, size);
    std::size_t length = 0;
    try {
        for (int i = 0; i < moreThanAnyRecord; ++i) {
            const std::string field =
                GetNextToken(i == 0 ? line.data() : nullptr, "Field", "fuzz").c_str();
            if (field.empty() || field.find_first_of("\t\n") != std::string::npos) {
                fuzz::Fail("no field: " + field);
            }
            length += field.size();
            ++fuzz::understood;
        }
    } catch (const OpenWBEM::CIMException&) {
        // no field is left
    }
    if (length > size) {
        fuzz::Fail("more text than there was");
    }
    return 0;
}
