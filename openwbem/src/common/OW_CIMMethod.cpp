#include "OW_CIMMethod.hpp"

#include "OW_CIMModelData.hpp"

namespace OpenWBEM {

namespace {

template <class Condition>
CIMParameterArray parametersThat(const CIMParameterArray& parameters, Condition condition) {
    CIMParameterArray result;
    for (const CIMParameter& parameter : parameters) {
        if (condition(parameter)) {
            result.push_back(parameter);
        }
    }
    return result;
}

bool goesIn(const CIMParameter& parameter) {
    return !parameter.getQualifier(CIMQualifier::CIM_QUAL_IN) ||
           parameter.hasTrueQualifier(CIMQualifier::CIM_QUAL_IN);
}

bool comesOut(const CIMParameter& parameter) {
    return parameter.hasTrueQualifier(CIMQualifier::CIM_QUAL_OUT);
}

} // namespace

CIMMethod::CIMMethod() : m_pdata(new CIMMethodData) {
}
CIMMethod::CIMMethod(CIMNULL_t) {
}
CIMMethod::CIMMethod(const CIMName& name) : CIMMethod() {
    m_pdata->name = name;
}
CIMMethod::CIMMethod(const char* name) : CIMMethod(CIMName(name)) {
}
CIMMethod::CIMMethod(const CIMMethod&) = default;
CIMMethod::CIMMethod(CIMMethod&&) noexcept = default;
CIMMethod& CIMMethod::operator=(const CIMMethod&) = default;
CIMMethod& CIMMethod::operator=(CIMMethod&&) noexcept = default;
CIMMethod::~CIMMethod() = default;

String CIMMethod::getName() const {
    return m_pdata->name.toString();
}

void CIMMethod::setName(const CIMName& name) {
    m_pdata->name = name;
}

CIMDataType CIMMethod::getReturnType() const {
    return m_pdata->returnType;
}

CIMMethod& CIMMethod::setReturnType(const CIMDataType& type) {
    m_pdata->returnType = type;
    return *this;
}

CIMParameterArray CIMMethod::getParameters() const {
    return m_pdata->parameters;
}

CIMParameterArray CIMMethod::getINParameters() const {
    return parametersThat(m_pdata->parameters, goesIn);
}

CIMParameterArray CIMMethod::getOUTParameters() const {
    return parametersThat(m_pdata->parameters, comesOut);
}

CIMMethod& CIMMethod::addParameter(const CIMParameter& parameter) {
    m_pdata->parameters.push_back(parameter);
    return *this;
}

CIMMethod& CIMMethod::setParameters(const CIMParameterArray& parameters) {
    m_pdata->parameters = parameters;
    return *this;
}

CIMQualifier CIMMethod::getQualifier(const CIMName& name) const {
    return findOrNull(m_pdata->qualifiers, name);
}

CIMQualifierArray CIMMethod::getQualifiers() const {
    return m_pdata->qualifiers;
}

CIMMethod& CIMMethod::setQualifiers(const CIMQualifierArray& qualifiers) {
    m_pdata->qualifiers = qualifiers;
    return *this;
}

bool CIMMethod::hasTrueQualifier(const CIMName& name) const {
    return hasTrueValue(m_pdata->qualifiers, name);
}

String CIMMethod::getOriginClass() const {
    return m_pdata->originClass.toString();
}

CIMMethod& CIMMethod::setOriginClass(const CIMName& className) {
    m_pdata->originClass = className;
    return *this;
}

bool CIMMethod::getPropagated() const {
    return m_pdata->isPropagated;
}

CIMMethod& CIMMethod::setPropagated(bool propagated) {
    m_pdata->isPropagated = propagated;
    return *this;
}

CIMMethod CIMMethod::clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                           WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const {
    CIMMethod copy(*this);
    CIMMethodData& data = *copy.m_pdata;
    if (includeClassOrigin == WBEMFlags::E_EXCLUDE_CLASS_ORIGIN) {
        data.originClass = CIMName();
    }
    if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS) {
        data.qualifiers.clear();
        CIMParameterArray plain;
        for (CIMParameter parameter : getParameters()) {
            plain.push_back(parameter.setQualifiers(CIMQualifierArray()));
        }
        data.parameters = plain;
    }
    return copy;
}

void CIMMethod::setNull() {
    *this = CIMMethod(CIMNULL);
}

String CIMMethod::toString() const {
    return toMOF();
}

String CIMMethod::toMOF() const {
    const CIMMethodData& data = *m_pdata;
    std::string text = qualifiersToMOF(data.qualifiers);
    if (!text.empty()) {
        text = "  " + text + "\n";
    }
    text += "  " + declarationToMOF(data.returnType, data.name) + "(";
    const char* separator = "\n    ";
    for (const CIMParameter& parameter : data.parameters) {
        text += separator;
        text += parameter.toMOF().c_str();
        separator = ",\n    ";
    }
    return toOwString(text + ");\n");
}

} // namespace OpenWBEM
