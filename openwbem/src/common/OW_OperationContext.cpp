#include "OW_config.h"

#include "OW_OperationContext.hpp"

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(ContextDataNotFound)

const char* const OperationContext::USER_NAME = "USER_NAME";
const char* const OperationContext::USER_PASSWD = "USER_PASSWD";
const char* const OperationContext::HTTP_PATH = "HTTP_PATH";

OperationContext::OperationContext() = default;
OperationContext::~OperationContext() = default;

void OperationContext::setStringData(const String& key, const String& data) {
    m_data[key] = data;
}

String OperationContext::getStringData(const String& key) const {
    const auto found = m_data.find(key);
    if (found == m_data.end()) {
        OW_THROW(ContextDataNotFoundException, key.c_str());
    }
    return found->second;
}

String OperationContext::getStringDataWithDefault(const String& key, const String& def) const {
    const auto found = m_data.find(key);
    return found == m_data.end() ? def : found->second;
}

bool OperationContext::keyHasData(const String& key) const {
    return m_data.count(key) != 0;
}

void OperationContext::removeData(const String& key) {
    m_data.erase(key);
}

} // namespace OpenWBEM
