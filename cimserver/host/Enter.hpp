#pragma once

#include "cimserver/host/Host.hpp"

namespace cimserver::host {

/// Runs code of a library that stays open meanwhile. What it throws leaves as RethrowAsCimException
/// makes it, so that nothing of the library is needed once it is closed.
template <class Function>
auto Enter(const Function& function) {
    try {
        return function();
    } catch (...) {
        RethrowAsCimException();
    }
}

} // namespace cimserver::host
