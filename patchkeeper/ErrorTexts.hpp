#pragma once

#include <string_view>

namespace patchkeeper {

// One sentence in plain English for an exit code of this tool, for `--errors`. Codes without a
// meaning of their own share one general sentence.
std::string_view ErrorText(int code) noexcept;

} // namespace patchkeeper
