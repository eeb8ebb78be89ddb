#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "patchkeeper/network/Place.hpp"

namespace patchkeeper {

// A file on a server.
struct RemoteFile {
    std::string url;        // without credentials
    std::string name;       // its last part, for a person
    std::uint64_t size = 0; // 0 when the server does not tell
    std::string version;    // another one when the content is another; "" when it is not known
};

// The server cannot be reached, refuses, or stops in the middle. what() says why, without a full
// stop and without credentials.
class TransferFailed : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The same for one file only; others on this server may be there.
class FileFailed : public TransferFailed {
    using TransferFailed::TransferFailed;
};

// Takes what a server sends. What it throws ends the transfer and passes through.
class Receiver {
public:
    virtual ~Receiver() = default;

    // Before the first byte: where in the file it stands. That is the beginning when the server
    // cannot continue or the file has become another one.
    virtual void Begin(std::uint64_t position, const RemoteFile& file) = 0;
    virtual void Take(std::string_view bytes) = 0;
};

struct TransferSettings {
    std::chrono::seconds connectTimeout;
    std::chrono::seconds stallTimeout; // without a byte
    std::filesystem::path authorities; // PEM file; empty for those of the system
};

// One place on a server. An object is used by one thread.
class Server {
public:
    virtual ~Server() = default;

    struct Found {
        bool isDirectory = false;
        std::vector<RemoteFile> files; // of a directory those that are called *.tar.gz, sorted
    };
    // What stands at the place. Throws TransferFailed.
    virtual Found Find() = 0;

    // Reads a file that was found, from that byte on when it still has the version that `file`
    // tells and the server is able to, otherwise from the beginning. Throws TransferFailed.
    virtual void Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) = 0;
};

// The libraries for the protocols, and what they need in turn, are over a hundred: so they are
// loaded here and not when the program starts. Throws TransferFailed when they cannot be.
std::unique_ptr<Server> OpenServer(const Place& place, const TransferSettings& settings);

} // namespace patchkeeper
