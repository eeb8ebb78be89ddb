// What the named parts of the CIM model have in common.
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// Base of the copy-on-write handles of the model. Copying a handle is cheap; copies become
/// independent when one of them changes. Threads may copy and read a shared const object without a
/// lock; one object that changes needs one. A handle made from CIMNULL is null: all that can be
/// done with it is to test and assign it, anything else throws NULLCOWIntrusiveReferenceException.
class CIMElement {
public:
    virtual ~CIMElement();
    virtual String getName() const = 0;
    virtual void setName(const CIMName& name) = 0;
    virtual void setNull() = 0;
    virtual String toString() const = 0;
    virtual String toMOF() const = 0;

    /// Compare names only, without regard to case.
    bool operator==(const CIMElement& other) const;
    bool operator!=(const CIMElement& other) const;

protected:
    CIMElement() = default;
    CIMElement(const CIMElement&) = default;
    CIMElement(CIMElement&&) noexcept = default;
    CIMElement& operator=(const CIMElement&) = default;
    CIMElement& operator=(CIMElement&&) noexcept = default;
};

} // namespace OpenWBEM
