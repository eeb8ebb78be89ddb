// A parameter in the declaration of a method.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMParameterData;

class CIMParameter : public CIMElement {
public:
    CIMParameter();
    explicit CIMParameter(CIMNULL_t);
    explicit CIMParameter(const CIMName& name);
    explicit CIMParameter(const char* name);
    CIMParameter(const CIMParameter&);
    CIMParameter(CIMParameter&&) noexcept;
    CIMParameter& operator=(const CIMParameter&);
    CIMParameter& operator=(CIMParameter&&) noexcept;
    ~CIMParameter() override;

    String getName() const override;
    void setName(const CIMName& name) override;
    CIMDataType getType() const;
    CIMParameter& setDataType(const CIMDataType& type);
    /// A null qualifier when there is none of that name.
    CIMQualifier getQualifier(const CIMName& name) const;
    CIMQualifierArray getQualifiers() const;
    CIMParameter& setQualifiers(const CIMQualifierArray& qualifiers);
    bool hasTrueQualifier(const CIMName& name) const;

    void setNull() override;
    /// `string name`
    String toString() const override;
    /// `[In(true)] string name`
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelAccess;
    COWIntrusiveReference<CIMParameterData> m_pdata;
};

} // namespace OpenWBEM
