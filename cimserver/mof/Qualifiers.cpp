#include "cimserver/mof/Qualifiers.hpp"
#include "cimserver/mof/Literals.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/mof/Values.hpp"

namespace cimserver::mof {

using OpenWBEM::CIMFlavor;
using OpenWBEM::CIMName;
using OpenWBEM::CIMQualifier;
using OpenWBEM::CIMQualifierArray;
using OpenWBEM::CIMQualifierType;
using OpenWBEM::CIMScope;
using syntax::Error;

namespace {

constexpr CIMScope::Scope allScopes[] = {
    CIMScope::CLASS,     CIMScope::ASSOCIATION, CIMScope::INDICATION, CIMScope::PROPERTY,
    CIMScope::REFERENCE, CIMScope::METHOD,      CIMScope::PARAMETER,  CIMScope::ANY};

constexpr CIMFlavor::Flavor allFlavors[] = {CIMFlavor::ENABLEOVERRIDE, CIMFlavor::DISABLEOVERRIDE,
                                            CIMFlavor::RESTRICTED, CIMFlavor::TOSUBCLASS};

CIMName ToName(const syntax::Name& name) {
    return CIMName(ToString(name.text));
}

CIMScope ToScope(const syntax::Name& name) {
    for (const CIMScope::Scope scope : allScopes) {
        if (ToName(name) == CIMScope(scope).toString()) {
            return scope;
        }
    }
    throw Error(name.place, "unknown scope " + syntax::Quote(name.text));
}

CIMFlavor ToFlavor(const syntax::Name& name) {
    for (const CIMFlavor::Flavor flavor : allFlavors) {
        if (ToName(name) == CIMFlavor(flavor).toString()) {
            return flavor;
        }
    }
    if (ToName(name) == "Translatable") {
        return CIMFlavor::TRANSLATE;
    }
    throw Error(name.place, "unknown flavor " + syntax::Quote(name.text));
}

/// The flavor that cannot hold beside this one.
CIMFlavor Contrary(const CIMFlavor& flavor) {
    switch (flavor.getFlavor()) {
    case CIMFlavor::ENABLEOVERRIDE:
        return CIMFlavor::DISABLEOVERRIDE;
    case CIMFlavor::DISABLEOVERRIDE:
        return CIMFlavor::ENABLEOVERRIDE;
    case CIMFlavor::RESTRICTED:
        return CIMFlavor::TOSUBCLASS;
    case CIMFlavor::TOSUBCLASS:
        return CIMFlavor::RESTRICTED;
    default:
        return {};
    }
}

void AddFlavors(CIMQualifierType& type, const std::vector<syntax::Name>& flavors) {
    for (const syntax::Name& name : flavors) {
        const CIMFlavor flavor = ToFlavor(name);
        if (type.hasFlavor(Contrary(flavor))) {
            throw Error(name.place, "flavor " + name.text + " contradicts " +
                                        Contrary(flavor).toString().c_str());
        }
        type.addFlavor(flavor);
    }
    for (const CIMFlavor::Flavor flavor : {CIMFlavor::ENABLEOVERRIDE, CIMFlavor::TOSUBCLASS}) {
        if (!type.hasFlavor(Contrary(flavor))) {
            type.addFlavor(flavor);
        }
    }
}

bool MayStandOn(const CIMQualifierType& type, const ElementKind& kind) {
    if (type.hasScope(CIMScope::ANY)) {
        return true;
    }
    for (const CIMScope::Scope scope : kind.scopes) {
        if (type.hasScope(scope)) {
            return true;
        }
    }
    return false;
}

CIMQualifier ToQualifier(const syntax::Qualifier& stated, const CIMQualifierType& type) {
    CIMQualifier qualifier(type);
    if (stated.value) {
        qualifier.setValue(ToCimValue(*stated.value, type.getDataType()));
    } else if (type.getDataType().getType() == OpenWBEM::CIMDataType::BOOLEAN) {
        qualifier.setValue(OpenWBEM::CIMValue(true));
    }
    for (const syntax::Name& name : stated.flavors) {
        const CIMFlavor flavor = ToFlavor(name);
        qualifier.removeFlavor(Contrary(flavor));
        qualifier.addFlavor(flavor);
    }
    return qualifier;
}

std::size_t IndexOf(const CIMQualifierArray& qualifiers, const CIMName& name) {
    std::size_t index = 0;
    while (index < qualifiers.size() && name != qualifiers[index].getName()) {
        ++index;
    }
    return index;
}

} // namespace

CIMQualifierType ToQualifierType(const syntax::QualifierDeclaration& declaration) {
    CIMQualifierType type(ToName(declaration.name));
    const OpenWBEM::CIMDataType dataType = ToDataType(declaration.type, false, declaration.array);
    type.setDataType(dataType);
    if (declaration.value) {
        type.setDefaultValue(ToCimValue(*declaration.value, dataType));
    }
    for (const syntax::Name& name : declaration.scopes) {
        type.addScope(ToScope(name));
    }
    AddFlavors(type, declaration.flavors);
    return type;
}

CIMQualifierArray ToQualifiers(const std::vector<syntax::Qualifier>& stated,
                               const ElementKind& kind, const Schema& schema) {
    CIMQualifierArray qualifiers;
    for (const syntax::Qualifier& qualifier : stated) {
        const syntax::Name& name = qualifier.name;
        const CIMQualifierType* type = schema.FindQualifier(ToString(name.text));
        if (type == nullptr) {
            throw Error(name.place, "unknown qualifier " + syntax::Quote(name.text) +
                                        "; name the file that declares it before this one");
        }
        if (!MayStandOn(*type, kind)) {
            throw Error(name.place, "qualifier " + name.text + " cannot stand on " + kind.name);
        }
        if (IndexOf(qualifiers, ToName(name)) != qualifiers.size()) {
            throw Error(name.place, "qualifier " + name.text + " stands here twice");
        }
        qualifiers.push_back(ToQualifier(qualifier, *type));
    }
    return qualifiers;
}

CIMQualifierArray Propagate(const CIMQualifierArray& qualifiers) {
    CIMQualifierArray propagated;
    for (std::size_t i = 0; i < qualifiers.size(); ++i) {
        if (!qualifiers[i].hasFlavor(CIMFlavor::RESTRICTED)) {
            propagated.push_back(qualifiers[i]);
            propagated[propagated.size() - 1].setPropagated(true);
        }
    }
    return propagated;
}

void Inherit(CIMQualifierArray& own, const CIMQualifierArray& inherited,
             const std::vector<syntax::Qualifier>& stated) {
    const CIMQualifierArray propagated = Propagate(inherited);
    for (std::size_t i = 0; i < propagated.size(); ++i) {
        const CIMQualifier& handedDown = propagated[i];
        const std::size_t index = IndexOf(own, handedDown.getName());
        if (index == own.size()) {
            own.push_back(handedDown);
        } else if (handedDown.hasFlavor(CIMFlavor::DISABLEOVERRIDE) &&
                   own[index].getValue() != handedDown.getValue()) {
            throw Error(Find(stated, handedDown.getName())->name.place,
                        std::string("qualifier ") + handedDown.getName().c_str() +
                            " is inherited and cannot be overridden");
        }
    }
}

const syntax::Qualifier* Find(const std::vector<syntax::Qualifier>& qualifiers,
                              const CIMName& name) {
    for (const syntax::Qualifier& qualifier : qualifiers) {
        if (ToName(qualifier.name) == name) {
            return &qualifier;
        }
    }
    return nullptr;
}

} // namespace cimserver::mof
