#include "cimserver/operations/Operations.hpp"

#include "cimserver/host/Host.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/operations/Associations.hpp"
#include "cimserver/operations/Changes.hpp"
#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Instances.hpp"
#include "cimserver/operations/Methods.hpp"

#include <type_traits>
#include <utility>

namespace cimserver::operations {

namespace {

template <class CallType>
constexpr bool asksSchemaOnly =
    std::is_same_v<CallType, GetClass> || std::is_same_v<CallType, EnumerateClasses> ||
    std::is_same_v<CallType, EnumerateClassNames> || std::is_same_v<CallType, GetQualifier> ||
    std::is_same_v<CallType, EnumerateQualifiers>;

template <class CallType>
constexpr bool changes =
    std::is_same_v<CallType, CreateInstance> || std::is_same_v<CallType, ModifyInstance> ||
    std::is_same_v<CallType, DeleteInstance> || std::is_same_v<CallType, SetProperty> ||
    std::is_same_v<CallType, InvokeMethod>;

OpenWBEM::String WithoutSlashes(OpenWBEM::String nameSpace) {
    while (nameSpace.startsWith("/")) {
        nameSpace = nameSpace.substring(1);
    }
    return nameSpace;
}

void CheckAllowed(const Request& request) {
    const bool isChange = std::visit(
        [](const auto& call) { return changes<std::decay_t<decltype(call)>>; }, request.call);
    if (isChange && !request.mayChange) {
        const std::string who = request.user.empty() ? "anonymous clients" : request.user;
        OW_THROWCIMMSG(OpenWBEM::CIMException::ACCESS_DENIED, (who + " may only read").c_str());
    }
}

void CheckSupported(const Call& call) {
    if (const auto* other = std::get_if<OtherOperation>(&call)) {
        OW_THROWCIMMSG(OpenWBEM::CIMException::NOT_SUPPORTED, other->name.c_str());
    }
}

void CheckNameSpace(const OpenWBEM::String& asked, const OpenWBEM::String& served) {
    if (!asked.equalsIgnoreCase(served)) {
        OW_THROWCIMMSG(OpenWBEM::CIMException::INVALID_NAMESPACE, asked.c_str());
    }
}

} // namespace

Operations::Operations(const mof::Schema& schema, host::ProviderSource& providers,
                       OpenWBEM::String nameSpace, OpenWBEM::String hostName)
    : schema_(schema), providers_(providers), nameSpace_(WithoutSlashes(std::move(nameSpace))),
      hostName_(std::move(hostName)) {
}

// Of several faults the standard's order counts: right, operation, namespace, parameters, class.
void Operations::Execute(const Request& request, ResultSink& sink) {
    try {
        CheckAllowed(request);
        CheckSupported(request.call);
        const Surroundings around{schema_,   providers_,   WithoutSlashes(request.nameSpace),
                                  hostName_, request.user, request.watch};
        CheckNameSpace(around.nameSpace, nameSpace_);
        std::visit(
            [&](const auto& call) {
                using CallType = std::decay_t<decltype(call)>;
                if constexpr (asksSchemaOnly<CallType>) {
                    Carry(call, schema_, around.nameSpace, sink);
                } else if constexpr (std::is_same_v<CallType, FaultyCall>) {
                    throw OpenWBEM::CIMException(call.error);
                } else if constexpr (!std::is_same_v<CallType, OtherOperation>) {
                    Carry(call, around, sink);
                }
            },
            request.call);
    } catch (...) {
        host::RethrowAsCimException();
    }
}

} // namespace cimserver::operations
