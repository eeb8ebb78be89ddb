#include "patchkeeper/network/RemoteNames.hpp"

#include "patchkeeper/BundleName.hpp"
#include "patchkeeper/network/Place.hpp"

namespace patchkeeper {

namespace {

std::string LastPart(const std::string& url) {
    const std::string path = url.substr(0, url.find_first_of("?#"));
    return path.substr(path.rfind('/') + 1);
}

} // namespace

std::string RemoteName(const std::string& url) {
    std::string name = LastPart(url);
    try {
        return name.empty() ? url : WithoutPercents(name);
    } catch (const NoPlace&) {
        return name;
    }
}

bool IsBundleUrl(const std::string& url) {
    return !url.empty() && !LastPart(url).empty() && IsBundleName(RemoteName(url));
}

} // namespace patchkeeper
