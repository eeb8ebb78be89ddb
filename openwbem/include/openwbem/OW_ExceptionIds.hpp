// Numbers that tell the exception classes of the libraries apart (Exception::getSubClassId).
#pragma once

#include "OW_config.h"

namespace OpenWBEM {
namespace ExceptionIds {

enum {
    ValueCastExceptionId = 6,
    DateTimeExceptionId = 17,
    EnumerationExceptionId = 18,
    NoSuchPropertyExceptionId = 26,
    NoSuchQualifierExceptionId = 28,
    NULLValueExceptionId = 29,
    ContextDataNotFoundExceptionId = 30,
    OutOfBoundsExceptionId = 31,
    StringConversionExceptionId = 37,
    NULLCOWIntrusiveReferenceExceptionId = 47,
    CIMDateTimeExceptionId = 49
};

} // namespace ExceptionIds
} // namespace OpenWBEM
