#include "OW_config.h"

#include "OW_ProviderEnvironmentIFC.hpp"

#include "OW_CIMOMHandleIFC.hpp"
#include "OW_RepositoryIFC.hpp"

namespace OpenWBEM {

ProviderEnvironmentIFC::~ProviderEnvironmentIFC() = default;

RepositoryIFC::~RepositoryIFC() = default;

} // namespace OpenWBEM
