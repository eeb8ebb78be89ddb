#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "patchkeeper/Descriptor.hpp"
#include "patchkeeper/Intake.hpp"
#include "patchkeeper/State.hpp"
#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// The copy of a file on a server, as far as it has come. There is at most one in the state: it
// stays when its transfer is cut off or the process dies, and the next transfer of the same URL
// continues it as long as the file on the server has the same version. A transfer of anything else
// begins anew in its place.
//
// A second file beside it tells URL and version. It is removed before the copy is begun anew and
// written, by a rename, before the first byte: so what the copy holds is always the beginning of
// what it names. Used while an operation runs. All functions throw StateProblem, or Refused where
// the file is to blame.
class PartialCopy : public Receiver {
public:
    // Takes up what is there of this file. `limit` is the most bytes that it may have, 0 for any
    // number.
    PartialCopy(const State& state, const RemoteFile& file, std::uint64_t limit,
                CopyProgress progress);

    std::uint64_t Size() const { return size_; }
    const std::filesystem::path& File() const { return data_; }

    void Begin(std::uint64_t position, const RemoteFile& file) override;
    void Take(std::string_view bytes) override;
    // Once all of it is there: makes it lasting.
    void Finish();
    // Once the copy has been moved to its place, or is of no use.
    void Discard() noexcept;

    // The URL of the copy that is there, for who clears the state up.
    static std::optional<std::string> UrlOf(const State& state);
    // Whether it is one of the two files of a copy that can be continued.
    static bool IsPartOfOne(const State& state, const std::filesystem::path& file);
    static void Discard(const State& state) noexcept;

private:
    void StartAnew(const RemoteFile& file);

    const State& state_;
    std::filesystem::path data_;
    std::uint64_t limit_;
    CopyProgress progress_;
    Descriptor out_;
    std::uint64_t size_ = 0;
};

} // namespace patchkeeper
