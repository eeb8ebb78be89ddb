#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "patchkeeper/OnState.hpp"
#include "patchkeeper/Tree.hpp"

namespace patchkeeper_test {

// An update as a test wants it: by path in the bundle, the content of each file and what each link
// holds.
struct UpdateContent {
    std::string name = "demo";
    std::string version = "1.0";
    std::map<std::string, std::string> files{{"files/etc/demo.conf", "new\n"}};
    std::map<std::string, std::string> links{};
    bool rebootNeeded = false;
    bool removable = true;
};

inline std::filesystem::path MakeUpdate(const std::filesystem::path& file,
                                        const UpdateContent& content) {
    const TemporaryDirectory directory;
    for (const auto& [path, text] : content.files) {
        directory.Write(path, text);
    }
    for (const auto& [path, link] : content.links) {
        std::filesystem::create_directories((directory.Path() / path).parent_path());
        std::filesystem::create_symlink(link, directory.Path() / path);
    }
    directory.Write("manifest.json",
                    R"({"name": ")" + content.name + R"(", "version": ")" + content.version +
                        R"(", "short_description": "A demo", "reboot_needed": )" +
                        (content.rebootNeeded ? "true" : "false") + R"(, "removable": )" +
                        (content.removable ? "true" : "false") + "}");
    return patchkeeper::MakeBundle(directory.Path(), file, std::nullopt);
}

// The program on a state of its own, with files in its target.
class OnTarget : public OnState {
protected:
    std::filesystem::path Target() const { return Root() / "target"; }
    Tree Files() const { return TreeOf(Target()); }
    std::string TextOf(const std::string& path) const { return Contents(Target() / path); }
    std::filesystem::path Put(const std::string& path, const std::string& text) const {
        return directory_.Write("root/target/" + path, text);
    }

    void Take(const UpdateContent& content = {}) const {
        MakeUpdate(At("incoming.tar.gz"), content);
        EXPECT_EQ(Output("--hd " + At("incoming.tar.gz").string()), "");
    }

    // Nothing is left in the root directory that belongs to no applied update.
    void ExpectNoLeftovers() const {
        EXPECT_FALSE(std::filesystem::exists(Root() / "work"));
        EXPECT_FALSE(std::filesystem::exists(Root() / "cancel"));
        patchkeeper::Database database = OpenDatabase();
        patchkeeper::Statement kept(database, "SELECT count(*) FROM applied WHERE kept <> ''");
        kept.Step();
        std::int64_t directories = 0;
        if (std::filesystem::exists(Root() / "kept")) {
            directories = std::distance(std::filesystem::directory_iterator(Root() / "kept"), {});
        }
        EXPECT_EQ(directories, kept.Integer(0));
    }

    void ExpectFailure(const std::string& arguments, int code, const std::string& sentence) const {
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, code) << arguments;
        EXPECT_EQ(result.output, "") << arguments;
        EXPECT_EQ(result.errors, "patchkeeper: " + sentence + ".\n") << arguments;
    }

    // A failure that changes no file below the target and leaves nothing behind.
    void ExpectNoChange(const std::string& arguments, int code, const std::string& sentence) const {
        const Tree before = Files();
        const std::string history = Output("--hist");
        ExpectFailure(arguments, code, sentence);
        EXPECT_EQ(Files(), before) << arguments;
        EXPECT_EQ(Output("--hist"), history) << arguments;
        ExpectNoLeftovers();
    }
};

} // namespace patchkeeper_test
