#pragma once

#include "OW_config.h"

#include "OW_IfcsFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"

namespace OpenWBEM {

// The server's own store of classes and instances. This implementation offers no operation on it:
// the class exists so that an environment can return a reference, normally a null one.
class OW_COMMON_API RepositoryIFC : public virtual IntrusiveCountableBase {
public:
    ~RepositoryIFC() override;
};

} // namespace OpenWBEM
