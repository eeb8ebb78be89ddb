#include "cimserver/Log.hpp"

#include "OW_LogMessage.hpp"
#include "OW_String.hpp"

#include <array>
#include <cstdio>
#include <memory>
#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <utility>

namespace cimserver {

namespace {

constexpr const char* serverComponent = "ow.owcimomd.CIMServer";

OpenWBEM::ELogLevel LevelOf(const OpenWBEM::String& category) {
    if (category == OpenWBEM::Logger::STR_FATAL_CATEGORY) {
        return OpenWBEM::E_FATAL_ERROR_LEVEL;
    }
    if (category == OpenWBEM::Logger::STR_ERROR_CATEGORY) {
        return OpenWBEM::E_ERROR_LEVEL;
    }
    if (category == OpenWBEM::Logger::STR_INFO_CATEGORY) {
        return OpenWBEM::E_INFO_LEVEL;
    }
    return OpenWBEM::E_DEBUG_LEVEL;
}

std::string OneLine(const OpenWBEM::String& text) {
    std::string line;
    line.reserve(text.length());
    for (const char* next = text.c_str(); *next != '\0'; ++next) {
        const auto byte = static_cast<unsigned char>(*next);
        if (*next == '\n') {
            line += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", static_cast<unsigned>(byte));
            line += escape.data();
        } else {
            line += *next;
        }
    }
    return line;
}

class StandardErrorLogger final : public OpenWBEM::Logger {
public:
    StandardErrorLogger(OpenWBEM::ELogLevel level, std::shared_ptr<spdlog::logger> output)
        : Logger(serverComponent, level), output_(std::move(output)) {}

protected:
    void doProcessLogMessage(const OpenWBEM::LogMessage& message) const override {
        if (!doCategoryIsEnabled(message.category)) {
            return;
        }
        output_->info("{} {}: {}", message.category.c_str(), OneLine(message.component),
                      OneLine(message.message));
    }
    OpenWBEM::LoggerRef doClone() const override {
        return OpenWBEM::LoggerRef(new StandardErrorLogger(*this));
    }
    bool doCategoryIsEnabled(const OpenWBEM::String& category) const override {
        return LevelOf(category) <= getLogLevel();
    }
    bool doComponentAndCategoryAreEnabled(const OpenWBEM::String& /*component*/,
                                          const OpenWBEM::String& category) const override {
        return doCategoryIsEnabled(category);
    }

private:
    std::shared_ptr<spdlog::logger> output_;
};

} // namespace

OpenWBEM::LoggerRef MakeLogger(OpenWBEM::ELogLevel level) {
    auto output = std::make_shared<spdlog::logger>(
        "cimserver", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    output->set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %v");
    return OpenWBEM::LoggerRef(new StandardErrorLogger(level, std::move(output)));
}

void WriteReadinessLine(const std::string& line) {
    std::fputs((line + "\n").c_str(), stderr);
}

} // namespace cimserver
