#pragma once

#include <memory>

#include <libsmbclient.h>

#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// A file or a directory of a share, by SMB 2 or 3, through libsmbclient. Nothing is asked of a
// terminal, no ticket and no anonymous log-in is tried in place of the credentials.
class SmbServer : public Server {
public:
    SmbServer(const Place& place, const TransferSettings& settings);

    Found Find() override;
    void Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) override;

private:
    struct Free {
        void operator()(SMBCCTX* context) const noexcept { smbc_free_context(context, 1); }
    };

    static void Answer(SMBCCTX* context, const char* server, const char* share, char* workgroup,
                       int workgroupSize, char* user, int userSize, char* password,
                       int passwordSize);
    RemoteFile FileAt(const std::string& url, bool& isDirectory);
    std::vector<RemoteFile> FilesIn(const std::string& directory);

    Place place_;
    std::unique_ptr<SMBCCTX, Free> context_;
};

} // namespace patchkeeper
