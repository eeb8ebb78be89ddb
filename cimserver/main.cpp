#include "cimserver/CommandLine.hpp"
#include "cimserver/Commands.hpp"
#include "cimserver/Configuration.hpp"
#include "cimserver/Log.hpp"
#include "cimserver/Process.hpp"
#include "cimserver/Server.hpp"
#include "cimserver/Settings.hpp"

#include <exception>
#include <iostream>

namespace cimserver {

namespace {

ExitCode Run(int argc, const char* const* argv) {
    if (const auto done = RunCommand(argc, argv, std::cout, std::cerr)) {
        return *done;
    }
    Configuration configuration;
    if (const auto done = ReadCommandLine(argc, argv, configuration, std::cout, std::cerr)) {
        return *done;
    }
    const Settings settings = ReadSettings(configuration, DefaultProviderDirectory());
    SettleDescriptors();
    const StopSignal stop;
    Log log(settings.logLevel, settings.LogFile());
    log.SetRequests(settings.requestLog);
    const Server server(settings, configuration, log);
    for (const auto& url : server.Urls()) {
        WriteReadinessLine("Listening on " + url);
    }
    stop.Wait();
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
