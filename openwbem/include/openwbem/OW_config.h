// What a generated configuration header says about the machine, written by hand: every header of
// the provider API includes this one first.
#pragma once

// A provider library is used only when its own text equals the server's.
#define OW_VERSION "3.0.3"

// Export marks are a matter of other platforms.
#define OW_COMMON_API

// Empty, so that the older spellings stay usable where warnings are errors.
#define OW_DEPRECATED

// A standard build checks indices and null handles. Both checks are always on here; the macros tell
// provider code so.
#define OW_CHECK_ARRAY_INDEXING 1
#define OW_CHECK_NULL_REFERENCES 1

#define OW_SIZEOF_SHORT_INT __SIZEOF_SHORT__
#define OW_SIZEOF_INT __SIZEOF_INT__
#define OW_SIZEOF_LONG_INT __SIZEOF_LONG__
#define OW_SIZEOF_LONG_LONG_INT __SIZEOF_LONG_LONG__
