// The path of a class or an instance: host, namespace, class name, keys.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_CIMNameSpace.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMObjectPathData;

/// A copy-on-write handle; what is said of CIMElement about copies, threads and null holds here
/// too. Names are matched without regard to case.
class CIMObjectPath {
public:
    CIMObjectPath();
    explicit CIMObjectPath(CIMNULL_t);
    explicit CIMObjectPath(const CIMName& className);
    explicit CIMObjectPath(const char* className);
    CIMObjectPath(const CIMName& className, const String& nameSpace);
    CIMObjectPath(const CIMName& className, const CIMPropertyArray& keys);
    /// Class name and key array of the instance.
    CIMObjectPath(const String& nameSpace, const CIMInstance& instance);
    CIMObjectPath(const CIMObjectPath&);
    CIMObjectPath(CIMObjectPath&&) noexcept;
    CIMObjectPath& operator=(const CIMObjectPath&);
    CIMObjectPath& operator=(CIMObjectPath&&) noexcept;
    ~CIMObjectPath();

    CIMPropertyArray getKeys() const;
    /// A null property when there is none.
    CIMProperty getKey(const CIMName& name) const;
    /// NoSuchPropertyException, with the name as its message, when there is none.
    CIMProperty getKeyT(const CIMName& name) const;
    CIMValue getKeyValue(const CIMName& name) const;
    bool keyHasValue(const CIMName& name) const;
    /// The keys lose their qualifiers.
    CIMObjectPath& setKeys(const CIMPropertyArray& keys);
    CIMObjectPath& setKeys(const CIMInstance& instance);
    /// Sets the value of an existing key, converted to its type, or appends one; appending null
    /// throws NULLCOWIntrusiveReferenceException.
    CIMObjectPath& setKeyValue(const CIMName& name, const CIMValue& value);
    // Always append; null is ignored. Deprecated.
    CIMObjectPath& addKey(const CIMName& name, const CIMValue& value);
    CIMObjectPath& addKey(const CIMProperty& key);

    String getNameSpace() const;
    /// White space around the name and slashes before it are dropped.
    CIMObjectPath& setNameSpace(const String& nameSpace);
    CIMNameSpace getFullNameSpace() const;
    CIMObjectPath& setFullNameSpace(const CIMNameSpace& nameSpace);
    /// Empty: this machine.
    String getHost() const;
    CIMObjectPath& setHost(const String& host);
    String getClassName() const;
    CIMObjectPath& setClassName(const CIMName& className);
    String getObjectName() const { return getClassName(); }
    CIMObjectPath& setObjectName(const CIMName& name) { return setClassName(name); }

    /// True when there are no keys.
    bool isClassPath() const;
    bool isInstancePath() const { return !isClassPath(); }
    /// Drops keys that the class does not have as properties, gives the others its types and
    /// spelling, and appends its missing keys with their defaults. A class path stays as it is.
    CIMObjectPath& syncWithClass(const CIMClass& cimClass);

    /// Namespace, class name and keys are the same; the host does not count.
    bool equals(const CIMObjectPath& other) const;
    bool operator==(const CIMObjectPath& other) const { return equals(other); }
    bool operator!=(const CIMObjectPath& other) const { return !equals(other); }
    /// The order of the texts.
    bool operator<(const CIMObjectPath& other) const;

    void setNull();
    /// `/root/cimv2:ZNX_A.K="x",N="5"`; all key values are quoted.
    String toString() const;
    /// What follows the colon.
    String modelPath() const;
    /// The text escaped as within a MOF string.
    String toMOF() const;

    /// Reads `[proto://host[:port]/][ns:]Class.k="v",n=5`. Every key becomes a string; the
    /// namespace is `root` when none is named; empty text gives a null path. CIMException
    /// INVALID_PARAMETER when the text is no instance path.
    static CIMObjectPath parse(const String& text);
    /// With backslashes before quotes and backslashes, and for control characters (`\n`).
    static String escape(const String& text);
    /// Drops each backslash and keeps the character after it, so `\n` becomes `n`.
    static String unEscape(const String& text);

    OW_SAFE_BOOL(m_pdata)

private:
    COWIntrusiveReference<CIMObjectPathData> m_pdata;
};

} // namespace OpenWBEM
