// A method in the declaration of a class.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMParameter.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMMethodData;

class CIMMethod : public CIMElement {
public:
    CIMMethod();
    explicit CIMMethod(CIMNULL_t);
    explicit CIMMethod(const CIMName& name);
    explicit CIMMethod(const char* name);
    CIMMethod(const CIMMethod&);
    CIMMethod(CIMMethod&&) noexcept;
    CIMMethod& operator=(const CIMMethod&);
    CIMMethod& operator=(CIMMethod&&) noexcept;
    ~CIMMethod() override;

    String getName() const override;
    void setName(const CIMName& name) override;
    CIMDataType getReturnType() const;
    CIMMethod& setReturnType(const CIMDataType& type);
    CIMParameterArray getParameters() const;
    /// Those without an In qualifier, and those with In true.
    CIMParameterArray getINParameters() const;
    /// Those with Out true.
    CIMParameterArray getOUTParameters() const;
    CIMMethod& addParameter(const CIMParameter& parameter);
    CIMMethod& setParameters(const CIMParameterArray& parameters);

    /// A null qualifier when there is none of that name.
    CIMQualifier getQualifier(const CIMName& name) const;
    CIMQualifierArray getQualifiers() const;
    CIMMethod& setQualifiers(const CIMQualifierArray& qualifiers);
    bool hasTrueQualifier(const CIMName& name) const;

    /// The class that defines the method.
    String getOriginClass() const;
    CIMMethod& setOriginClass(const CIMName& className);
    /// Propagated: inherited from a superclass.
    bool getPropagated() const;
    CIMMethod& setPropagated(bool propagated);

    CIMMethod clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                    WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const;

    void setNull() override;
    /// As toMOF.
    String toString() const override;
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelAccess;
    COWIntrusiveReference<CIMMethodData> m_pdata;
};

} // namespace OpenWBEM
