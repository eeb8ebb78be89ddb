#pragma once

#include "patchkeeper/network/Transfer.hpp"

namespace patchkeeper {

// A file or a directory, in binary and passive mode (RFC 959, RFC 3659).
class FtpServer : public Server {
public:
    FtpServer(const Place& place, const TransferSettings& settings);

    Found Find() override;
    void Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) override;

private:
    // What the server tells of a file; `ended` says whether there is one.
    RemoteFile Ask(const std::string& url, Transfer::Ended& ended);
    std::vector<RemoteFile> FilesIn(const std::string& directory);

    Transfer transfer_;
    std::string url_;
};

} // namespace patchkeeper
