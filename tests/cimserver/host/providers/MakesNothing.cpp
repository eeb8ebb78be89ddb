#include "OW_CppProviderIncludes.hpp"

extern "C" const char* getOWVersion() {
    return OW_VERSION;
}
extern "C" OpenWBEM::CppProviderBaseIFC* createProviderMakesNothing() {
    return nullptr;
}
