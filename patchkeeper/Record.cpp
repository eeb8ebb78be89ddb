#include "patchkeeper/Record.hpp"

#include <algorithm>
#include <utility>

namespace patchkeeper {

namespace {

using Fields = std::vector<std::string>;

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::string_view Cut(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return text;
    }
    std::size_t length = longest;
    while (length > 0 && IsContinuationByte(text[length])) {
        --length;
    }
    return text.substr(0, length);
}

std::size_t LineLength(const Fields& fields) {
    std::size_t length = fields.size(); // the tabs and the newline
    for (const auto& field : fields) {
        length += field.size();
    }
    return length;
}

void CutToFit(Fields& fields) {
    for (std::size_t length = LineLength(fields); length > longestLine;
         length = LineLength(fields)) {
        auto longest =
            std::max_element(fields.begin(), fields.end(), [](const auto& one, const auto& other) {
                return one.size() < other.size();
            });
        std::size_t next = 0;
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            next = field == longest ? next : std::max(next, field->size());
        }
        const std::size_t step =
            std::min(length - longestLine, std::max<std::size_t>(1, longest->size() - next));
        *longest = FieldText(*longest, longest->size() - step);
    }
}

// Characters, not bytes.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return !IsContinuationByte(byte); }));
}

} // namespace

std::string FieldText(std::string_view text, std::size_t longest) {
    std::string field(Cut(text, longest));
    for (char& letter : field) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F) {
            letter = ' ';
        }
    }
    return field.empty() ? "-" : field;
}

std::string RecordLine(const Fields& texts) {
    Fields fields;
    std::transform(texts.begin(), texts.end(), std::back_inserter(fields),
                   [](const std::string& text) { return FieldText(text); });
    CutToFit(fields);
    std::string line;
    for (const auto& field : fields) {
        line += field;
        line += '\t';
    }
    line.back() = '\n';
    return line;
}

RecordWriter::RecordWriter(std::ostream& out, bool table, Fields headings)
    : out_(out), table_(table), rows_{std::move(headings)} {
}

void RecordWriter::Add(const Fields& fields) {
    if (!table_) {
        out_ << RecordLine(fields);
        return;
    }
    rows_.emplace_back();
    std::transform(fields.begin(), fields.end(), std::back_inserter(rows_.back()),
                   [](const std::string& text) { return FieldText(text); });
}

void RecordWriter::Finish() {
    if (!table_ || rows_.size() == 1) {
        return;
    }
    std::vector<std::size_t> widths(rows_.front().size());
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], Width(row[i]));
        }
    }
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            out_ << row[i] << std::string(widths[i] - Width(row[i]) + 2, ' ');
        }
        out_ << row.back() << '\n';
    }
}

} // namespace patchkeeper
