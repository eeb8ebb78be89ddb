#include "OW_config.h"

#include "OW_ResultHandlers.hpp"

namespace OpenWBEM {

CIMInstanceEnumBuilder::~CIMInstanceEnumBuilder() = default;
CIMInstanceArrayBuilder::~CIMInstanceArrayBuilder() = default;
CIMObjectPathEnumBuilder::~CIMObjectPathEnumBuilder() = default;
CIMObjectPathArrayBuilder::~CIMObjectPathArrayBuilder() = default;

void CIMInstanceEnumBuilder::doHandle(const CIMInstance& value) {
    m_target.addElement(value);
}
void CIMInstanceArrayBuilder::doHandle(const CIMInstance& value) {
    m_target.push_back(value);
}
void CIMObjectPathEnumBuilder::doHandle(const CIMObjectPath& value) {
    m_target.addElement(value);
}
void CIMObjectPathArrayBuilder::doHandle(const CIMObjectPath& value) {
    m_target.push_back(value);
}

} // namespace OpenWBEM
