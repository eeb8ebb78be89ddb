// A loaded library, as far as the handles of provider objects need it.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_config.h"

namespace OpenWBEM {

// Whoever loads libraries derives from it and closes the library in the destructor.
class OW_COMMON_API SharedLibrary : public IntrusiveCountableBase {
public:
    SharedLibrary() = default;
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    ~SharedLibrary() override;
};

} // namespace OpenWBEM
