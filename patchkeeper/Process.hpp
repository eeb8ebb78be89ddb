#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace patchkeeper {

// A program that could not be started, or that failed; what() says which and why, without a full
// stop.
class ProcessError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Runs a program, found by PATH when its name has no slash, without a shell, and hands over each
// line that it prints, without the newline, as soon as it is there; the text is valid during the
// call only. Standard input is empty. What the program writes to standard error is kept to itself
// and quoted, its last line, when the program fails: readers of this tool take standard error for
// records. Throws ProcessError when the program cannot be started, exits with another code than 0,
// or dies; what `consume` throws passes through once the program has ended.
void ForEachOutputLine(const std::vector<std::string>& command,
                       const std::function<void(std::string_view)>& consume);

} // namespace patchkeeper
