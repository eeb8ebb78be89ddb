#include "OW_config.h"

extern "C" const char* getOWVersion() {
    return OW_VERSION;
}
