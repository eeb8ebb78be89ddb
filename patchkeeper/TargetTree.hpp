#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "patchkeeper/Descriptor.hpp"
#include "patchkeeper/Standing.hpp"

namespace patchkeeper {

// Every directory on the way to these paths, an outer one before those in it.
std::set<std::string> DirectoriesAbove(const std::set<std::string>& paths);

// The files below one target directory, changed in two steps: each new file or link is first
// written as a draft beside its place, which costs time and room and can be given up, and then put
// into its place by a rename, which is quick and needs no room.
//
// Paths are relative to the target. No symbolic link on the way to a file is followed, so nothing
// outside the target is ever touched; the target itself may be one. What cannot be done is thrown
// as StateProblem. Files and names are on disk once the Sync functions say so, which are called
// for many files at a time, because that is much quicker. One user at a time: the holder of the
// operation lock.
class TargetTree {
public:
    // Told the size of each piece that has been copied; what it throws ends the copy.
    using CopiedPiece = std::function<void(std::size_t bytes)>;

    // The names of drafts begin so, and no file of an update may.
    static constexpr std::string_view draftPrefix = ".patchkeeper-";

    explicit TargetTree(std::filesystem::path root);
    // Makes the directory when it is missing.
    static void MakeRoot(const std::filesystem::path& root);

    // Nothing also stands where a directory on the way is missing. Throws for a directory and for
    // whatever else cannot be kept and put back, and when a link is on the way.
    Standing Look(const std::string& path) const;

    // The directories on the way to these files which are not there.
    std::set<std::string> MissingDirectories(const std::set<std::string>& paths) const;
    // One that is there is as good as made; the one above it must be there.
    void MakeDirectory(const std::string& directory) const;
    // One that is not there is as good as removed.
    void RemoveIfEmpty(const std::string& directory) const;

    // Copies the file that stands at the path to a new file outside the tree, and returns what
    // stood there when it was opened.
    Standing Keep(const std::string& path, const std::filesystem::path& copy,
                  const CopiedPiece& copied) const;
    // Whether a file outside the tree has the same bytes as the one at the path.
    bool HasContentOf(const std::string& path, const std::filesystem::path& file) const;

    // `position` tells the drafts of one directory apart. The content of a file comes from
    // `source`; for Nothing there is no draft.
    void Draft(std::size_t position, const std::string& path, const Standing& wanted,
               const std::filesystem::path& source, const CopiedPiece& copied) const;
    // Gives it its mode and brings it to disk. Call it for every draft before the first Switch.
    void FinishDraft(std::size_t position, const std::string& path, const Standing& wanted) const;
    // Puts the draft in its place, or removes what stands there for Nothing.
    void Switch(std::size_t position, const std::string& path, const Standing& wanted) const;
    // One that is not there is as good as removed.
    void RemoveDraft(std::size_t position, const std::string& path) const;

    // Those in which these files stand, and the ones above them.
    void SyncDirectories(const std::set<std::string>& paths) const;

private:
    struct Place {
        Descriptor directory;
        std::string name;
    };

    // Both give nothing when a directory is missing.
    std::optional<Place> Find(const std::string& path) const;
    std::optional<Descriptor> Enter(int directory, const std::string& way) const;
    Descriptor OpenFile(const std::string& path) const;
    [[noreturn]] void Throw(const std::string& done, const std::string& path, int error) const;

    std::filesystem::path root_;
    Descriptor directory_;
};

} // namespace patchkeeper
