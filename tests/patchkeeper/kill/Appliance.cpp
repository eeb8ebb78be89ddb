#include "patchkeeper/kill/Appliance.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "patchkeeper/TestBundle.hpp"

namespace patchkeeper_test {

namespace fs = std::filesystem;

namespace {

void Write(const fs::path& file, const std::string& text, int mode = 0644) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    fs::permissions(file, fs::perms(static_cast<unsigned>(mode)));
}

// In memory where there is such a place: the program syncs after every step, and thousands of
// those take long on a disk. That a killed process leaves all that it wrote does not depend on it.
fs::path Base() {
    const fs::path memory = "/dev/shm";
    std::string name =
        ((access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path()) / "kill-XXXXXX")
            .string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory can be made");
    }
    return name;
}

void MakeBundle(const fs::path& file) {
    const TemporaryDirectory directory;
    const fs::path& from = directory.Path();
    Write(from / "files/etc/demo.conf", "new\n", 0600);
    Write(from / "files/etc/was-link", "a file now\n");
    fs::create_symlink("demo.conf", from / "files/etc/was-file");
    Write(from / "files/usr/lib/demo/data", Noise(70'000), 0755);
    Write(from / "components/docs/usr/share/demo", "read me\n");
    Write(from / "manifest.json",
          R"({"name": "demo", "version": "1.0", "reboot_needed": false, "removable": true})");
    patchkeeper::MakeBundle(from, file, std::nullopt);
}

std::vector<std::string> Preloaded(const std::string& variable) {
    // A program with the address sanitizer insists on its library being the first one, though it
    // works with another before it that only counts and calls on.
    const char* options = std::getenv("ASAN_OPTIONS");
    return {variable, "LD_PRELOAD=" KILL_POINTS_LIBRARY,
            "ASAN_OPTIONS=" + (options == nullptr ? std::string() : std::string(options) + ':') +
                "verify_asan_link_order=0"};
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Appliance::Appliance() : base_(Base()) {
    Write(Root() / "patchkeeper.conf", "allow_unsigned = true\n");
    Write(Target() / "etc/demo.conf", "old\n", 0640);
    fs::create_symlink("../../outside", Target() / "etc/was-link");
    Write(Target() / "etc/was-file", Noise(20'000), 04755);
    Write(Target() / "etc/other", "nobody touches this\n");
    MakeBundle(Bundle());
}

Appliance::~Appliance() {
    std::error_code ignored;
    fs::remove_all(base_, ignored);
}

Ended Appliance::Run(const std::string& arguments, long killPoint) const {
    return Start(arguments, killPoint > 0 ? Preloaded("KILL_POINT=" + std::to_string(killPoint))
                                          : std::vector<std::string>());
}

long Appliance::CallsOf(const std::string& arguments) const {
    const fs::path count = base_ / "count";
    const Ended ended = Start(arguments, Preloaded("KILL_COUNT=" + count.string()));
    if (ended.exitCode != 0) {
        throw std::runtime_error(arguments + " failed: " + ended.errors);
    }
    return std::stol(Contents(count));
}

Ended Appliance::Start(const std::string& arguments, std::vector<std::string> variables) const {
    std::vector<std::string> words = {PATCHKEEPER_PROGRAM};
    std::istringstream in(arguments);
    words.insert(words.end(), std::istream_iterator<std::string>(in), {});
    variables.push_back("PATCHKEEPER_ROOT=" + Root().string());
    const fs::path errors = base_ / "errors";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t process = -1;
    const int error = posix_spawn(&process, words[0].c_str(), &actions, nullptr,
                                  Pointers(words).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (error != 0 || waitpid(process, &status, 0) != process) {
        throw std::runtime_error("the program cannot be run");
    }
    return {WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
            WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents(errors)};
}

void Appliance::Save(const std::string& name) const {
    fs::remove_all(base_ / name);
    fs::copy(Root(), base_ / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

void Appliance::BringBack(const std::string& name) const {
    fs::remove_all(Root());
    fs::copy(base_ / name, Root(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

} // namespace patchkeeper_test
