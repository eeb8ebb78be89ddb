#pragma once

#include <memory>
#include <string>
#include <vector>

#include "patchkeeper/BundleSource.hpp"
#include "patchkeeper/Settings.hpp"
#include "patchkeeper/State.hpp"
#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// A file or directory on a server. What an earlier fetch has left of a bundle is continued.
class RemoteSource : public BundleSource {
public:
    // All of them must outlive this object. Connects to nobody yet.
    RemoteSource(const State& state, const Settings& settings, const Place& place);

    std::string Name() const override { return place_.url; }
    Found Find() override;
    Taken Take(std::size_t position, Intake& intake, const Operation& operation,
               const CopyProgress& progress) override;

private:
    struct Attempt {
        bool isContinued = false; // part of the copy is of an earlier fetch
        bool isGood = false;
        Taken taken;
    };
    Attempt TryToTake(const RemoteFile& file, Intake& intake, const Operation& operation,
                      const CopyProgress& progress);

    const State& state_;
    const Settings& settings_;
    const Place& place_;
    std::unique_ptr<Server> server_;
    std::vector<RemoteFile> files_;
};

} // namespace patchkeeper
