#pragma once

#include "OW_config.h"

#include "OW_Array.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMInstanceEnumeration.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMObjectPathEnumeration.hpp"
#include "OW_ResultHandlerIFC.hpp"

namespace OpenWBEM {

// Ready-made result handlers that append what they are given to a target of the caller's. The
// target is borrowed and must outlive the builder.

class OW_COMMON_API CIMInstanceEnumBuilder : public CIMInstanceResultHandlerIFC {
public:
    CIMInstanceEnumBuilder(CIMInstanceEnumeration& target) : m_target(target) {}
    ~CIMInstanceEnumBuilder() override;

protected:
    void doHandle(const CIMInstance& value) override;

private:
    CIMInstanceEnumeration& m_target;
};

class OW_COMMON_API CIMInstanceArrayBuilder : public CIMInstanceResultHandlerIFC {
public:
    CIMInstanceArrayBuilder(CIMInstanceArray& target) : m_target(target) {}
    ~CIMInstanceArrayBuilder() override;

protected:
    void doHandle(const CIMInstance& value) override;

private:
    CIMInstanceArray& m_target;
};

class OW_COMMON_API CIMObjectPathEnumBuilder : public CIMObjectPathResultHandlerIFC {
public:
    CIMObjectPathEnumBuilder(CIMObjectPathEnumeration& target) : m_target(target) {}
    ~CIMObjectPathEnumBuilder() override;

protected:
    void doHandle(const CIMObjectPath& value) override;

private:
    CIMObjectPathEnumeration& m_target;
};

class OW_COMMON_API CIMObjectPathArrayBuilder : public CIMObjectPathResultHandlerIFC {
public:
    CIMObjectPathArrayBuilder(CIMObjectPathArray& target) : m_target(target) {}
    ~CIMObjectPathArrayBuilder() override;

protected:
    void doHandle(const CIMObjectPath& value) override;

private:
    CIMObjectPathArray& m_target;
};

} // namespace OpenWBEM
