#pragma once

#include <filesystem>

namespace patchkeeper {

// Started by root, the program goes on as the owner of the state's directory, so that everything in
// it belongs to one user whoever started the command. Does nothing for other users, and when the
// directory is not there or is root's. Throws StateProblem when the system refuses the change.
void ActAsOwnerOf(const std::filesystem::path& directory);

} // namespace patchkeeper
