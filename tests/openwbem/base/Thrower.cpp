#include "OW_CIMException.hpp"
#include "OW_String.hpp"

extern "C" void throwCIMException() {
    OW_THROWCIMMSG(OpenWBEM::CIMException::NOT_FOUND, "from the library");
}

extern "C" void throwStringConversionException() {
    (void)OpenWBEM::String("x").toInt32();
}

extern "C" void throwNullDereference() {
    (void)OpenWBEM::String()[0];
}
