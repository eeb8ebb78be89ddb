// Classes, qualifiers, methods and parameters as XML, text by text.
#include "Support.hpp"

#include "OW_CIM.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using cimxml_test::ErrorIn;
using cimxml_test::Results;
using cimxml_test::ResultSink;
using cimxml_test::ReturnValue;

std::string ClassText(const CIMClass& cimClass) {
    return ReturnValue([&](ResultSink& sink) { sink.Class(cimClass); });
}

CIMQualifier StringQualifier(const char* name, const char* value) {
    CIMQualifier qualifier(name);
    qualifier.setValue(CIMValue(value));
    return qualifier;
}

TEST(ClassWriter, ClassNames) {
    EXPECT_EQ(ReturnValue([](ResultSink& sink) {
                  sink.ClassName("ZNX_A");
                  sink.ClassName("ZNX_B");
              }),
              R"(<CLASSNAME NAME="ZNX_A"></CLASSNAME><CLASSNAME NAME="ZNX_B"></CLASSNAME>)");
}

TEST(ClassWriter, AnEmptyClassHasBothTags) {
    EXPECT_EQ(ClassText(CIMClass("A")), R"(<CLASS NAME="A"></CLASS>)");
}

TEST(ClassWriter, TheSuperclassIsAnAttribute) {
    CIMClass cimClass("B");
    cimClass.setSuperClass("A");
    EXPECT_EQ(ClassText(cimClass), R"(<CLASS NAME="B" SUPERCLASS="A"></CLASS>)");
}

TEST(ClassWriter, QualifiersThenPropertiesThenMethods) {
    CIMClass cimClass("A");
    CIMMethod method("M");
    method.setReturnType(CIMDataType(CIMDataType::UINT32));
    cimClass.addMethod(method);
    cimClass.addProperty(CIMProperty("P", CIMDataType(CIMDataType::STRING)));
    CIMProperty withDefault("D", CIMValue(UInt8(3)));
    cimClass.addProperty(withDefault);
    cimClass.addQualifier(StringQualifier("Description", "What \"it\" is"));
    EXPECT_EQ(ClassText(cimClass),
              R"(<CLASS NAME="A"><QUALIFIER NAME="Description" TYPE="string"><VALUE>)"
              R"(What &quot;it&quot; is</VALUE></QUALIFIER>)"
              R"(<PROPERTY NAME="P" TYPE="string"></PROPERTY>)"
              R"(<PROPERTY NAME="D" TYPE="uint8"><VALUE>3</VALUE></PROPERTY>)"
              R"(<METHOD NAME="M" TYPE="uint32"></METHOD></CLASS>)");
}

struct FlavorRow {
    std::vector<CIMFlavor::Flavor> flavors;
    const char* attributes;
};

TEST(ClassWriter, FlavorsOfQualifiers) {
    const FlavorRow rows[] = {
        {{}, ""},
        {{CIMFlavor::ENABLEOVERRIDE}, R"( OVERRIDABLE="true")"},
        {{CIMFlavor::DISABLEOVERRIDE}, R"( OVERRIDABLE="false")"},
        {{CIMFlavor::TOSUBCLASS}, R"( TOSUBCLASS="true")"},
        {{CIMFlavor::RESTRICTED}, R"( TOSUBCLASS="false")"},
        {{CIMFlavor::TRANSLATE}, R"( TRANSLATABLE="true")"},
        {{CIMFlavor::TRANSLATE, CIMFlavor::DISABLEOVERRIDE, CIMFlavor::TOSUBCLASS},
         R"( OVERRIDABLE="false" TOSUBCLASS="true" TRANSLATABLE="true")"},
    };
    for (const FlavorRow& row : rows) {
        CIMQualifier qualifier = StringQualifier("Q", "x");
        for (const CIMFlavor::Flavor flavor : row.flavors) {
            qualifier.addFlavor(CIMFlavor(flavor));
        }
        CIMClass cimClass("A");
        cimClass.addQualifier(qualifier);
        EXPECT_EQ(ClassText(cimClass), R"(<CLASS NAME="A"><QUALIFIER NAME="Q" TYPE="string")" +
                                           std::string(row.attributes) +
                                           "><VALUE>x</VALUE></QUALIFIER></CLASS>");
    }
}

TEST(ClassWriter, QualifiersWithArraysAndPropagation) {
    StringArray values;
    values.push_back("0");
    values.push_back("1");
    CIMQualifier qualifier("ValueMap");
    qualifier.setValue(CIMValue(values));
    qualifier.setPropagated();
    CIMClass cimClass("A");
    cimClass.addQualifier(qualifier);
    EXPECT_EQ(ClassText(cimClass),
              R"(<CLASS NAME="A"><QUALIFIER NAME="ValueMap" TYPE="string" PROPAGATED="true">)"
              R"(<VALUE.ARRAY><VALUE>0</VALUE><VALUE>1</VALUE></VALUE.ARRAY></QUALIFIER></CLASS>)");
}

