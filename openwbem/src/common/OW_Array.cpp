#include "OW_Array.hpp"

#include <string>

namespace OpenWBEM {

OW_DEFINE_EXCEPTION_WITH_ID(OutOfBounds)

void throwArrayOutOfBoundsException(size_t size, size_t index) {
    const std::string text = "Array Index out of bounds. size = " + std::to_string(size) +
                             ", index = " + std::to_string(index);
    OW_THROW(OutOfBoundsException, text.c_str());
}

} // namespace OpenWBEM
