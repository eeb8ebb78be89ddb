#include "cimserver/operations/Methods.hpp"

#include "cimserver/operations/Classes.hpp"
#include "cimserver/operations/Conversions.hpp"
#include "cimserver/operations/Providers.hpp"

#include "OW_CIMException.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CppMethodProviderIFC.hpp"

#include <string>

namespace cimserver::operations {

namespace {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMException;
using OpenWBEM::CIMMethod;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMParameter;
using OpenWBEM::CIMParameterArray;
using OpenWBEM::CIMParamValue;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMQualifier;
using OpenWBEM::CIMValue;
using OpenWBEM::String;
using OpenWBEM::CIMValueCast::castValueToDataType;

[[noreturn]] void Refuse(const String& text) {
    OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, text.c_str());
}

void CheckInstance(const CIMObjectPath& path, const CIMClass& cimClass, const Surroundings& around,
                   const std::string& operation) {
    const String text = "Instance not found: " + path.toString();
    const auto refuse = [&] { OW_THROWCIMMSG(CIMException::NOT_FOUND, text.c_str()); };
    const bool hasProvider =
        AskProvider(cimClass, around, operation.c_str(), [&](auto& provider, const auto& env) {
            try {
                CurrentInstance(provider, env, path, cimClass, around);
            } catch (const CIMException&) {
                refuse();
            }
        });
    if (!hasProvider) {
        refuse();
    }
}

// The first of that name, which is removed; null when there is none.
CIMParamValue Take(CIMParamValueArray& parameters, const String& name) {
    for (CIMParamValueArray::size_type i = 0; i < parameters.size(); ++i) {
        CIMParamValue parameter = parameters[i];
        if (parameter.getName().equalsIgnoreCase(name)) {
            parameters.remove(i);
            return parameter;
        }
    }
    return CIMParamValue(OpenWBEM::CIMNULL);
}

// A scalar that is sent for an array stays one, when it is of the right type otherwise.
CIMValue Typed(const CIMValue& value, const CIMParameter& parameter) {
    const OpenWBEM::CIMDataType type = parameter.getType();
    if (!value || value.getType() == type.getType()) {
        return value;
    }
    const String what = "Parameter " + parameter.getName();
    try {
        return castValueToDataType(value, type);
    } catch (const CIMException& error) {
        RethrowNaming(what, error, CIMException::INVALID_PARAMETER);
    } catch (const OpenWBEM::Exception& error) { // a text that is no date
        RethrowNaming(what, error);
    }
}

CIMParamValueArray InParameters(const CIMMethod& method, CIMParamValueArray sent) {
    CIMParamValueArray in;
    const CIMParameterArray declared = method.getINParameters();
    for (const CIMParameter& parameter : declared) {
        CIMParamValue value = Take(sent, parameter.getName());
        if (value) {
            value.setValue(Typed(value.getValue(), parameter));
        } else if (parameter.hasTrueQualifier(CIMQualifier::CIM_QUAL_REQUIRED)) {
            Refuse("Parameter " + parameter.getName() + " was not specified.");
        } else {
            value = CIMParamValue(OpenWBEM::CIMName(parameter.getName()));
        }
        in.push_back(value);
    }
    if (!sent.empty()) {
        Refuse("Unknown or duplicate parameter: " + sent[0].getName());
    }
    return in;
}

CIMParamValueArray OutParameters(const CIMMethod& method, CIMParamValueArray in) {
    CIMParamValueArray out;
    const CIMParameterArray declared = method.getOUTParameters();
    for (const CIMParameter& parameter : declared) {
        const CIMParamValue given = Take(in, parameter.getName());
        out.push_back(CIMParamValue(parameter.getName(),
                                    given ? given.getValue() : CIMValue(OpenWBEM::CIMNULL)));
    }
    return out;
}

// What the provider appended goes out as it is.
void GiveDeclaredTypes(CIMParamValueArray& out, const CIMMethod& method) {
    const CIMParameterArray declared = method.getOUTParameters();
    for (CIMParameterArray::size_type i = 0; i < declared.size(); ++i) {
        CIMParamValue& value = out[i];
        value.setValue(castValueToDataType(value.getValue(), declared[i].getType()));
    }
}

// The method's own Provider qualifier counts before that of the class.
host::Target MethodTarget(const CIMMethod& method, const CIMClass& cimClass,
                          const String& nameSpace) {
    host::Target target = TargetOf(cimClass, nameSpace);
    const String own = ProviderOf(method.getQualifier(CIMQualifier::CIM_QUAL_PROVIDER));
    if (!own.empty()) {
        target.providerQualifier = own;
    }
    return target;
}

} // namespace

void Carry(const InvokeMethod& call, const Surroundings& around, ResultSink& sink) {
    const auto& cimClass = FindClass(around.schema, around.nameSpace,
                                     call.objectName.getClassName(), CIMException::NOT_FOUND);
    const auto path = PathFromClient(call.objectName, cimClass, around.nameSpace);
    const std::string operation = std::string("InvokeMethod ") + call.methodName.c_str();
    if (path.isInstancePath()) {
        CheckInstance(path, cimClass, around, operation);
    }
    const CIMMethod method = cimClass.getMethod(call.methodName);
    if (!method) {
        OW_THROWCIMMSG(CIMException::METHOD_NOT_FOUND, call.methodName.c_str());
    }
    const bool hasProvider = around.providers.WithMethodProvider(
        MethodTarget(method, cimClass, around.nameSpace), method.getName(),
        around.InfoFor(operation), [&](auto& provider, const auto& env) {
            const CIMParamValueArray in = InParameters(method, call.parameters);
            CIMParamValueArray out = OutParameters(method, in);
            const CIMValue value =
                provider.invokeMethod(env, around.nameSpace, path, call.methodName, in, out);
            GiveDeclaredTypes(out, method);
            sink.MethodResult(value, out);
        });
    if (!hasProvider) {
        const String text = "No provider for method " + call.methodName;
        OW_THROWCIMMSG(CIMException::NOT_FOUND, text.c_str());
    }
}

} // namespace cimserver::operations
