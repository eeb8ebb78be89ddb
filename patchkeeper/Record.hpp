#pragma once

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace patchkeeper {

// The longest line of a list in bytes, its newline included: readers take lines in pieces of this
// size, and a longer one would reach them as two records.
constexpr std::size_t longestLine = 1023;

// A text as a field of a record: a tab, newline or other control character becomes a blank, an
// empty text "-" (readers take an empty field for a missing one), and what is longer than `longest`
// bytes is cut at the border of a UTF-8 character.
std::string FieldText(std::string_view text,
                      std::size_t longest = std::numeric_limits<std::size_t>::max());

// One line, newline included, with tabs between the fields. Where it would be too long the longest
// fields are cut until it fits.
std::string RecordLine(const std::vector<std::string>& fields);

// Prints a list: records for programs, as they come, or a table with headings for a person, once
// all are known.
class RecordWriter {
public:
    // A heading per field.
    RecordWriter(std::ostream& out, bool table, std::vector<std::string> headings);

    void Add(const std::vector<std::string>& fields);
    // Call it after the last record. A table without records prints nothing.
    void Finish();

private:
    std::ostream& out_;
    bool table_;
    std::vector<std::vector<std::string>> rows_; // of the table, the headings first
};

} // namespace patchkeeper
