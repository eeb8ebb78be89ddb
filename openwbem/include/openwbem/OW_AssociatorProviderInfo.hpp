#pragma once

#include "OW_config.h"

#include "OW_ProviderInfoBase.hpp"

namespace OpenWBEM {

class OW_COMMON_API AssociatorProviderInfo : public ProviderInfoBase<InstClassInfo> {
public:
    AssociatorProviderInfo();
    ~AssociatorProviderInfo();
};

} // namespace OpenWBEM
