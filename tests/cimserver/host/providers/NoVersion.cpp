#include "cimserver/host/providers/Plain.hpp"

extern "C" OpenWBEM::CppProviderBaseIFC* createProviderNoVersion() {
    return new Plain;
}
