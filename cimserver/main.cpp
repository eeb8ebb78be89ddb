#include "cimserver/CommandLine.hpp"
#include "cimserver/Commands.hpp"
#include "cimserver/Configuration.hpp"
#include "cimserver/Log.hpp"
#include "cimserver/PassedListeners.hpp"
#include "cimserver/Process.hpp"
#include "cimserver/Reload.hpp"
#include "cimserver/Server.hpp"
#include "cimserver/ServiceManager.hpp"
#include "cimserver/Settings.hpp"

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

namespace cimserver {

namespace {

/// The same configuration as at the start, from a file that may have changed.
Configuration ReadAgain(int argc, const char* const* argv, const ServiceManager& manager) {
    Configuration configuration;
    std::ostringstream unused;
    ReadCommandLine(argc, argv, configuration, unused, unused);
    OverrideAddresses(manager.Sockets(), configuration);
    return configuration;
}

/// Comes back when no call runs any more. After that time the process ends with those that do: the
/// server's destructor would wait for them.
void FinishOrLeave(Server& server, std::chrono::seconds longest, const Log& log) {
    if (server.Finish(longest)) {
        return;
    }
    const std::string text = "calls still run after " + std::to_string(longest.count()) +
                             " s; the server ends without them";
    log.Logger()->logError(text.c_str());
    std::_Exit(exitDone);
}

ExitCode Run(int argc, const char* const* argv) {
    if (const auto done = RunCommand(argc, argv, std::cout, std::cerr)) {
        return *done;
    }
    const ServiceManager manager;
    Configuration configuration;
    if (const auto done = ReadCommandLine(argc, argv, configuration, std::cout, std::cerr)) {
        return *done;
    }
    OverrideAddresses(manager.Sockets(), configuration);
    Settings settings = ReadSettings(configuration, DefaultProviderDirectory());
    settings.sockets = PlainSockets(manager.Sockets());
    settings.tlsSockets = TlsSockets(manager.Sockets());
    SettleDescriptors();
    const StopSignal stop;
    Log log(settings.logLevel, settings.LogFile());
    log.SetRequests(settings.requestLog);
    Server server(settings, configuration, log);
    const Reload reload(
        configuration, [&] { return ReadAgain(argc, argv, manager); }, log,
        {[&](const Settings& now) { return server.ReloadCredentials(now.access); }});
    const ReloadSignal reloads([&] {
        manager.Reloading();
        reload();
        manager.Ready();
    });
    for (const auto& url : server.Urls()) {
        WriteReadinessLine("Listening on " + url);
    }
    manager.Ready();
    stop.Wait();
    manager.Stopping();
    FinishOrLeave(server, settings.stopTime, log);
    return exitDone;
}

} // namespace

} // namespace cimserver

int main(int argc, char** argv) {
    try {
        return cimserver::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "cimserver: " << error.what() << std::endl;
        return cimserver::exitCannotStart;
    }
}
