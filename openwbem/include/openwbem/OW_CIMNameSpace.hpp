// A namespace and the host it is on.
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_String.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// A small value class. An empty host means this machine.
class CIMNameSpace {
public:
    CIMNameSpace();
    explicit CIMNameSpace(const String& nameSpace);

    String getNameSpace() const { return m_nameSpace; }
    /// White space around the name and slashes before it are dropped.
    CIMNameSpace& setNameSpace(const String& nameSpace);
    String getHost() const { return m_host; }
    CIMNameSpace& setHost(const String& host);
    String getProtocol() const;
    CIMNameSpace& setProtocol(const String& protocol);
    UInt16 getPort() const { return m_port; }
    CIMNameSpace& setPort(UInt16 port);
    bool isLocal() const { return m_host.empty(); }

    /// `/root`, or `http://host/root`; the port is shown when it is not 5988.
    String toString() const;
    /// The same namespace, without regard to case; hosts are not compared.
    bool sameNameSpace(const CIMNameSpace& other) const;

private:
    String m_nameSpace;
    String m_host;
    String m_protocol; ///< empty: http
    UInt16 m_port;
};

} // namespace OpenWBEM
