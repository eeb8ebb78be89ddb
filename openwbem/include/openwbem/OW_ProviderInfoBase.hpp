#pragma once

#include "OW_config.h"

#include "OW_Array.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"

namespace OpenWBEM {

// A class that a provider registers for, in some namespaces or, with none named, in all.
struct OW_COMMON_API InstClassInfo {
    explicit InstClassInfo(const String& className_);
    InstClassInfo(const String& className_, const StringArray& namespaces_);

    String className;
    StringArray namespaces;
};

// The form on which a provider registers its classes when the server asks at its start. ClassInfoT
// is what is said of one class and can be made from a class name alone.
template <class ClassInfoT>
class ProviderInfoBase {
public:
    typedef ClassInfoT ClassInfo;
    typedef Array<ClassInfoT> ClassInfoArray;

    void addInstrumentedClass(const String& className) {
        m_classes.push_back(ClassInfo(className));
    }
    void addInstrumentedClass(const ClassInfo& classInfo) { m_classes.push_back(classInfo); }

    // In the order of registration; what was added twice is there twice.
    const ClassInfoArray& getClassInfo() const { return m_classes; }

    // The provider's id, set by the server.
    void setProviderName(const String& name) { m_providerName = name; }
    String getProviderName() const { return m_providerName; }

protected:
    ProviderInfoBase() {}
    ~ProviderInfoBase() {}
    ProviderInfoBase(const ProviderInfoBase&) = default;
    ProviderInfoBase& operator=(const ProviderInfoBase&) = default;

private:
    ClassInfoArray m_classes;
    String m_providerName;
};

} // namespace OpenWBEM
