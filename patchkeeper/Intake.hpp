#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

#include "patchkeeper/Operation.hpp"
#include "patchkeeper/State.hpp"
#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper {

// A bundle that is not taken in; what() says why, without a full stop.
class Refused : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Taken {
    enum class How { Added, HeldAlready };

    How how = How::Added;
    std::string name;
    std::string version;
    std::string faults; // "" for a good bundle
};

// Whose bundles count as good. Throws StateProblem when a key of the settings cannot be read.
Trust TrustOf(const Settings& settings);

// What a bundle may have at most: no more unpacked than packed.
BundleLimits LimitsOf(const Settings& settings);

// Told while a bundle is copied how many bytes of it are done.
using CopyProgress = std::function<void(std::uint64_t done)>;

// Takes bundles into the state, one at a time, while an operation runs. A bundle is copied under a
// temporary name, checked, put in its place, and recorded last: whenever the process dies, it is
// held as a whole or what is there of it is removed by the next operation.
class Intake {
public:
    // All three must outlive this object.
    Intake(const State& state, Store& store, const Settings& settings);

    // Copies a file of this machine and takes the copy in. Throws Refused, and StateProblem.
    Taken TakeIn(const std::filesystem::path& source, const Operation& operation,
                 const CopyProgress& progress);

    // Takes in a file of the bundle directory, which is gone under its name afterwards, whatever
    // happens. `source` is what lists and sentences say about where it came from. A bundle whose
    // manifest can be read is taken in even when its content has faults. One that is held already
    // with the same content is left alone; one that is held and not usable is replaced. Throws
    // Refused, and StateProblem.
    Taken TakeInDraft(const std::filesystem::path& file, const std::string& source,
                      const Operation& operation);

private:
    void Record(const Manifest& manifest, const HeldBundle& bundle,
                const std::filesystem::path& copy) const;

    const State& state_;
    Store& store_;
    const Settings& settings_;
    Trust trust_;
};

} // namespace patchkeeper
