// A named value that goes into a method or comes out of it.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMParamValueData;

/// A copy-on-write handle; what is said of CIMElement about copies, threads and null holds here
/// too.
class CIMParamValue {
public:
    CIMParamValue();
    explicit CIMParamValue(CIMNULL_t);
    CIMParamValue(const CIMName& name, const CIMValue& value);
    /// With a null value.
    explicit CIMParamValue(const CIMName& name);
    CIMParamValue(const CIMParamValue&);
    CIMParamValue(CIMParamValue&&) noexcept;
    CIMParamValue& operator=(const CIMParamValue&);
    CIMParamValue& operator=(CIMParamValue&&) noexcept;
    ~CIMParamValue();

    String getName() const;
    CIMParamValue& setName(const CIMName& name);
    CIMValue getValue() const;
    CIMParamValue& setValue(const CIMValue& value);
    void setNull();
    /// `CIMParamValue(n): v`
    String toString() const;

    OW_SAFE_BOOL(m_pdata)

private:
    COWIntrusiveReference<CIMParamValueData> m_pdata;
};

} // namespace OpenWBEM
