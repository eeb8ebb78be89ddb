#pragma once

#include "OW_config.h"

#include "OW_IfcsFwd.hpp"

namespace OpenWBEM {

// Takes the results of an enumeration one by one as they arise. The caller of handle keeps its
// object; a handler that wants to keep the value copies it. What doHandle throws reaches the
// provider that called handle.
template <typename T>
class ResultHandlerIFC {
public:
    ResultHandlerIFC() {}
    ResultHandlerIFC(const ResultHandlerIFC&) {}
    ResultHandlerIFC& operator=(const ResultHandlerIFC&) { return *this; }
    virtual ~ResultHandlerIFC() {}

    void handle(const T& value) { doHandle(value); }

protected:
    virtual void doHandle(const T& value) = 0;
};

} // namespace OpenWBEM
