#include "cimserver/cimxml/Note.hpp"

#include <array>

namespace cimserver::cimxml {

namespace {

template <class Call>
concept HasClass = requires(const Call& call) {
    call.className;
};
template <class Call>
concept HasInstance = requires(const Call& call) {
    call.instanceName;
};
template <class Call>
concept HasObject = requires(const Call& call) {
    call.objectName;
};
template <class Call>
concept HasNewInstance = requires(const Call& call) {
    call.newInstance;
};

template <class Call>
OpenWBEM::String ClassOf(const Call& call) {
    if constexpr (HasClass<Call>) {
        return call.className;
    } else if constexpr (HasInstance<Call>) {
        return call.instanceName.getClassName();
    } else if constexpr (HasObject<Call>) {
        return call.objectName.getClassName();
    } else if constexpr (HasNewInstance<Call>) {
        return call.newInstance.getClassName();
    } else {
        return {};
    }
}

} // namespace

void Note(const MethodCall& call, Outcome& outcome) {
    (call.isExtrinsic ? outcome.method : outcome.operation) = call.name;
    if (call.isExtrinsic) {
        outcome.operation = "InvokeMethod";
    }
}

void Note(const operations::Call& call, Outcome& outcome) {
    const OpenWBEM::String name =
        std::visit([](const auto& operation) { return ClassOf(operation); }, call);
    outcome.className.assign(name.c_str(), name.length());
}

std::string ErrorName(int cimError) {
    // From 1 on; DMTF DSP0200, status codes.
    constexpr std::array names{
        "FAILED",
        "ACCESS_DENIED",
        "INVALID_NAMESPACE",
        "INVALID_PARAMETER",
        "INVALID_CLASS",
        "NOT_FOUND",
        "NOT_SUPPORTED",
        "CLASS_HAS_CHILDREN",
        "CLASS_HAS_INSTANCES",
        "INVALID_SUPERCLASS",
        "ALREADY_EXISTS",
        "NO_SUCH_PROPERTY",
        "TYPE_MISMATCH",
        "QUERY_LANGUAGE_NOT_SUPPORTED",
        "INVALID_QUERY",
        "METHOD_NOT_AVAILABLE",
        "METHOD_NOT_FOUND",
    };
    const auto index = static_cast<std::size_t>(cimError) - 1;
    const bool isKnown = cimError > 0 && index < names.size();
    return "CIM_ERR_" + (isKnown ? std::string(names.at(index)) : std::to_string(cimError));
}

} // namespace cimserver::cimxml
