#include <memory>

#include "patchkeeper/network/FtpServer.hpp"
#include "patchkeeper/network/HttpServer.hpp"
#include "patchkeeper/network/Module.hpp"
#include "patchkeeper/network/SmbServer.hpp"

// What the program looks up, by makeServerName.
extern "C" patchkeeper::Server*
PatchkeeperMakeServer(const patchkeeper::Place& place,
                      const patchkeeper::TransferSettings& settings) {
    switch (place.protocol) {
    case patchkeeper::Protocol::Ftp:
        return std::make_unique<patchkeeper::FtpServer>(place, settings).release();
    case patchkeeper::Protocol::Http:
    case patchkeeper::Protocol::Https:
        return std::make_unique<patchkeeper::HttpServer>(place, settings).release();
    case patchkeeper::Protocol::Smb:
        return std::make_unique<patchkeeper::SmbServer>(place, settings).release();
    }
    throw patchkeeper::TransferFailed("there is no such protocol");
}
