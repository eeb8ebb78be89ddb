#include "OW_CIMNameSpace.hpp"

namespace OpenWBEM {

namespace {

constexpr UInt16 usualPort = 5988;

} // namespace

CIMNameSpace::CIMNameSpace() : m_port(usualPort) {
}

CIMNameSpace::CIMNameSpace(const String& nameSpace) : CIMNameSpace() {
    setNameSpace(nameSpace);
}

CIMNameSpace& CIMNameSpace::setNameSpace(const String& nameSpace) {
    m_nameSpace = nameSpace;
    m_nameSpace.trim();
    size_t slashes = 0;
    while (m_nameSpace.charAt(slashes) == '/') {
        ++slashes;
    }
    if (slashes > 0) {
        m_nameSpace = m_nameSpace.substring(slashes);
    }
    return *this;
}

CIMNameSpace& CIMNameSpace::setHost(const String& host) {
    m_host = host;
    return *this;
}

String CIMNameSpace::getProtocol() const {
    return m_protocol.empty() ? String("http") : m_protocol;
}

CIMNameSpace& CIMNameSpace::setProtocol(const String& protocol) {
    m_protocol = protocol;
    return *this;
}

CIMNameSpace& CIMNameSpace::setPort(UInt16 port) {
    m_port = port;
    return *this;
}

String CIMNameSpace::toString() const {
    String text;
    if (!isLocal()) {
        text = getProtocol() + "://" + m_host;
        if (m_port != usualPort) {
            text += ":" + String(UInt32(m_port));
        }
    }
    return text + "/" + m_nameSpace;
}

bool CIMNameSpace::sameNameSpace(const CIMNameSpace& other) const {
    return m_nameSpace.equalsIgnoreCase(other.m_nameSpace);
}

} // namespace OpenWBEM
