// A date is read alike by its columns and by its words, and what was read has a text of 25
// characters.
#include "fuzz/Target.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_DateTime.hpp"
#include "OW_Exception.hpp"
#include "OW_String.hpp"

#include <optional>

using OpenWBEM::CIMDateTime;
using OpenWBEM::DateTime;
using OpenWBEM::String;

namespace {

std::optional<DateTime> Read(const std::string& text) {
    try {
        return DateTime(String(text.c_str()));
    } catch (const OpenWBEM::Exception&) {
        return std::nullopt;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::TextWithoutNul(data, size);
    const auto read = Read(text);
    // A blank in front makes no date of the standard's form, and moves every column.
    const auto words = Read(" " + text);
    fuzz::understood += read ? 1 : 0;
    const bool isStandardForm = text.size() == 25 && text[14] == '.';
    if (!isStandardForm &&
        (read.has_value() != words.has_value() || (read && read->get() != words->get()))) {
        fuzz::Fail("columns and words differ: " + text);
    }
    if (read && CIMDateTime(*read).toString().length() != 25) {
        fuzz::Fail("a date of another length: " + text);
    }
    try {
        static_cast<void>(CIMDateTime(String(text.c_str())).toString());
    } catch (const OpenWBEM::Exception&) {
        // refused
    }
    return 0;
}
