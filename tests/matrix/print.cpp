// Prints the rows of the matrix, for people to read.

#include "matrix/Matrix.hpp"

#include <cstdio>
#include <string>

namespace {

constexpr std::size_t longest = 400;

// One line of text: line ends and tabs as escapes, and long texts cut in the middle.
std::string OneLine(const std::string& text) {
    if (text.size() > 2 * longest) {
        return OneLine(text.substr(0, longest / 2)) + "…(" + std::to_string(text.size()) +
               " bytes)…" + OneLine(text.substr(text.size() - longest / 2));
    }
    std::string line;
    for (const char byte : text) {
        if (byte == '\n') {
            line += "\\n";
        } else if (byte == '\t') {
            line += "\\t";
        } else {
            line += byte;
        }
    }
    return line;
}

void Print(const matrix::Row& row) {
    std::printf("  %s\n    when     %s\n", OneLine(row.call.text).c_str(), row.situation.c_str());
    const char* head = "runs";
    for (const std::string& command : row.commands) {
        std::printf("    %-8s |%s|\n", head, OneLine(command).c_str());
        head = "";
    }
    head = "in vain";
    for (const std::string& command : row.inVain) {
        std::printf("    %-8s |%s|\n", head, OneLine(command).c_str());
        head = "";
    }
    if (row.commands.empty() && row.inVain.empty()) {
        std::printf("    runs     nothing\n");
    }
    std::printf("    answers  %s\n", row.answer.empty() ? "nothing" : OneLine(row.answer).c_str());
}

} // namespace

int main() {
    std::size_t count = 0;
    for (const matrix::Table& table : matrix::Tables()) {
        std::string className;
        for (const matrix::Row& row : table.rows()) {
            if (row.call.className != className) {
                className = row.call.className;
                std::printf("\n%s\n", className.c_str());
            }
            Print(row);
            ++count;
        }
    }
    std::printf("\n%zu rows\n", count);
}
