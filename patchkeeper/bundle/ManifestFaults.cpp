#include "patchkeeper/bundle/ManifestFaults.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string_view>
#include <unordered_map>

#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper::bundle {

namespace {

constexpr std::size_t longestPart = 255; // of a path, the limit of Linux file systems

std::vector<std::string_view> Parts(std::string_view path) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto slash = path.find('/');
        parts.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos) {
            return parts;
        }
        path.remove_prefix(slash + 1);
    }
}

std::uint64_t SumOfSizes(const Manifest& manifest) {
    std::uint64_t sum = 0;
    for (const auto& file : manifest.files) {
        if (file.size > std::numeric_limits<std::uint64_t>::max() - sum) {
            return std::numeric_limits<std::uint64_t>::max();
        }
        sum += file.size;
    }
    return sum;
}

// A link climbs at its beginning only, and no further than its own directories, which are none of
// links themselves. So what it leads to is certain whatever other links the bundle brings.
std::string LinkFault(const BundleFile& file) {
    if (file.link.front() == '/') {
        return "is a link that leaves its root: " + Quoted(file.link);
    }
    std::size_t depth = Parts(file.path).size() - 1;
    bool climbs = true;
    for (const auto part : Parts(file.link)) {
        if (part != "..") {
            climbs = false;
        } else if (!climbs) {
            return "is a link with '..' behind a name: " + Quoted(file.link);
        } else if (depth == 0) {
            return "is a link that leaves its root: " + Quoted(file.link);
        } else {
            --depth;
        }
    }
    return "";
}

std::string PlaceFault(const BundleFile& file, const std::set<std::string_view>& components) {
    const bool isInFiles = file.entry.starts_with("files/");
    std::string fault = PathFault(isInFiles ? file.path : file.entry);
    if (!fault.empty()) {
        return fault;
    }
    if (!isInFiles && file.component.empty()) {
        return "stands neither below files/ nor in a component";
    }
    if (!isInFiles && !components.contains(file.component)) {
        return "belongs to a component that is not declared";
    }
    return file.IsLink() ? LinkFault(file) : "";
}

using Places = std::unordered_map<std::string_view, const BundleFile*>;

// What stands in the way of a file: another one at its place or at a directory above it.
std::string CollisionFault(const BundleFile& file, const Places& places) {
    const BundleFile* there = places.at(file.path);
    if (there != &file) {
        return there->entry == file.entry ? "is in the manifest twice"
                                          : "goes to the same place as " + Quoted(there->entry);
    }
    const std::string_view path = file.path;
    for (auto slash = path.find('/'); slash != std::string_view::npos;
         slash = path.find('/', slash + 1)) {
        const auto above = places.find(path.substr(0, slash));
        if (above != places.end()) {
            return "goes through " + Quoted(above->second->entry) +
                   (above->second->IsLink() ? ", which is a link" : ", which is a file");
        }
    }
    return "";
}

} // namespace

std::string PathFault(const std::string& path) {
    if (path.starts_with('/')) {
        return "leaves its root";
    }
    for (const auto part : Parts(path)) {
        if (part == "..") {
            return "leaves its root";
        }
        if (part.empty() || part == ".") {
            return "has an empty part or '.' in its path";
        }
        if (part.size() > longestPart) {
            return "has a part of more than 255 bytes in its path";
        }
    }
    return "";
}

std::string LimitFault(const Manifest& manifest, const BundleLimits& limits) {
    if (manifest.files.size() > limits.files) {
        return "it has " + std::to_string(manifest.files.size()) + " files, more than the " +
               std::to_string(limits.files) + " that are accepted";
    }
    const std::uint64_t size = std::max(manifest.size, SumOfSizes(manifest));
    if (size > limits.totalBytes) {
        return "it declares " + std::to_string(size) + " bytes, more than the " +
               std::to_string(limits.totalBytes) + " that are accepted";
    }
    return "";
}

std::vector<std::string> ManifestFaults(const Manifest& manifest) {
    std::vector<std::string> faults;
    const std::set<std::string_view> components(manifest.components.begin(),
                                                manifest.components.end());
    std::set<std::string_view> empty = components;
    Places places;
    for (const auto& file : manifest.files) {
        places.emplace(file.path, &file);
        empty.erase(file.component);
    }
    for (const auto& file : manifest.files) {
        for (const auto& fault : {PlaceFault(file, components), CollisionFault(file, places)}) {
            if (!fault.empty()) {
                faults.push_back(Quoted(file.entry) + " " + fault);
            }
        }
        if (file.mode > 0777) {
            faults.push_back(Quoted(file.entry) + " has a set-user-ID, set-group-ID or sticky bit");
        }
    }
    for (const auto name : empty) {
        faults.push_back("the component " + Quoted(name) + " has no files");
    }
    const std::uint64_t sum = SumOfSizes(manifest);
    if (sum != manifest.size) {
        faults.push_back("its size is declared as " + std::to_string(manifest.size) +
                         " bytes, but its files have " + std::to_string(sum));
    }
    return faults;
}

} // namespace patchkeeper::bundle
