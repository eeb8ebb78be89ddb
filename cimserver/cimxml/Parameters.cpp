#include "cimserver/cimxml/Parameters.hpp"

#include "cimserver/cimxml/ObjectNames.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/ReadValues.hpp"
#include "cimserver/cimxml/Texts.hpp"

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

/// An empty name is none.
String ClassNameIn(const char* parameter, const Element& value) {
    if (value.name != "CLASSNAME") {
        Refuse(String("Parameter ") + parameter + " is no class name");
    }
    return ToString(value.RequiredAttribute("NAME"));
}

[[noreturn]] void RefuseMissing(const char* parameter) {
    Refuse(String("Parameter ") + parameter + " was not specified.");
}

} // namespace

Parameters::Parameters(const Element& call) {
    for (std::size_t i = 1; i < call.children.size(); ++i) {
        const Element& child = call.children[i];
        if (child.name != "IPARAMVALUE") {
            throw NotLooselyValid();
        }
        parameters_.push_back({ToString(child.RequiredAttribute("NAME")), &child, false});
    }
}

const Element* Parameters::ValueOf(const char* name) {
    for (Parameter& parameter : parameters_) {
        if (!parameter.name.equalsIgnoreCase(name)) {
            continue;
        }
        parameter.isRead = true;
        return parameter.element->children.empty() ? nullptr : &parameter.element->OnlyChild();
    }
    return nullptr;
}

void Parameters::ReadFlag(const char* name, bool& flag) {
    const Element* value = ValueOf(name);
    if (value == nullptr) {
        return;
    }
    const String text = ToString(value->text).trim();
    const bool isTrue = text.equalsIgnoreCase("true");
    if (value->name != "VALUE" || (!isTrue && !text.equalsIgnoreCase("false"))) {
        Refuse(String("Parameter ") + name + " is no boolean");
    }
    flag = isTrue;
}

void Parameters::ReadClassName(const char* name, String& className) {
    if (const Element* value = ValueOf(name)) {
        className = ClassNameIn(name, *value);
    }
}

void Parameters::ReadNames(const char* name, operations::PropertyList& names) {
    const Element* value = ValueOf(name);
    if (value == nullptr) {
        return;
    }
    const auto refuse = [name] { Refuse(String("Parameter ") + name + " is no list of names"); };
    if (value->name != "VALUE.ARRAY") {
        refuse();
    }
    StringArray list;
    for (const Element& element : value->children) {
        if (element.name != "VALUE") {
            refuse();
        }
        list.push_back(ToString(element.text));
    }
    names = list;
}

String Parameters::RequiredClassName(const char* name) {
    String className;
    ReadClassName(name, className);
    if (className.empty()) {
        RefuseMissing(name);
    }
    return className;
}

void Parameters::ReadText(const char* name, String& text) {
    const Element* value = ValueOf(name);
    if (value == nullptr) {
        return;
    }
    if (value->name != "VALUE") {
        Refuse(String("Parameter ") + name + " is no text");
    }
    text = ToString(value->text);
}

void Parameters::ReadUntyped(const char* name, CIMValue& value) {
    if (const Element* element = ValueOf(name)) {
        value = ReadValue(*element, CIMDataType::STRING, String("Parameter ") + name);
    }
}

const Element& Parameters::RequiredValueOf(const char* name) {
    const Element* value = ValueOf(name);
    if (value == nullptr) {
        RefuseMissing(name);
    }
    return *value;
}

CIMObjectPath Parameters::RequiredInstanceName(const char* name) {
    const Element& value = RequiredValueOf(name);
    if (value.name != "INSTANCENAME") {
        Refuse(String("Parameter ") + name + " is no instance name");
    }
    return ReadInstanceName(value);
}

CIMObjectPath Parameters::RequiredObjectName(const char* name) {
    const Element& value = RequiredValueOf(name);
    if (value.name != "INSTANCENAME" && value.name != "CLASSNAME") {
        Refuse(String("Parameter ") + name + " is no object name");
    }
    return ReadObjectName(value);
}

String Parameters::RequiredText(const char* name) {
    String text;
    ReadText(name, text);
    if (text.empty()) {
        RefuseMissing(name);
    }
    return text;
}

CIMInstance Parameters::RequiredInstance(const char* name) {
    const Element& value = RequiredValueOf(name);
    if (value.name != "INSTANCE") {
        Refuse(String("Parameter ") + name + " is no instance");
    }
    return ReadInstance(value);
}

std::pair<CIMObjectPath, CIMInstance> Parameters::RequiredNamedInstance(const char* name) {
    const Element& value = RequiredValueOf(name);
    if (value.name != "VALUE.NAMEDINSTANCE") {
        Refuse(String("Parameter ") + name + " is no instance with its name");
    }
    if (value.children.size() != 2 || value.children[0].name != "INSTANCENAME" ||
        value.children[1].name != "INSTANCE") {
        throw NotLooselyValid();
    }
    return {ReadInstanceName(value.children[0]), ReadInstance(value.children[1])};
}

void Parameters::ExpectAllRead() const {
    for (const Parameter& parameter : parameters_) {
        if (!parameter.isRead) {
            Refuse("Unknown or duplicate parameter: " + parameter.name);
        }
    }
}

} // namespace cimserver::cimxml
