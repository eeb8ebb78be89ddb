#pragma once

#include <string>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Messages.hpp"
#include "patchkeeper/State.hpp"
#include "patchkeeper/network/Place.hpp"

namespace patchkeeper {

// Each takes in a bundle, or every bundle in a directory: the files in it that are called
// *.tar.gz. Bundles that are refused do not keep the others out, but fail the command. All run as
// an Operation and throw Failure with the code of just this kind of fetch, or StateProblem.

// Code UsbFailed, or NoLocalUpdatesFound for a directory without a bundle.
void FetchFromUsb(const State& state, const std::string& path, const Messages& messages);
// Code DownloadFailed, or NoLocalUpdatesFound for a directory without a bundle.
void FetchFromDisk(const State& state, const std::string& path, const Messages& messages);
// From `em_url` of the settings. Code DownloadFailed, or NoUpdatesFound when nothing is there.
void FetchFromElementManager(const State& state, const Messages& messages);

// The words of a command that names a place on a server; Place.hpp tells what they mean.
struct ServerWords {
    std::string address;
    Credentials credentials;
    std::string path;
};
// Code FtpFailed, HttpFailed, HttpsFailed or SambaFailed, by the protocol, for problems of the
// state too; or NoUpdatesFound when nothing is there.
void FetchFromServer(const State& state, Protocol protocol, const ServerWords& words,
                     const Messages& messages);

// The path of a `file:` URL (RFC 8089), its %XX decoded. Throws NoPlace for what is none, or names
// another host.
std::string PathOfFileUrl(const std::string& url);

} // namespace patchkeeper
