#include "cimserver/host/providers/Plain.hpp"

extern "C" const char* getOWVersion() {
    return "3.0.2";
}
extern "C" OpenWBEM::CppProviderBaseIFC* createProviderOldVersion() {
    return new Plain;
}
