#include "cimserver/Log.hpp"

#include "OW_LogMessage.hpp"
#include "OW_String.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <stdexcept>
#include <unistd.h>
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

/// Blanks only when `blanksToo`.
void AppendEscaped(std::string& line, std::string_view text, bool blanksToo) {
    for (const char next : text) {
        const auto byte = static_cast<unsigned char>(next);
        if (next == '\n') {
            line += "\\n";
        } else if (byte < 0x20 || byte == 0x7F || (blanksToo && byte == ' ')) {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", static_cast<unsigned>(byte));
            line += escape.data();
        } else {
            line += next;
        }
    }
}

std::string OneLine(const OpenWBEM::String& text) {
    std::string line;
    line.reserve(text.length());
    AppendEscaped(line, {text.c_str(), text.length()}, false);
    return line;
}

void AppendField(std::string& line, std::string_view text) {
    constexpr std::size_t longest = 128;
    line += ' ';
    if (text.empty()) {
        line += '-';
    }
    AppendEscaped(line, text.substr(0, longest), true);
    if (text.size() > longest) {
        line += "...";
    }
}

void AppendMilliseconds(std::string& line, std::chrono::microseconds duration) {
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), " %.3f ms",
                  static_cast<double>(duration.count()) / 1000);
    line += number.data();
}

std::string LineOf(const RequestRecord& record) {
    std::string line = "REQUEST";
    line.reserve(160);
    AppendField(line, record.client);
    AppendField(line, record.user);
    AppendField(line, record.operation);
    AppendField(line, record.className);
    if (!record.method.empty()) {
        std::string method;
        AppendField(method, record.method);
        line.append(".").append(method, 1);
    }
    AppendField(line, record.outcome);
    AppendMilliseconds(line, record.duration);
    return line;
}

} // namespace

/// What all loggers share.
class Log::Output {
    /// A place for lines, each of which is one write.
    class DescriptorSink final : public spdlog::sinks::base_sink<std::mutex> {
    public:
        explicit DescriptorSink(const std::filesystem::path& file) : descriptor_(Open(file)) {}
        ~DescriptorSink() override { Close(descriptor_); }
        DescriptorSink(const DescriptorSink&) = delete;
        DescriptorSink& operator=(const DescriptorSink&) = delete;

        void Reopen(const std::filesystem::path& file) {
            int descriptor = Open(file);
            {
                const std::lock_guard lock(mutex_);
                std::swap(descriptor, descriptor_);
            }
            Close(descriptor);
        }

    protected:
        void sink_it_(const spdlog::details::log_msg& message) override {
            spdlog::memory_buf_t line;
            formatter_->format(message, line);
            const char* next = line.data();
            for (std::size_t left = line.size(); left != 0;) {
                const ssize_t written = write(descriptor_, next, left);
                if (written < 0 && errno != EINTR) {
                    return; // there is nowhere to tell of it
                }
                next += std::max<ssize_t>(written, 0);
                left -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
            }
        }
        void flush_() override {}

    private:
        static int Open(const std::filesystem::path& file) {
            if (file.empty()) {
                return STDERR_FILENO;
            }
            const int descriptor =
                open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0640);
            if (descriptor < 0) {
                throw std::runtime_error("Cannot write the log " + file.string() + ": " +
                                         std::strerror(errno) +
                                         "; log.main.location names a file that can be written");
            }
            return descriptor;
        }
        static void Close(int descriptor) {
            if (descriptor != STDERR_FILENO) {
                close(descriptor);
            }
        }

        int descriptor_;
    };

public:
    Output(OpenWBEM::ELogLevel level, const std::filesystem::path& file)
        : sink_(std::make_shared<DescriptorSink>(file)), lines_("cimserver", sink_), level_(level) {
        lines_.set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %v");
    }

    OpenWBEM::ELogLevel Level() const { return level_; }
    void Reopen(const std::filesystem::path& file) { sink_->Reopen(file); }
    void Write(std::string_view line) {
        lines_.log(spdlog::level::info, spdlog::string_view_t(line.data(), line.size()));
    }
    void SetLevel(OpenWBEM::ELogLevel level) {
        const std::lock_guard lock(mutex_);
        level_ = level;
        for (OpenWBEM::Logger* logger : loggers_) {
            logger->setLogLevel(level);
        }
    }
    void Add(OpenWBEM::Logger* logger) {
        const std::lock_guard lock(mutex_);
        logger->setLogLevel(level_);
        loggers_.insert(logger);
    }
    void Remove(OpenWBEM::Logger* logger) {
        const std::lock_guard lock(mutex_);
        loggers_.erase(logger);
    }

private:
    const std::shared_ptr<DescriptorSink> sink_;
    spdlog::logger lines_;
    std::mutex mutex_;
    std::atomic<OpenWBEM::ELogLevel> level_;
    std::set<OpenWBEM::Logger*> loggers_;
};

namespace {

template <class Output>
class OutputLogger final : public OpenWBEM::Logger {
public:
    OutputLogger(OpenWBEM::ELogLevel level, std::shared_ptr<Output> output)
        : Logger(serverComponent, level), output_(std::move(output)) {
        output_->Add(this);
    }
    OutputLogger(const OutputLogger& other) : Logger(other), output_(other.output_) {
        output_->Add(this);
    }
    OutputLogger& operator=(const OutputLogger&) = delete;
    ~OutputLogger() override { output_->Remove(this); }

protected:
    void doProcessLogMessage(const OpenWBEM::LogMessage& message) const override {
        if (doCategoryIsEnabled(message.category)) {
            output_->Write(std::string(message.category.c_str()) + ' ' +
                           OneLine(message.component) + ": " + OneLine(message.message));
        }
    }
    OpenWBEM::LoggerRef doClone() const override {
        return OpenWBEM::LoggerRef(new OutputLogger(*this));
    }
    bool doCategoryIsEnabled(const OpenWBEM::String& category) const override {
        return LevelOf(category) <= getLogLevel();
    }
    bool doComponentAndCategoryAreEnabled(const OpenWBEM::String& /*component*/,
                                          const OpenWBEM::String& category) const override {
        return doCategoryIsEnabled(category);
    }

private:
    const std::shared_ptr<Output> output_;
};

} // namespace

Log::Log(OpenWBEM::ELogLevel level, const std::filesystem::path& file)
    : output_(std::make_shared<Output>(level, file)) {
}

Log::~Log() = default;

OpenWBEM::LoggerRef Log::Logger() const {
    return OpenWBEM::LoggerRef(new OutputLogger<Output>(output_->Level(), output_));
}

void Log::SetLevel(OpenWBEM::ELogLevel level) {
    output_->SetLevel(level);
}

void Log::Reopen(const std::filesystem::path& file) {
    output_->Reopen(file);
}

void Log::Request(const RequestRecord& record) {
    if (logsRequests_) {
        output_->Write(LineOf(record));
    }
}

void WriteReadinessLine(const std::string& line) {
    std::fputs((line + "\n").c_str(), stderr);
}

} // namespace cimserver
