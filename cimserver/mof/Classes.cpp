#include "cimserver/mof/Classes.hpp"
#include "cimserver/mof/Literals.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/mof/Qualifiers.hpp"
#include "cimserver/mof/Values.hpp"

#include <utility>

namespace cimserver::mof {

using OpenWBEM::CIMClass;
using OpenWBEM::CIMDataType;
using OpenWBEM::CIMMethod;
using OpenWBEM::CIMMethodArray;
using OpenWBEM::CIMName;
using OpenWBEM::CIMParameter;
using OpenWBEM::CIMParameterArray;
using OpenWBEM::CIMProperty;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMQualifier;
using OpenWBEM::CIMQualifierArray;
using OpenWBEM::CIMScope;
using syntax::Error;

namespace {

const ElementKind kindClass{"a class", {CIMScope::CLASS}};
const ElementKind kindAssociation{"an association", {CIMScope::ASSOCIATION, CIMScope::CLASS}};
const ElementKind kindIndication{"an indication", {CIMScope::INDICATION, CIMScope::CLASS}};
const ElementKind kindProperty{"a property", {CIMScope::PROPERTY}};
const ElementKind kindReference{"a reference", {CIMScope::REFERENCE}};
const ElementKind kindMethod{"a method", {CIMScope::METHOD}};
const ElementKind kindParameter{"a parameter", {CIMScope::PARAMETER}};

bool StatesTrue(const std::vector<syntax::Qualifier>& qualifiers, const char* name) {
    const syntax::Qualifier* qualifier = Find(qualifiers, name);
    return qualifier != nullptr &&
           (!qualifier->value ||
            (!qualifier->value->isArray && qualifier->value->elements.front().text == "true"));
}

template <typename Element>
std::size_t IndexOf(const OpenWBEM::Array<Element>& elements, const std::string& text) {
    const CIMName name(ToString(text));
    std::size_t index = 0;
    while (index < elements.size() && name != elements[index].getName()) {
        ++index;
    }
    return index;
}

template <typename Element>
Element AsInherited(Element element) {
    element.setPropagated(true);
    element.setQualifiers(Propagate(element.getQualifiers()));
    return element;
}

CIMMethod AsInherited(const CIMMethod& method) {
    CIMParameterArray parameters = method.getParameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        parameters[i].setQualifiers(Propagate(parameters[i].getQualifiers()));
    }
    return AsInherited<CIMMethod>(method).setParameters(parameters);
}

/// What the class has so far with what a new one of that name replaces.
template <typename Element>
class Members {
public:
    Members(const char* what, OpenWBEM::Array<Element> inherited)
        : what_(what), elements_(std::move(inherited)) {
        for (std::size_t i = 0; i < elements_.size(); ++i) {
            elements_[i] = AsInherited(elements_[i]);
        }
    }

    /// The element that the new one overrides, null when there is none. Throws Error when the new
    /// one cannot stand beside the others.
    Element Overridden(const syntax::Name& name,
                       const std::vector<syntax::Qualifier>& qualifiers) const {
        const std::size_t index = IndexOf(elements_, name.text);
        const syntax::Qualifier* override = Find(qualifiers, CIMQualifier::CIM_QUAL_OVERRIDE);
        if (index == elements_.size()) {
            if (override != nullptr) {
                throw Error(override->name.place,
                            std::string("there is no ") + what_ + " " + name.text + " to override");
            }
            return Element(OpenWBEM::CIMNULL);
        }
        const Element& element = elements_[index];
        if (!element.getPropagated()) {
            throw Error(name.place, std::string(what_) + " " + name.text + " is declared already");
        }
        if (override == nullptr) {
            throw Error(name.place, std::string(what_) + " " + name.text + " is inherited from " +
                                        element.getOriginClass().c_str() +
                                        ", the qualifier Override is missing");
        }
        return element;
    }

    void Add(const Element& element) {
        const std::size_t index = IndexOf(elements_, element.getName().c_str());
        if (index == elements_.size()) {
            elements_.push_back(element);
        } else {
            elements_[index] = element;
        }
    }

    const OpenWBEM::Array<Element>& All() const { return elements_; }

private:
    const char* what_;
    OpenWBEM::Array<Element> elements_;
};

class ClassBuilder {
public:
    ClassBuilder(const syntax::Class& declaration, const Schema& schema)
        : declaration_(declaration), schema_(schema), superClass_(FindSuperClass()),
          properties_("property",
                      superClass_ ? superClass_.getAllProperties() : CIMPropertyArray()),
          methods_("method", superClass_ ? superClass_.getAllMethods() : CIMMethodArray()) {}

    CIMClass Build() {
        if (schema_.FindClass(ToString(declaration_.name.text)) != nullptr) {
            throw Error(declaration_.name.place,
                        "class " + declaration_.name.text + " is declared already");
        }
        AddQualifiers();
        for (const syntax::Variable& property : declaration_.properties) {
            AddProperty(property);
        }
        for (const syntax::Method& method : declaration_.methods) {
            AddMethod(method);
        }
        cimClass_.setProperties(properties_.All());
        cimClass_.setMethods(methods_.All());
        return cimClass_;
    }

private:
    CIMClass FindSuperClass() {
        cimClass_.setName(ToString(declaration_.name.text));
        if (!declaration_.superClass) {
            return CIMClass(OpenWBEM::CIMNULL);
        }
        const syntax::Name& name = *declaration_.superClass;
        const CIMClass* superClass = schema_.FindClass(ToString(name.text));
        if (superClass == nullptr) {
            throw Error(name.place, "unknown superclass " + syntax::Quote(name.text) +
                                        "; name the file that declares it before this one");
        }
        cimClass_.setSuperClass(superClass->getName());
        return *superClass;
    }

