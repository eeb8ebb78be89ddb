#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "patchkeeper/Tree.hpp"

namespace patchkeeper_test {

// How a run of the program ended.
struct Ended {
    bool killed = false;
    int exitCode = 0;
    std::string errors;
};

// A root directory with a target in it, and runs of the program on it which can be killed. It can
// be saved and brought back, always at the same path.
class Appliance {
public:
    Appliance();
    ~Appliance();
    Appliance(const Appliance&) = delete;
    Appliance& operator=(const Appliance&) = delete;

    std::filesystem::path Root() const { return base_ / "root"; }
    std::filesystem::path Target() const { return Root() / "target"; }
    // A bundle that replaces a file, a link by a file and a file by a link in the target, and
    // brings more in new directories.
    std::filesystem::path Bundle() const { return base_ / "demo.tar.gz"; }

    // Runs the program; with a kill point it is killed in place of that call.
    Ended Run(const std::string& arguments, long killPoint = 0) const;

    // How many calls that could be killed a run makes which nobody kills.
    long CallsOf(const std::string& arguments) const;

    void Save(const std::string& name) const;
    void BringBack(const std::string& name) const;

private:
    Ended Start(const std::string& arguments, std::vector<std::string> variables) const;

    std::filesystem::path base_;
};

} // namespace patchkeeper_test
