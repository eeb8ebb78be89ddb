// What the operations answer (DMTF DSP0200, clause 5), each with a text that names the culprit.
#include "cimserver/conformance/Table.hpp"

namespace conformance {

namespace {

std::string Class(const std::string& name) {
    return Parameter("ClassName", "<CLASSNAME NAME=\"" + name + "\"/>");
}

std::string Value(const std::string& text) {
    return "<VALUE>" + text + "</VALUE>";
}

std::string Named(const std::string& className, const std::string& key = "Id",
                  const std::string& value = "<KEYVALUE>1</KEYVALUE>") {
    return "<INSTANCENAME CLASSNAME=\"" + className + "\"><KEYBINDING NAME=\"" + key + "\">" +
           value + "</KEYBINDING></INSTANCENAME>";
}

std::string Instance(const std::string& name) {
    return Parameter("InstanceName", name);
}

std::string Object(const std::string& name) {
    return Parameter("ObjectName", name);
}

std::string New(const std::string& className, const std::string& properties) {
    return "<INSTANCE CLASSNAME=\"" + className + "\">" + properties + "</INSTANCE>";
}

std::string Property(const std::string& name, const std::string& type, const std::string& value) {
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\">" + Value(value) + "</PROPERTY>";
}

std::string Argument(const std::string& name, const std::string& value) {
    return "<PARAMVALUE NAME=\"" + name + "\">" + value + "</PARAMVALUE>";
}

const std::string itemOne = Named("ET_Item");
const std::string missing = Named("ET_Item", "Id", "<KEYVALUE>none</KEYVALUE>");
const std::string deep = Parameter("DeepInheritance", Value("TRUE"));

std::vector<Row> NameSpaceAndClassRows() {
    const Request names = Operation("EnumerateInstanceNames", Class("ET_None"));
    return {
        {"a namespace that does not exist", Request().InNameSpace("none"), Error(3, "root/none")},
        {"a namespace and a class that do not exist", names.InNameSpace("none"),
         Error(3, "root/none")},
        {"a namespace that does not exist and a parameter that the operation does not have",
         Operation("EnumerateClassNames", Parameter("Color", Value("red"))).InNameSpace("none"),
         Error(3, "root/none")},
        {"GetClass of a class that does not exist", Operation("GetClass", Class("ET_None")),
         Error(6, "ET_None")},
        {"EnumerateClasses below a class that does not exist",
         Operation("EnumerateClasses", Class("ET_None")), Error(5, "ET_None")},
        {"EnumerateClassNames below a class that does not exist",
         Operation("EnumerateClassNames", Class("ET_None")), Error(5, "ET_None")},
        {"EnumerateInstances of a class that does not exist",
         Operation("EnumerateInstances", Class("ET_None")), Error(5, "ET_None")},
        {"EnumerateInstanceNames of a class that does not exist", names, Error(5, "ET_None")},
        {"GetInstance of a class that does not exist",
         Operation("GetInstance", Instance(Named("ET_None"))), Error(5, "ET_None")},
        {"CreateInstance of a class that does not exist",
         Operation("CreateInstance", Parameter("NewInstance", New("ET_None", ""))),
         Error(5, "ET_None")},
        {"DeleteInstance of a class that does not exist",
         Operation("DeleteInstance", Instance(Named("ET_None"))), Error(5, "ET_None")},
        {"Associators of a class that does not exist",
         Operation("Associators", Object(Named("ET_None"))), Error(6, "ET_None")},
        {"a method of a class that does not exist",
         MethodCall("Run", "<CLASSNAME NAME=\"ET_None\"/>"), Error(6, "ET_None")},
        {"GetQualifier of one that does not exist",
         Operation("GetQualifier", Parameter("QualifierName", Value("None"))), Error(6, "None")},
        {"GetQualifier", Operation("GetQualifier", Parameter("QualifierName", Value("required"))),
         Answered("<QUALIFIER.DECLARATION NAME=\"Required\" TYPE=\"boolean\"")},
        {"EnumerateQualifiers", Operation("EnumerateQualifiers"),
         Answered("<QUALIFIER.DECLARATION NAME=\"Abstract\" TYPE=\"boolean\"")},
    };
}

std::vector<Row> ParameterRows() {
    return {
        {"a parameter that the operation does not have",
         Operation("EnumerateClassNames", Parameter("Color", Value("red"))), Error(4, "Color")},
        {"a parameter twice", Operation("EnumerateClassNames", deep + deep),
         Error(4, "DeepInheritance")},
        {"a required parameter left out", Operation("GetClass"), Error(4, "ClassName")},
        {"a required parameter without value",
         Operation("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\"/>"),
         Error(4, "InstanceName")},
        {"a text where a boolean belongs",
         Operation("EnumerateClassNames", Parameter("DeepInheritance", Value("yes"))),
         Error(4, "DeepInheritance")},
        {"a text where a class name belongs",
         Operation("GetClass", Parameter("ClassName", Value("ET_Item"))), Error(4, "ClassName")},
        {"a class name where an instance name belongs",
         Operation("GetInstance", Instance("<CLASSNAME NAME=\"ET_Item\"/>")),
         Error(4, "InstanceName")},
        {"a single value where a list belongs",
         Operation("GetClass", Class("ET_Item") + Parameter("PropertyList", Value("Id"))),
         Error(4, "PropertyList")},
        {"a class name where an instance belongs",
         Operation("CreateInstance", Parameter("NewInstance", "<CLASSNAME NAME=\"ET_Item\"/>")),
         Error(4, "NewInstance")},
        {"a numeric key that is no number",
         Operation(
             "GetInstance",
             Instance(Named("ET_Item", "Id", "<KEYVALUE VALUETYPE=\"numeric\">one</KEYVALUE>"))),
         Error(4, "Key Id: &quot;one&quot;")},
        {"a boolean key that is none",
         Operation(
             "GetInstance",
             Instance(Named("ET_Item", "Id", "<KEYVALUE VALUETYPE=\"boolean\">one</KEYVALUE>"))),
         Error(4, "Key Id: &quot;one&quot;")},
        {"a key twice",
         Operation(
             "GetInstance",
             Instance("<INSTANCENAME CLASSNAME=\"ET_Item\"><KEYBINDING NAME=\"Id\"><KEYVALUE/>"
                      "</KEYBINDING><KEYBINDING NAME=\"ID\"><KEYVALUE/></KEYBINDING>"
                      "</INSTANCENAME>")),
         Error(4, "Key ID")},
    };
}

std::vector<Row> InstanceRows() {
    const std::string id = Property("Id", "string", "new");
    return {
        {"GetInstance of one that does not exist", Operation("GetInstance", Instance(missing)),
         Error(6, "none")},
        {"DeleteInstance of one that does not exist",
         Operation("DeleteInstance", Instance(missing)), Error(6, "none")},
        {"GetProperty of a property that the class does not have",
         Operation("GetProperty", Instance(itemOne) + Parameter("PropertyName", Value("Color"))),
         Error(12, "Color")},
        {"SetProperty of a property that the class does not have",
         Operation("SetProperty", Instance(itemOne) + Parameter("PropertyName", Value("Color"))),
         Error(12, "Color")},
        {"SetProperty with a value of another type",
         Operation("SetProperty", Instance(itemOne) + Parameter("PropertyName", Value("Count")) +
                                      Parameter("NewValue", Value("many"))),
         Error(13, "Property Count")},
        {"CreateInstance of one that exists",
         Operation("CreateInstance",
                   Parameter("NewInstance", New("ET_Item", Property("Id", "string", "1")))),
         Error(11, "1")},
        {"CreateInstance of an abstract class",
         Operation("CreateInstance", Parameter("NewInstance", New("ET_Idea", id))),
         Error(4, "ET_Idea")},
        {"CreateInstance of a class without provider",
         Operation("CreateInstance", Parameter("NewInstance", New("ET_Unserved", id))),
         Error(7, "ET_Unserved")},
        {"CreateInstance with a value that is none of its type",
         Operation("CreateInstance",
                   Parameter("NewInstance", New("ET_Item", id + Property("Count", "uint8", "x")))),
         Error(4, "Property Count")},
        {"CreateInstance with a value of another type than the class has",
         Operation("CreateInstance",
                   Parameter("NewInstance", New("ET_Item", id + Property("Count", "string", "x")))),
         Error(1, "Property Count")},
        {"CreateInstance with a property twice",
         Operation("CreateInstance", Parameter("NewInstance", New("ET_Item", id + id))),
         Error(4, "Property Id")},
        {"ModifyInstance whose name is of another class",
         Operation("ModifyInstance", Parameter("ModifiedInstance",
                                               "<VALUE.NAMEDINSTANCE>" + Named("ET_Box") +
                                                   New("ET_Item", id) + "</VALUE.NAMEDINSTANCE>")),
         Error(4, "ET_Box")},
        {"EnumerateInstances of a class whose provider is not there",
         Operation("EnumerateInstances", Class("ET_Lost")), Error(1, "Invalid provider: Nowhere")},
    };
}

std::vector<Row> MethodAndAssociationRows() {
    const std::string item = "<CLASSNAME NAME=\"ET_Item\"/>";
    return {
        {"a method that the class does not have", MethodCall("Sing", item), Error(17, "Sing")},
        {"a method of an instance that does not exist", MethodCall("Silent", missing),
         Error(6, "none")},
        {"a method without provider", MethodCall("Open", "<CLASSNAME NAME=\"ET_Unserved\"/>"),
         Error(6, "Open")},
        {"a method parameter that is not declared",
         MethodCall("Silent", item, Argument("Color", Value("red"))), Error(4, "Color")},
        {"a method parameter that is no date",
         MethodCall("Describe", item, Argument("When", Value("soon"))), Error(1, "Parameter When")},
        {"a required method parameter left out", MethodCall("Needs", item), Error(4, "Must")},
        {"a method parameter with a value of another type",
         MethodCall("Describe", item, Argument("Number", Value("many"))),
         Error(4, "Parameter Number")},
        {"a method parameter with a value that is none of its `PARAMTYPE`",
         MethodCall("Describe", item,
                    "<PARAMVALUE NAME=\"Number\" PARAMTYPE=\"uint8\">" + Value("300") +
                        "</PARAMVALUE>"),
         Error(4, "Parameter Number")},
        {"a method that fails with a text of two lines",
         MethodCall("Fail", item, Argument("How", Value("cim"))),
         Error(2, "line one&#10;line two")},
        {"a method that throws what is no CIM error",
         MethodCall("Fail", item, Argument("How", Value("other"))), Error(1, "no CIM exception")},
        {"a method that throws anything", MethodCall("Fail", item, Argument("How", Value("x"))),
         Error(1, "Unknown Exception")},
        {"References through a class that is no association",
         Operation("References",
                   Object(itemOne) + Parameter("ResultClass", "<CLASSNAME NAME=\"ET_Box\"/>")),
         Error(4, "ET_Box")},
        {"Associators with a result class that does not exist",
         Operation("Associators",
                   Object(itemOne) + Parameter("ResultClass", "<CLASSNAME NAME=\"ET_None\"/>")),
         Error(5, "ET_None")},
    };
}

} // namespace

Section NotSupportedRows() {
    Section section{"Operations that are refused", {}};
    for (const char* name :
         {"CreateClass", "ModifyClass", "DeleteClass", "SetQualifier", "DeleteQualifier",
          "ExecQuery", "OpenEnumerateInstances", "OpenEnumerateInstancePaths",
          "OpenReferenceInstances", "OpenReferenceInstancePaths", "OpenAssociatorInstances",
          "OpenAssociatorInstancePaths", "OpenQueryInstances", "PullInstancesWithPath",
          "PullInstancePaths", "PullInstances", "CloseEnumeration", "EnumerationCount",
          "MakeCoffee"}) {
        section.rows.push_back(
            {"`" + std::string(name) + "`", Operation(name, deep), Error(7, name)});
    }
    section.rows.push_back({"`CreateClass` in a namespace that does not exist",
                            Operation("CreateClass").InNameSpace("none"), Error(7, "CreateClass")});
    return section;
}

Section OperationRows() {
    Section section{"Operations that fail, and the reading of qualifiers", {}};
    for (const auto& rows :
         {NameSpaceAndClassRows(), ParameterRows(), InstanceRows(), MethodAndAssociationRows()}) {
        section.rows.insert(section.rows.end(), rows.begin(), rows.end());
    }
    return section;
}

} // namespace conformance
