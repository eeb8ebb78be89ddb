#pragma once

#include "OW_config.h"

namespace OpenWBEM {

template <class T>
class IntrusiveReference;

class ProviderEnvironmentIFC;
typedef IntrusiveReference<ProviderEnvironmentIFC> ProviderEnvironmentIFCRef;

class InstanceProviderInfo;
class MethodProviderInfo;
class AssociatorProviderInfo;

} // namespace OpenWBEM
