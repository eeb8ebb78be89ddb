#include "OW_config.h"

#include "OW_Logger.hpp"

#include "OW_LogMessage.hpp"

namespace OpenWBEM {

const String Logger::STR_NONE_CATEGORY("NONE");
const String Logger::STR_FATAL_CATEGORY("FATAL");
const String Logger::STR_ERROR_CATEGORY("ERROR");
const String Logger::STR_INFO_CATEGORY("INFO");
const String Logger::STR_DEBUG_CATEGORY("DEBUG");
const String Logger::STR_ALL_CATEGORY("ALL");
const String Logger::STR_DEFAULT_COMPONENT("none");

LogMessage::LogMessage(const String& component_, const String& category_, const String& message_,
                       const char* filename_, int fileline_, const char* methodname_)
    : component(component_), category(category_), message(message_), filename(filename_),
      fileline(fileline_), methodname(methodname_) {
}

Logger::Logger(const String& defaultComponent, const ELogLevel level)
    : m_defaultComponent(defaultComponent), m_logLevel(level) {
}

Logger::Logger(const Logger& other)
    : IntrusiveCountableBase(other), m_defaultComponent(other.m_defaultComponent),
      m_logLevel(other.getLogLevel()) {
}

Logger& Logger::operator=(const Logger& other) {
    IntrusiveCountableBase::operator=(other);
    m_defaultComponent = other.m_defaultComponent;
    setLogLevel(other.getLogLevel());
    return *this;
}

Logger::~Logger() = default;

void Logger::logFatalError(const String& message, const char* filename, int fileline,
                           const char* methodname) const {
    if (getLogLevel() >= E_FATAL_ERROR_LEVEL) {
        logMessage(STR_FATAL_CATEGORY, message, filename, fileline, methodname);
    }
}

void Logger::logError(const String& message, const char* filename, int fileline,
                      const char* methodname) const {
    if (getLogLevel() >= E_ERROR_LEVEL) {
        logMessage(STR_ERROR_CATEGORY, message, filename, fileline, methodname);
    }
}

void Logger::logInfo(const String& message, const char* filename, int fileline,
                     const char* methodname) const {
    if (getLogLevel() >= E_INFO_LEVEL) {
        logMessage(STR_INFO_CATEGORY, message, filename, fileline, methodname);
    }
}

void Logger::logDebug(const String& message, const char* filename, int fileline,
                      const char* methodname) const {
    if (getLogLevel() >= E_DEBUG_LEVEL) {
        logMessage(STR_DEBUG_CATEGORY, message, filename, fileline, methodname);
    }
}

void Logger::logMessage(const String& component, const String& category,
                        const String& message) const {
    logMessage(component, category, message, nullptr, -1, nullptr);
}

void Logger::logMessage(const String& component, const String& category, const String& message,
                        const char* filename, int fileline, const char* methodname) const {
    logMessage(LogMessage(component, category, message, filename, fileline, methodname));
}

void Logger::logMessage(const String& category, const String& message) const {
    logMessage(category, message, nullptr, -1, nullptr);
}

void Logger::logMessage(const String& category, const String& message, const char* filename,
                        int fileline, const char* methodname) const {
    logMessage(m_defaultComponent, category, message, filename, fileline, methodname);
}

void Logger::logMessage(const LogMessage& message) const {
    doProcessLogMessage(message);
}

void Logger::setDefaultComponent(const String& component) {
    m_defaultComponent = component;
}

String Logger::getDefaultComponent() const {
    return m_defaultComponent;
}

void Logger::setLogLevel(const String& level) {
    if (level.equalsIgnoreCase(STR_INFO_CATEGORY)) {
        setLogLevel(E_INFO_LEVEL);
    } else if (level.equalsIgnoreCase(STR_DEBUG_CATEGORY)) {
        setLogLevel(E_DEBUG_LEVEL);
    } else if (level.equalsIgnoreCase(STR_ERROR_CATEGORY)) {
        setLogLevel(E_ERROR_LEVEL);
    } else if (level.equalsIgnoreCase(STR_ALL_CATEGORY)) {
        setLogLevel(E_ALL_LEVEL);
    } else if (level.equalsIgnoreCase(STR_NONE_CATEGORY)) {
        setLogLevel(E_NONE_LEVEL);
    } else {
        setLogLevel(E_FATAL_ERROR_LEVEL);
    }
}

bool Logger::categoryIsEnabled(const String& category) const {
    return doCategoryIsEnabled(category);
}

bool Logger::componentAndCategoryAreEnabled(const String& component, const String& category) const {
    return doComponentAndCategoryAreEnabled(component, category);
}

LoggerRef Logger::clone() const {
    return doClone();
}

bool Logger::doCategoryIsEnabled(const String&) const {
    return true;
}

bool Logger::doComponentAndCategoryAreEnabled(const String&, const String&) const {
    return true;
}

} // namespace OpenWBEM
