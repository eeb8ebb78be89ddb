// The name of the array template; the typedefs stand in OW_CommonFwd.hpp and OW_Array.hpp.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_config.h"
