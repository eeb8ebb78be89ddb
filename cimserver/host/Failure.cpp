#include "cimserver/host/Host.hpp"

#include "OW_CIMException.hpp"
#include "OW_Exception.hpp"

#include <exception>
#include <new>
#include <string>
#include <utility>

namespace cimserver::host {

namespace {

// Says exactly the given text, where CIMException would put the phrase of the number around it.
class Failure final : public OpenWBEM::CIMException {
public:
    Failure(ErrNoType number, std::string text)
        : CIMException(__FILE__, __LINE__, number), text_(std::move(text)) {}
    const char* type() const override { return "CIMException"; }
    const char* getMessage() const override { return text_.c_str(); }
    const char* what() const noexcept override { return text_.c_str(); }
    CIMException* clone() const override { return new (std::nothrow) Failure(*this); }

private:
    std::string text_;
};

} // namespace

void RethrowAsCimException() {
    try {
        throw;
    } catch (const OpenWBEM::CIMException& error) {
        throw Failure(error.getErrNo(), error.getMessage());
    } catch (const OpenWBEM::Exception& error) {
        throw Failure(OpenWBEM::CIMException::FAILED, error.getMessage());
    } catch (const std::exception& error) {
        throw Failure(OpenWBEM::CIMException::FAILED, error.what());
    } catch (...) {
        throw Failure(OpenWBEM::CIMException::FAILED, "Unknown Exception");
    }
}

} // namespace cimserver::host
