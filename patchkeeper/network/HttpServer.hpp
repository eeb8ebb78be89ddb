#pragma once

#include "patchkeeper/network/Transfer.hpp"

namespace patchkeeper {

// A file, or a page whose links lead to files. Of the links those count that stay on the server.
class HttpServer : public Server {
public:
    HttpServer(const Place& place, const TransferSettings& settings);

    Found Find() override;
    void Read(const RemoteFile& file, std::uint64_t from, Receiver& receiver) override;

private:
    // Of a server that does not answer such questions only the name is known. Throws FileFailed
    // for every other status than 200.
    RemoteFile Ask(const std::string& url, Answer& answer);
    std::vector<RemoteFile> FilesOnPage(const std::string& url);

    Transfer transfer_;
    std::string url_;
};

} // namespace patchkeeper
