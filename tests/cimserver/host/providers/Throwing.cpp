// Throws from initialize what the switches say. The types are its own, so that they are gone when
// the library is closed.
#include "cimserver/host/providers/Plain.hpp"
#include "cimserver/host/providers/Record.hpp"

#include "OW_CIMException.hpp"
#include "OW_Exception.hpp"

#include <stdexcept>

namespace OpenWBEM {

OW_DECLARE_EXCEPTION(HostTest)
OW_DEFINE_EXCEPTION(HostTest)

} // namespace OpenWBEM

namespace {

class OwnCimException : public OpenWBEM::CIMException {
public:
    OwnCimException() : CIMException("", 0, ACCESS_DENIED, "keep out") {}
};

class OwnError : public std::exception {
public:
    const char* what() const noexcept override { return "an own text"; }
};

struct Anything {};

class Throwing : public Plain {
public:
    void initialize(const Env&) override {
        if (hosttest::IsOn("throw CIMException")) {
            throw OwnCimException();
        }
        if (hosttest::IsOn("throw Exception")) {
            OW_THROW(OpenWBEM::HostTestException, "bare text");
        }
        if (hosttest::IsOn("throw std::exception")) {
            throw OwnError();
        }
        throw Anything();
    }
};

} // namespace

extern "C" const char* getOWVersion() {
    return OW_VERSION;
}
extern "C" OpenWBEM::CppProviderBaseIFC* createProviderThrowing() {
    if (hosttest::IsOn("throw from the factory")) {
        throw OwnError();
    }
    return new Throwing;
}
