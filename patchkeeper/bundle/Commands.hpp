#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper {

// Whether a command line, without the program's name, is one for RunBundleCommand.
bool IsBundleCommand(const std::vector<std::string>& arguments);

// `bundle DIR [-o FILE] [--key FILE]` and `check FILE [--trust FILE]… [--allow-unsigned]`. `trust`
// is asked only when the settings matter. Throws Failure (SoftwareUpdateFailed for a bundle that
// cannot be made, cannot be read or has faults; the faults are on `out` by then). A wrong command
// line is told on `err` and returned as Usage.
ExitCode RunBundleCommand(const std::vector<std::string>& arguments,
                          const std::function<Trust()>& trust, std::ostream& out,
                          std::ostream& err);

} // namespace patchkeeper
