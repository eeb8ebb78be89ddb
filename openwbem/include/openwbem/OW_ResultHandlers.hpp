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
    virtual ~CIMInstanceEnumBuilder();

protected:
    virtual void doHandle(const CIMInstance& value);

private:
    CIMInstanceEnumeration& m_target;
};

class OW_COMMON_API CIMInstanceArrayBuilder : public CIMInstanceResultHandlerIFC {
public:
    CIMInstanceArrayBuilder(CIMInstanceArray& target) : m_target(target) {}
    virtual ~CIMInstanceArrayBuilder();

protected:
    virtual void doHandle(const CIMInstance& value);

private:
    CIMInstanceArray& m_target;
};

class OW_COMMON_API CIMObjectPathEnumBuilder : public CIMObjectPathResultHandlerIFC {
public:
    CIMObjectPathEnumBuilder(CIMObjectPathEnumeration& target) : m_target(target) {}
    virtual ~CIMObjectPathEnumBuilder();

protected:
    virtual void doHandle(const CIMObjectPath& value);

private:
    CIMObjectPathEnumeration& m_target;
};

class OW_COMMON_API CIMObjectPathArrayBuilder : public CIMObjectPathResultHandlerIFC {
public:
    CIMObjectPathArrayBuilder(CIMObjectPathArray& target) : m_target(target) {}
    virtual ~CIMObjectPathArrayBuilder();

protected:
    virtual void doHandle(const CIMObjectPath& value);

private:
    CIMObjectPathArray& m_target;
};

} // namespace OpenWBEM