std::string DeclarationText(const CIMQualifierType& qualifier) {
    return ReturnValue([&](ResultSink& sink) { sink.QualifierType(qualifier); });
}

TEST(ClassWriter, QualifierTypesHaveScopeFlavorsAndDefault) {
    CIMQualifierType key("Key");
    key.setDataType(CIMDataType(CIMDataType::BOOLEAN)).setDefaultValue(CIMValue(false));
    key.addScope(CIMScope::PROPERTY).addScope(CIMScope::REFERENCE);
    key.addFlavor(CIMFlavor::DISABLEOVERRIDE).addFlavor(CIMFlavor::TOSUBCLASS);
    EXPECT_EQ(DeclarationText(key),
              R"(<QUALIFIER.DECLARATION NAME="Key" TYPE="boolean" ISARRAY="false")"
              R"( OVERRIDABLE="false" TOSUBCLASS="true">)"
              R"(<SCOPE REFERENCE="true" PROPERTY="true"></SCOPE><VALUE>FALSE</VALUE>)"
              R"(</QUALIFIER.DECLARATION>)");
}

TEST(ClassWriter, QualifierTypesOfAnyScopeAndWithoutDefault) {
    CIMQualifierType values("Values");
    values.setDataType(CIMDataType(CIMDataType::STRING, 3)).addScope(CIMScope::ANY);
    EXPECT_EQ(DeclarationText(values),
              R"(<QUALIFIER.DECLARATION NAME="Values" TYPE="string" ISARRAY="true" ARRAYSIZE="3">)"
              R"(<SCOPE CLASS="true" ASSOCIATION="true" REFERENCE="true" PROPERTY="true")"
              R"( METHOD="true" PARAMETER="true" INDICATION="true"></SCOPE>)"
              R"(</QUALIFIER.DECLARATION>)");
}

TEST(ClassWriter, AQualifierWithoutTypeIsAnError) {
    CIMClass cimClass("A");
    cimClass.addQualifier(CIMQualifier("Q"));
    EXPECT_EQ(ErrorIn(Results([&](ResultSink& sink) { sink.Class(cimClass); })),
              "1: general error (Qualifier Q has no type defined)");
}

CIMParameter Parameter(const char* name, const CIMDataType& type) {
    CIMParameter parameter(name);
    parameter.setDataType(type);
    return parameter;
}

TEST(ClassWriter, MethodsWithParametersOfEachKind) {
    CIMMethod method("M");
    method.setReturnType(CIMDataType(CIMDataType::SINT32));
    method.setOriginClass("Base");
    method.setPropagated(true);
    CIMQualifierArray isStatic;
    isStatic.push_back(CIMQualifier("Static").setValue(CIMValue(true)));
    method.setQualifiers(isStatic);
    CIMParameter scalar = Parameter("S", CIMDataType(CIMDataType::STRING));
    CIMQualifierArray in;
    in.push_back(CIMQualifier("In").setValue(CIMValue(false)));
    scalar.setQualifiers(in);
    method.addParameter(scalar);
    method.addParameter(Parameter("A", CIMDataType(CIMDataType::UINT8, 4)));
    method.addParameter(Parameter("R", CIMDataType(CIMName("B"))));
    CIMDataType references(CIMName("B"));
    references.setToArrayType(-1);
    method.addParameter(Parameter("RA", references));
    CIMClass cimClass("C");
    cimClass.addMethod(method);
    EXPECT_EQ(
        ClassText(cimClass),
        R"(<CLASS NAME="C"><METHOD NAME="M" TYPE="sint32" CLASSORIGIN="Base" PROPAGATED="true">)"
        R"(<QUALIFIER NAME="Static" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER>)"
        R"(<PARAMETER NAME="S" TYPE="string"><QUALIFIER NAME="In" TYPE="boolean">)"
        R"(<VALUE>FALSE</VALUE></QUALIFIER></PARAMETER>)"
        R"(<PARAMETER.ARRAY NAME="A" TYPE="uint8" ARRAYSIZE="4"></PARAMETER.ARRAY>)"
        R"(<PARAMETER.REFERENCE NAME="R" REFERENCECLASS="B"></PARAMETER.REFERENCE>)"
        R"(<PARAMETER.REFARRAY NAME="RA" REFERENCECLASS="B"></PARAMETER.REFARRAY>)"
        R"(</METHOD></CLASS>)");
}

TEST(ClassWriter, AClassWithoutNameIsAnError) {
    EXPECT_EQ(ErrorIn(Results([](ResultSink& sink) { sink.Class(CIMClass()); })),
              "1: general error (A class has no name)");
}

} // namespace
