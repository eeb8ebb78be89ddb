#include "cimserver/CommandLine.hpp"
#include "cimserver/Configuration.hpp"
#include "cimserver/Log.hpp"
#include "cimserver/Process.hpp"
#include "cimserver/Server.hpp"
#include "cimserver/Settings.hpp"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

namespace cimserver {

namespace {

ExitCode Run(int argc, const char* const* argv) {
    Configuration configuration;
    if (const auto done = ReadCommandLine(argc, argv, configuration, std::cout, std::cerr)) {
        return *done;
    }
    const Settings settings = ReadSettings(configuration, DefaultProviderDirectory());
    SettleDescriptors();
    const StopSignal stop;
    Log log(settings.logLevel, settings.LogFile());
    log.SetRequests(settings.requestLog);
    Server server(settings, configuration, log);
    for (const auto& url : server.Urls()) {
        WriteReadinessLine("Listening on " + url);
    }
    stop.Wait();
    if (!server.Finish(settings.stopTime)) {
        // Waiting for these calls is what the server's destructor would do.
        const auto time = std::to_string(settings.stopTime.count());
        log.Logger()->logError(
            ("calls still run after " + time + " s; the server ends without them").c_str());
        std::_Exit(exitDone);
    }
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
