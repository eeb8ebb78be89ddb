#pragma once

#include "OW_config.h"

#include "OW_IfcsFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"

namespace OpenWBEM {

// The way back into the server for a provider. This implementation offers no operation on it: the
// class exists so that an environment can return a reference, normally a null one.
class OW_COMMON_API CIMOMHandleIFC : public virtual IntrusiveCountableBase {
public:
    ~CIMOMHandleIFC() override;
};

} // namespace OpenWBEM
