#include "patchkeeper/Owner.hpp"

#include <cerrno>
#include <string>
#include <system_error>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

int SetGroupsOf(uid_t user, gid_t group) {
    const passwd* entry = getpwuid(user);
    return entry != nullptr ? initgroups(entry->pw_name, group) : setgroups(1, &group);
}

} // namespace

void ActAsOwnerOf(const std::filesystem::path& directory) {
    struct stat status {};
    if (geteuid() != 0 || stat(directory.c_str(), &status) != 0 || status.st_uid == 0) {
        return;
    }
    if (SetGroupsOf(status.st_uid, status.st_gid) != 0 || setgid(status.st_gid) != 0 ||
        setuid(status.st_uid) != 0) {
        throw StateProblem("the program cannot act as user " + std::to_string(status.st_uid) +
                           ", the owner of " + directory.string() + ": " +
                           std::generic_category().message(errno));
    }
}

} // namespace patchkeeper
