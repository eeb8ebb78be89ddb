#pragma once

#include "OW_config.h"

#include "OW_CommonFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_LogLevel.hpp"
#include "OW_String.hpp"

#include <atomic>

namespace OpenWBEM {

struct LogMessage;

// Where providers and the server write their log lines.
//
// A logger has a level and a default component (a dotted name of the part that speaks, such as
// "ow.provider.cpp.ifc"). Whoever writes a logger derives and implements doProcessLogMessage and
// doClone. It is handled through LoggerRef and freed with the last reference.
//
// Threads: the log... members may be called from several threads at once when the derived class
// allows it, and so may getLogLevel and setLogLevel. setDefaultComponent may not run beside any
// other call on the same object; a part that wants a level or component of its own takes a clone.
class OW_COMMON_API Logger : public IntrusiveCountableBase {
public:
    static const String STR_NONE_CATEGORY;
    static const String STR_FATAL_CATEGORY;
    static const String STR_ERROR_CATEGORY;
    static const String STR_INFO_CATEGORY;
    static const String STR_DEBUG_CATEGORY;
    static const String STR_ALL_CATEGORY;
    static const String STR_DEFAULT_COMPONENT;

    ~Logger() override;

    // Deliver the text under the default component when the level allows it.
    void logFatalError(const String& message, const char* filename = nullptr, int fileline = -1,
                       const char* methodname = nullptr) const;
    void logError(const String& message, const char* filename = nullptr, int fileline = -1,
                  const char* methodname = nullptr) const;
    void logInfo(const String& message, const char* filename = nullptr, int fileline = -1,
                 const char* methodname = nullptr) const;
    void logDebug(const String& message, const char* filename = nullptr, int fileline = -1,
                  const char* methodname = nullptr) const;

    // Deliver the text under a category named by the caller. The level plays no part here.
    void logMessage(const String& component, const String& category, const String& message) const;
    void logMessage(const String& component, const String& category, const String& message,
                    const char* filename, int fileline, const char* methodname) const;
    void logMessage(const String& category, const String& message) const;
    void logMessage(const String& category, const String& message, const char* filename,
                    int fileline, const char* methodname) const;
    void logMessage(const LogMessage& message) const;

    void setDefaultComponent(const String& component);
    String getDefaultComponent() const;

    ELogLevel getLogLevel() const { return m_logLevel.load(std::memory_order_relaxed); }
    void setLogLevel(ELogLevel level) { m_logLevel.store(level, std::memory_order_relaxed); }
    // "INFO", "DEBUG", "ERROR", "ALL" or "NONE" in any case; every other text means fatal only.
    void setLogLevel(const String& level);

    // Whether the log behind would take such a message at all; asked to save the making of a text.
    bool categoryIsEnabled(const String& category) const;
    bool componentAndCategoryAreEnabled(const String& component, const String& category) const;

    // A logger to the same place whose level and component can be changed apart from this one's.
    LoggerRef clone() const;

protected:
    Logger(const String& defaultComponent, const ELogLevel level);
    Logger(const Logger& other);
    Logger& operator=(const Logger& other);

    virtual void doProcessLogMessage(const LogMessage& message) const = 0;
    virtual LoggerRef doClone() const = 0;
    virtual bool doCategoryIsEnabled(const String& category) const;
    virtual bool doComponentAndCategoryAreEnabled(const String& component,
                                                  const String& category) const;

private:
    String m_defaultComponent;
    std::atomic<ELogLevel> m_logLevel;
};

} // namespace OpenWBEM

// Each looks at the level before it evaluates the message, and adds the place it stands at.
#define OW_LOG_AT_LEVEL(logger, level, function, message)                                          \
    do {                                                                                           \
        if ((logger)->getLogLevel() >= OpenWBEM::level) {                                          \
            (logger)->function((message), __FILE__, __LINE__, __func__);                           \
        }                                                                                          \
    } while (false)

#define OW_LOG_DEBUG(logger, message) OW_LOG_AT_LEVEL(logger, E_DEBUG_LEVEL, logDebug, message)
#define OW_LOG_INFO(logger, message) OW_LOG_AT_LEVEL(logger, E_INFO_LEVEL, logInfo, message)
#define OW_LOG_ERROR(logger, message) OW_LOG_AT_LEVEL(logger, E_ERROR_LEVEL, logError, message)
#define OW_LOG_FATAL_ERROR(logger, message)                                                        \
    OW_LOG_AT_LEVEL(logger, E_FATAL_ERROR_LEVEL, logFatalError, message)

// Under a category of the caller's choice; like logMessage it is not filtered by level.
#define OW_LOG(logger, category, message)                                                          \
    (logger)->logMessage((category), (message), __FILE__, __LINE__, __func__)
