#pragma once

#include "OW_config.h"

#include "OW_ProviderInfoBase.hpp"

namespace OpenWBEM {

class OW_COMMON_API InstanceProviderInfo : public ProviderInfoBase<InstClassInfo> {
public:
    InstanceProviderInfo();
    ~InstanceProviderInfo();
};

} // namespace OpenWBEM
