// The kinds of model element that a qualifier may stand on (DMTF DSP0004, scopes).
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_String.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// A small value class.
class CIMScope {
public:
    enum Scope {
        BAD = 0,
        SCHEMA,
        CLASS,
        ASSOCIATION,
        INDICATION,
        PROPERTY,
        REFERENCE,
        METHOD,
        PARAMETER,
        ANY
    };

    CIMScope() : m_scope(BAD) {}
    CIMScope(Scope scope) : m_scope(scope) {}

    Scope getScope() const { return m_scope; }
    bool operator==(const CIMScope& other) const { return m_scope == other.m_scope; }
    bool operator!=(const CIMScope& other) const { return m_scope != other.m_scope; }
    bool operator!() const { return m_scope == BAD; }

    /// The MOF keyword in lower case, for example `association`; empty when bad.
    String toString() const;
    String toMOF() const { return toString(); }

private:
    Scope m_scope;
};

} // namespace OpenWBEM
