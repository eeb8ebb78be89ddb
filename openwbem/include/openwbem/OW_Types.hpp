// Integer and real types of fixed width, named after the CIM types that they carry.
#pragma once

#include "OW_config.h"

#define OW_SHAREDLIB_EXTENSION ".so"
#define OW_FILENAME_SEPARATOR "/"

namespace OpenWBEM {

typedef unsigned char UInt8;
typedef signed char Int8;
typedef unsigned short UInt16;
typedef short Int16;
typedef unsigned int UInt32;
typedef int Int32;

// Overloads exist for these two only: where long has 8 bytes, long long matches none of them
// exactly.
#if OW_SIZEOF_LONG_INT == 8
typedef unsigned long UInt64;
typedef long Int64;
#else
typedef unsigned long long UInt64;
typedef long long Int64;
#endif

typedef float Real32;
typedef double Real64;

} // namespace OpenWBEM