    const ElementKind& Kind() const {
        const auto is = [this](const char* name) {
            return StatesTrue(declaration_.qualifiers, name) ||
                   (superClass_ && superClass_.hasTrueQualifier(name));
        };
        if (is(CIMQualifier::CIM_QUAL_ASSOCIATION)) {
            return kindAssociation;
        }
        return is(CIMQualifier::CIM_QUAL_INDICATION) ? kindIndication : kindClass;
    }

    void AddQualifiers() {
        CIMQualifierArray own = ToQualifiers(declaration_.qualifiers, Kind(), schema_);
        if (superClass_) {
            Inherit(own, superClass_.getQualifiers(), declaration_.qualifiers);
        }
        for (std::size_t i = 0; i < own.size(); ++i) {
            cimClass_.addQualifier(own[i]);
        }
    }

    /// The type of a property, parameter or return value; the class of a reference has to be known.
    CIMDataType TypeOf(const syntax::Variable& variable) const {
        const syntax::Name& type = variable.type;
        if (!variable.isReference) {
            return ToDataType(type, false, variable.array);
        }
        if (CIMName(ToString(type.text)) == cimClass_.getName()) {
            return ToDataType({cimClass_.getName().c_str(), type.place}, true, variable.array);
        }
        const CIMClass* target = schema_.FindClass(ToString(type.text));
        if (target == nullptr) {
            throw Error(type.place, "unknown class " + syntax::Quote(type.text));
        }
        return ToDataType({target->getName().c_str(), type.place}, true, variable.array);
    }

    void AddProperty(const syntax::Variable& declared) {
        const CIMProperty overridden = properties_.Overridden(declared.name, declared.qualifiers);
        const CIMDataType type = TypeOf(declared);
        if (declared.isReference && declared.array) {
            throw Error(declared.type.place, "a property cannot be an array of references");
        }
        CIMProperty property(ToString(declared.name.text), type);
        CIMQualifierArray qualifiers = ToQualifiers(
            declared.qualifiers, declared.isReference ? kindReference : kindProperty, schema_);
        if (overridden) {
            DemandType(declared.type, type, overridden.getDataType());
            Inherit(qualifiers, overridden.getQualifiers(), declared.qualifiers);
        }
        property.setQualifiers(qualifiers);
        property.setOriginClass(cimClass_.getName());
        if (declared.value) {
            property.setValue(ToCimValue(*declared.value, type));
        }
        properties_.Add(property);
    }

    void AddMethod(const syntax::Method& declared) {
        const CIMMethod overridden = methods_.Overridden(declared.name, declared.qualifiers);
        if (declared.isReference) {
            throw Error(declared.type.place, "a method cannot return a reference");
        }
        CIMMethod method(CIMName(ToString(declared.name.text)));
        const CIMDataType type = ToDataType(declared.type, false, {});
        CIMQualifierArray qualifiers = ToQualifiers(declared.qualifiers, kindMethod, schema_);
        if (overridden) {
            DemandType(declared.type, type, overridden.getReturnType());
            Inherit(qualifiers, overridden.getQualifiers(), declared.qualifiers);
        }
        method.setReturnType(type);
        method.setQualifiers(qualifiers);
        method.setParameters(ToParameters(declared.parameters));
        method.setOriginClass(cimClass_.getName());
        methods_.Add(method);
    }

    CIMParameterArray ToParameters(const std::vector<syntax::Variable>& declared) const {
        CIMParameterArray parameters;
        for (const syntax::Variable& variable : declared) {
            if (IndexOf(parameters, variable.name.text) != parameters.size()) {
                throw Error(variable.name.place,
                            "parameter " + variable.name.text + " is declared already");
            }
            CIMParameter parameter(CIMName(ToString(variable.name.text)));
            parameter.setDataType(TypeOf(variable));
            parameter.setQualifiers(ToQualifiers(variable.qualifiers, kindParameter, schema_));
            parameters.push_back(parameter);
        }
        return parameters;
    }

    static void DemandType(const syntax::Name& stated, const CIMDataType& type,
                           const CIMDataType& overridden) {
        if (type.getType() != overridden.getType() ||
            type.isArrayType() != overridden.isArrayType()) {
            throw Error(stated.place, std::string("what is overridden has the type ") +
                                          overridden.toString().c_str() +
                                          (overridden.isArrayType() ? "[]" : ""));
        }
    }

    const syntax::Class& declaration_;
    const Schema& schema_;
    CIMClass cimClass_;
    CIMClass superClass_; ///< null: none
    Members<CIMProperty> properties_;
    Members<CIMMethod> methods_;
};

} // namespace

CIMClass ToClass(const syntax::Class& declaration, const Schema& schema) {
    return ClassBuilder(declaration, schema).Build();
}

} // namespace cimserver::mof
