#include "matrix/Scene.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_CIMProperty.hpp"

#include <map>
#include <typeinfo>

namespace matrix {

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using test_support::ToolAnswer;

namespace {

constexpr const char* nameSpace = "root/cimv2";

std::string Shown(const CIMValue& value) {
    if (!value) {
        return "null";
    }
    const std::string type = CIMDataType(value.getType()).toString().c_str();
    const std::string text = value.toString().c_str();
    const bool quoted = value.getType() == CIMDataType::STRING;
    return type + " " + (quoted ? "\"" + text + "\"" : text);
}

std::string Shown(const CIMInstance& instance) {
    std::string text = std::string(instance ? instance.getClassName().c_str() : "") + " {";
    const CIMPropertyArray properties = instance ? instance.getProperties() : CIMPropertyArray();
    for (const CIMProperty& property : properties) {
        text += std::string(" ") + property.getName().c_str() + " = " + Shown(property.getValue()) +
                ";";
    }
    return text + " }";
}

std::string Shown(const CIMObjectPath& path) {
    return path.toString().c_str();
}

template <typename Elements>
std::string ShownList(const Elements& elements) {
    std::string text;
    for (const auto& element : elements) {
        text += (text.empty() ? "" : "\n") + Shown(element);
    }
    return text;
}

std::string Shown(const Values& values) {
    std::string text;
    for (const CIMValue& value : values) {
        text += (text.empty() ? "" : ", ") + Shown(value);
    }
    return "(" + text + ")";
}

std::string Shown(const Names& properties) {
    std::string text;
    for (const std::string& name : properties.value_or(std::vector<std::string>())) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return properties ? " properties {" + text + "}" : "";
}

std::string Keys(const CIMObjectPath& path) {
    std::string text;
    for (const CIMProperty& key : path.getKeys()) {
        text += (text.empty() ? "" : ",") + std::string(key.getName().c_str()) + "=" +
                Shown(key.getValue());
    }
    return "[" + text + "]";
}

std::optional<StringArray> List(const Names& properties) {
    if (!properties) {
        return std::nullopt;
    }
    StringArray list;
    for (const std::string& name : *properties) {
        list.push_back(name.c_str());
    }
    return list;
}

const StringArray* Pointer(const std::optional<StringArray>& list) {
    return list ? &*list : nullptr;
}

CIMParamValueArray Parameters(const Values& values) {
    CIMParamValueArray parameters;
    for (const CIMValue& value : values) {
        const std::string name = "P" + std::to_string(parameters.size());
        parameters.push_back(CIMParamValue(name.c_str(), value));
    }
    return parameters;
}

Call ClientCall(const CIMObjectPath& path, const std::string& text,
                std::function<std::string(Scene&)> run) {
    return {path.getClassName().c_str(), text, std::move(run)};
}

// Stands under the association in the table, whatever the path names.
Call AssociationCall(const CIMObjectPath& path, const std::string& operation,
                     const std::string& arguments, std::function<std::string(Scene&)> run) {
    return {"ZNX_AvailableSoftwareFileList",
            operation + " of " + path.getClassName().c_str() + " " + Keys(path) + arguments,
            std::move(run)};
}

} // namespace

std::string AnswerOf(const Call& call, Scene& scene) {
    try {
        return call.run(scene);
    } catch (const CIMException& failure) {
        const std::string standard =
            CIMException(__FILE__, __LINE__, failure.getErrNo(), "").getMessage();
        std::string message = failure.getMessage();
        const std::string lead = standard + " (";
        if (message == standard) {
            return Fails(failure.getErrNo());
        }
        if (message.compare(0, lead.size(), lead) == 0 && message.back() == ')') {
            message = message.substr(lead.size(), message.size() - lead.size() - 1);
        }
        return Fails(failure.getErrNo(), message);
    } catch (const OpenWBEM::Exception& failure) {
        return Escapes(failure.type());
    }
}

std::string Fails(int status, const std::string& text) {
    static const std::map<int, const char*> names = {
        {1, "CIM_ERR_FAILED"},           {4, "CIM_ERR_INVALID_PARAMETER"},
        {5, "CIM_ERR_INVALID_CLASS"},    {6, "CIM_ERR_NOT_FOUND"},
        {7, "CIM_ERR_NOT_SUPPORTED"},    {13, "CIM_ERR_TYPE_MISMATCH"},
        {17, "CIM_ERR_METHOD_NOT_FOUND"}};
    return names.at(status) + std::string(" (") + std::to_string(status) + ")" +
           (text.empty() ? "" : ": " + text);
}

std::string Escapes(const std::string& type) {
    return "exception " + type;
}

std::string ToolFails(int exitCode) {
    return Fails(1, std::string("What it means.\n\n#") + IdOf(exitCode) + "#");
}

std::string LacksField(const std::string& field, const std::string& command) {
    return Fails(1, "Failed to parse " + field + " field from " + command +
                        "\n#SWU_Error_ParsingFailed," + field + "," + command + "#");
}

CIMValue Text(const std::string& text) {
    return CIMValue(String(text.data(), text.size()));
}

CIMValue Flag(bool flag) {
    return CIMValue(flag);
}

CIMValue Number(int number) {
    return CIMValue(static_cast<Int32>(number));
}

CIMValue When(const char* datetime) {
    return CIMValue(CIMDateTime(String(datetime)));
}

CIMValue Null() {
    return CIMValue(CIMNULL);
}

const std::vector<Hostile>& HostileTexts() {
    static const std::vector<Hostile> texts = {
        {"an empty text", ""},
        {"100,000 characters", std::string(100'000, 'x')},
        {"an apostrophe", "a'b"},
        {"a double quote", "a\"b"},
        {"the shell's characters that are refused in paths", "a;(b)[c]*$d#e|f"},
        {"the shell's characters that pass in paths", "a&b`c<d>e"},
        {"non-ASCII letters", "\xc3\xa4\xe2\x82\xac"},
        {"a newline and a tab", "a\nb\tc"},
    };
    return texts;
}

CIMObjectPath ClassPath(const char* className) {
    return CIMObjectPath(className, nameSpace);
}

CIMObjectPath Path(const char* className, const char* key, const CIMValue& value) {
    CIMObjectPath path(className, nameSpace);
    path.setKeys(CIMPropertyArray(1, value ? CIMProperty(key, value)
                                           : CIMProperty(key, CIMDataType::STRING)));
    return path;
}

CIMObjectPath Path(const char* className, const char* key, const char* value) {
    return Path(className, key, CIMValue(value));
}

Call Enumerate(const char* className, const Names& properties) {
    return {className, "EnumerateInstances" + Shown(properties), [=](Scene& scene) {
                const auto list = List(properties);
                return ShownList(scene.calls.EnumInstances(className, Pointer(list)));
            }};
}

Call EnumerateNames(const char* className) {
    return {className, "EnumerateInstanceNames",
            [=](Scene& scene) { return ShownList(scene.calls.EnumInstanceNames(className)); }};
}

Call Get(const CIMObjectPath& path, const Names& properties) {
    return ClientCall(path, "GetInstance " + Keys(path) + Shown(properties), [=](Scene& scene) {
        const auto list = List(properties);
        return Shown(scene.calls.GetInstance(path, Pointer(list)));
    });
}

Call Create(const char* className) {
    return {className, "CreateInstance", [=](Scene& scene) {
                scene.calls.CreateInstance(CIMInstance(className));
                return std::string();
            }};
}

Call Delete(const CIMObjectPath& path) {
    return ClientCall(path, "DeleteInstance " + Keys(path), [=](Scene& scene) {
        scene.calls.DeleteInstance(path);
        return std::string();
    });
}

Call Modify(const char* className, const Properties& properties) {
    std::string text;
    CIMInstance instance(className);
    for (const auto& [name, value] : properties) {
        text += " " + name + " = " + Shown(value) + ";";
        instance.setProperty(CIMName(name.c_str()), value);
    }
    return {className, "ModifyInstance {" + text + " }", [=](Scene& scene) {
                scene.calls.ModifyInstance(instance);
                return std::string();
            }};
}

Call Invoke(const CIMObjectPath& path, const char* method, const Values& in,
            const std::vector<std::string>& out) {
    const std::string text =
        std::string(method) + Shown(in) + (path.getKeys().empty() ? "" : " on " + Keys(path));
    return ClientCall(path, text, [=](Scene& scene) {
        CIMParamValueArray results;
        for (const std::string& name : out) {
            results.push_back(CIMParamValue(name.c_str(), CIMValue(CIMNULL)));
        }
        std::string answer = Shown(
            scene.master.invokeMethod(scene.env, nameSpace, path, method, Parameters(in), results));
        for (const CIMParamValue& result : results) {
            answer +=
                std::string(", ") + result.getName().c_str() + " = " + Shown(result.getValue());
        }
        return answer;
    });
}

namespace {

std::string Shown(const Association& association) {
    return " AssocClass=" + association.assocClass + " ResultClass=" + association.resultClass +
           " Role=" + association.role + " ResultRole=" + association.resultRole;
}

std::string Shown(const char* resultClass, const char* role) {
    return std::string(" ResultClass=") + resultClass + " Role=" + role;
}

} // namespace

Call Associators(const CIMObjectPath& path, const Association& association) {
    return AssociationCall(path, "Associators", Shown(association), [=](Scene& scene) {
        CIMInstanceArray instances;
        CIMInstanceArrayBuilder result(instances);
        scene.master.associators(scene.env, result, nameSpace, path, association.assocClass.c_str(),
                                 association.resultClass.c_str(), association.role.c_str(),
                                 association.resultRole.c_str(), E_EXCLUDE_QUALIFIERS,
                                 E_EXCLUDE_CLASS_ORIGIN, nullptr);
        return ShownList(instances);
    });
}

Call AssociatorNames(const CIMObjectPath& path, const Association& association) {
    return AssociationCall(path, "AssociatorNames", Shown(association), [=](Scene& scene) {
        CIMObjectPathArray paths;
        CIMObjectPathArrayBuilder result(paths);
        scene.master.associatorNames(scene.env, result, nameSpace, path,
                                     association.assocClass.c_str(),
                                     association.resultClass.c_str(), association.role.c_str(),
                                     association.resultRole.c_str());
        return ShownList(paths);
    });
}

Call References(const CIMObjectPath& path, const char* resultClass, const char* role) {
    return AssociationCall(path, "References", Shown(resultClass, role), [=](Scene& scene) {
        CIMInstanceArray instances;
        CIMInstanceArrayBuilder result(instances);
        scene.master.references(scene.env, result, nameSpace, path, resultClass, role,
                                E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
        return ShownList(instances);
    });
}

Call ReferenceNames(const CIMObjectPath& path, const char* resultClass, const char* role) {
    return AssociationCall(path, "ReferenceNames", Shown(resultClass, role), [=](Scene& scene) {
        CIMObjectPathArray paths;
        CIMObjectPathArrayBuilder result(paths);
        scene.master.referenceNames(scene.env, result, nameSpace, path, resultClass, role);
        return ShownList(paths);
    });
}

Call Gives(Call call, const std::string& answer) {
    call.given = answer;
    return call;
}

Call Plays(const char* option, const ToolAnswer& answer) {
    return {"", std::string("the tool's answer to ") + option + " changes", [=](Scene& scene) {
                scene.tool.Plays(option, answer);
                return std::string();
            }};
}

Call ToolIsGone() {
    return {"", "the tool is taken away", [](Scene& scene) {
                scene.tool.TakeToolAway();
                return std::string();
            }};
}

std::vector<std::string> Missed(const std::string& command, int exitCode) {
    return {command, "/qv/bin/patchkeeper --errors " + std::to_string(exitCode)};
}

const std::vector<Table>& Tables() {
    static const std::vector<Table> tables = {
        {"Available", AvailableRows}, {"Component", ComponentRows}, {"Scheduled", ScheduledRows},
        {"Active", ActiveRows},       {"History", HistoryRows},     {"FileName", FileNameRows},
        {"FileList", FileListRows},   {"Inventory", InventoryRows},
    };
    return tables;
}

} // namespace matrix
