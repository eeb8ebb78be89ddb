#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "patchkeeper/Intake.hpp"

namespace patchkeeper {

// A file that may be a bundle, where it is.
struct Candidate {
    std::string name;       // its last part, for a person
    std::uint64_t size = 0; // 0 when it is not known
};

// Where bundles are fetched from: a directory of this machine, a server. It is used by one
// operation, Find() once and before all else.
class BundleSource {
public:
    virtual ~BundleSource() = default;

    // For a person: a path or a URL, without credentials.
    virtual std::string Name() const = 0;

    struct Found {
        bool isDirectory = false;
        std::vector<Candidate> candidates; // of a directory those that are called *.tar.gz, sorted
    };
    // Throws Unavailable.
    virtual Found Find() = 0;

    // Takes in the candidate of that position. Throws Refused when there is something wrong with
    // just this one, Unavailable when the others need not be tried, and StateProblem.
    virtual Taken Take(std::size_t position, Intake& intake, const Operation& operation,
                       const CopyProgress& progress) = 0;
};

// The path cannot be read, the server cannot be reached or does not deliver; what() says why,
// without a full stop and without credentials.
class Unavailable : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace patchkeeper
