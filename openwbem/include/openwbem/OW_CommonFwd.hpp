// Names of the basic classes, for headers that need no more than the name.
#pragma once

#include "OW_config.h"

namespace OpenWBEM {

template <class T>
class Array;
template <class T>
class IntrusiveReference;
template <class T>
class COWIntrusiveReference;
template <class T>
class SharedLibraryReference;

class Bool;
class CIMDateTime;
class CIMObjectPath;
class Char16;
class DateTime;
class Format;
struct LogMessage;
class Logger;
class OperationContext;
class SharedLibrary;
class String;
class StringBuffer;

typedef IntrusiveReference<Logger> LoggerRef;
typedef IntrusiveReference<SharedLibrary> SharedLibraryRef;

typedef Array<String> StringArray;
typedef Array<Bool> BoolArray;
typedef Array<Char16> Char16Array;

} // namespace OpenWBEM
