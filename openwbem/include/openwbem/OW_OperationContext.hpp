#pragma once

#include "OW_config.h"

#include "OW_CommonFwd.hpp"
#include "OW_Exception.hpp"
#include "OW_String.hpp"

#include <map>

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(ContextDataNotFound, OW_COMMON_API)

// Named texts that travel with one request, such as who asks. It belongs to the request and to the
// thread that carries it out.
class OW_COMMON_API OperationContext {
public:
    // Keys that the server fills where it knows the answer.
    static const char* const USER_NAME;
    static const char* const USER_PASSWD;
    static const char* const HTTP_PATH;

    OperationContext();
    ~OperationContext();
    OperationContext(const OperationContext&) = delete;
    OperationContext& operator=(const OperationContext&) = delete;

    void setStringData(const String& key, const String& data);

    // ContextDataNotFoundException, with the key as its text, when nothing is stored under it.
    String getStringData(const String& key) const;
    String getStringDataWithDefault(const String& key, const String& def = String()) const;

    bool keyHasData(const String& key) const;
    void removeData(const String& key);

private:
    std::map<String, String> m_data;
};

} // namespace OpenWBEM
