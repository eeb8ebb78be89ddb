#include "OW_COWIntrusiveReference.hpp"
#include "OW_Exception.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_SharedLibrary.hpp"

namespace OpenWBEM {

OW_DECLARE_EXCEPTION(NULLCOWIntrusiveReference)
OW_DEFINE_EXCEPTION_WITH_ID(NULLCOWIntrusiveReference)

IntrusiveCountableBase::~IntrusiveCountableBase() = default;

SharedLibrary::~SharedLibrary() = default;

void throwNullCOWIntrusiveReference() {
    OW_THROW(NULLCOWIntrusiveReferenceException, "NULL COWReference dereferenced");
}

} // namespace OpenWBEM
