#pragma once

#include "matrix/Matrix.hpp"

#include "provider/master/MasterProvider.hpp"

#include <memory>
#include <string>

namespace matrix {

// A library as after its load and initialize: its lists are empty but for the placeholder, no
// update is selected, and the tool plays ordinary answers. The background tasks end before the
// tool goes. One at a time in a process.
class Scene {
public:
    Scene();
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    // Waits until nothing runs in the background.
    static void Settle();

    test_support::ToolDouble tool;
    std::shared_ptr<test_support::LogLines> log = std::make_shared<test_support::LogLines>();
    OpenWBEM::ProviderEnvironmentIFCRef env;
    SoftwareUpdateProvider master;
    test_support::Calls calls;
};

// The answer of a call, its failures included.
std::string AnswerOf(const Call& call, Scene& scene);

// The message id of a tool's exit code, as clients know it.
std::string IdOf(int exitCode);

} // namespace matrix
