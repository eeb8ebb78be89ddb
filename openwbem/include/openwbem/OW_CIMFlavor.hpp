// How a qualifier passes to subclasses (DMTF DSP0004, flavors).
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_String.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// A small value class.
class CIMFlavor {
public:
    enum Flavor {
        INVALID = 0,
        ENABLEOVERRIDE = 1,
        DISABLEOVERRIDE = 2,
        RESTRICTED = 3,
        TOSUBCLASS = 4,
        TRANSLATE = 5
    };

    CIMFlavor() : m_flavor(INVALID) {}
    CIMFlavor(Flavor flavor) : m_flavor(flavor) {}

    Flavor getFlavor() const { return m_flavor; }
    bool operator==(const CIMFlavor& other) const { return m_flavor == other.m_flavor; }
    bool operator!=(const CIMFlavor& other) const { return m_flavor != other.m_flavor; }
    bool operator!() const { return m_flavor == INVALID; }

    /// The MOF keyword, for example `DisableOverride`; empty when invalid.
    String toString() const;
    String toMOF() const { return toString(); }

private:
    Flavor m_flavor;
};

} // namespace OpenWBEM
