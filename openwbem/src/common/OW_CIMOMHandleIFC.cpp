#include "OW_config.h"

#include "OW_CIMOMHandleIFC.hpp"

namespace OpenWBEM {

CIMOMHandleIFC::~CIMOMHandleIFC() = default;

} // namespace OpenWBEM
