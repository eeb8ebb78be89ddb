#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace OpenWBEM;
using tests::ArrayOf;
using tests::Thrown;
using tests::ThrownIds;

CIMQualifierType Declaration() {
    CIMQualifierType type("Values");
    type.setDataType(CIMDataType(CIMDataType::STRING, -1));
    type.addScope(CIMScope::PROPERTY).addScope(CIMScope::METHOD);
    type.addFlavor(CIMFlavor::DISABLEOVERRIDE).addFlavor(CIMFlavor::TRANSLATE);
    return type;
}

TEST(CIMQualifier, IsMadeFromANameOrADeclaration) {
    const CIMQualifier fromText = "Key";
    EXPECT_EQ(fromText.getName(), "Key");
    EXPECT_FALSE(fromText.hasValue());
    const CIMQualifier fromName = CIMName("Key");
    EXPECT_TRUE(fromName == fromText);
    CIMQualifierType type = Declaration();
    type.setDefaultValue(CIMValue(ArrayOf<String>({"a"})));
    const CIMQualifier declared = type;
    EXPECT_EQ(declared.getName(), "Values");
    EXPECT_EQ(declared.getValue().toString(), "a");
    EXPECT_TRUE(declared.hasFlavor(CIMFlavor::DISABLEOVERRIDE));
    EXPECT_TRUE(declared.hasFlavor(CIMFlavor::TRANSLATE));
    EXPECT_FALSE(declared.hasFlavor(CIMFlavor::TOSUBCLASS));
}

TEST(CIMQualifier, KnowsItsTypeFromTheValueOrTheDeclaration) {
    EXPECT_FALSE(CIMQualifier("Free").getDataType());
    const CIMQualifier declared(Declaration());
    EXPECT_FALSE(declared.hasValue());
    EXPECT_EQ(declared.getDataType().getType(), CIMDataType::STRING);
    EXPECT_TRUE(declared.getDataType().isArrayType());
    CIMQualifier valued("Free");
    valued.setValue(CIMValue(UInt8(1)));
    EXPECT_EQ(valued.getDataType().getType(), CIMDataType::UINT8);
}

TEST(CIMQualifier, GetValueTThrowsWithoutTextWhenThereIsNoValue) {
    CIMQualifier qualifier("MaxLen");
    EXPECT_FALSE(qualifier.getValue());
    EXPECT_EQ(Thrown([&] { qualifier.getValueT(); }), "NULLValueException: ");
    EXPECT_EQ(ThrownIds([&] { qualifier.getValueT(); }), "-1/29");
    qualifier.setValue(CIMValue(UInt32(5)));
    EXPECT_TRUE(qualifier.hasValue());
    EXPECT_EQ(qualifier.getValueT().toUInt32(), 5u);
}

TEST(CIMQualifier, TheKeyQualifierIsPlain) {
    CIMQualifier key = CIMQualifier::createKeyQualifier();
    EXPECT_EQ(key.getName(), "Key");
    EXPECT_TRUE(key.getValue() == CIMValue(true));
    EXPECT_TRUE(key.getFlavor().empty());
    EXPECT_FALSE(key.getPropagated());
    EXPECT_TRUE(key.isKeyQualifier());
    key.setPropagated().setName("Other");
    EXPECT_TRUE(key.getPropagated());
    EXPECT_FALSE(key.isKeyQualifier());
    EXPECT_EQ(CIMQualifier::createKeyQualifier().getName(), "Key");
    EXPECT_FALSE(CIMQualifier::createKeyQualifier().getPropagated());
}

TEST(CIMQualifier, NamesDecideAboutKeyAndAssociation) {
    EXPECT_TRUE(CIMQualifier("KEY").isKeyQualifier());
    EXPECT_TRUE(CIMQualifier("association").isAssociationQualifier());
    EXPECT_FALSE(CIMQualifier("Key").isAssociationQualifier());
}

TEST(CIMQualifier, FlavorsAreKeptOnce) {
    CIMQualifier qualifier("Q");
    qualifier.addFlavor(CIMFlavor::TOSUBCLASS).addFlavor(CIMFlavor::RESTRICTED);
    qualifier.addFlavor(CIMFlavor::TOSUBCLASS);
    EXPECT_EQ(qualifier.getFlavor().size(), 2u);
    qualifier.removeFlavor(CIMFlavor::TOSUBCLASS);
    EXPECT_FALSE(qualifier.hasFlavor(CIMFlavor::TOSUBCLASS));
    EXPECT_TRUE(qualifier.hasFlavor(CIMFlavor::RESTRICTED));
}

TEST(CIMQualifier, TextForms) {
    CIMQualifier key = CIMQualifier::createKeyQualifier();
    EXPECT_EQ(key.toMOF(), "Key(true)");
    EXPECT_EQ(key.toString(), "CIMQualifier(Key)");
    key.addFlavor(CIMFlavor::DISABLEOVERRIDE).addFlavor(CIMFlavor::TOSUBCLASS);
    EXPECT_EQ(key.toMOF(), "Key(true) : DisableOverride ToSubclass");
    CIMQualifier values("Values");
    EXPECT_EQ(values.toMOF(), "Values");
    values.setValue(CIMValue(ArrayOf<String>({"a", "b"})));
    EXPECT_EQ(values.toMOF(), "Values{\"a\",\"b\"}");
    CIMQualifier text("Description");
    text.setValue(CIMValue("say \"x\""));
    EXPECT_EQ(text.toMOF(), "Description(\"say \\\"x\\\"\")");
}

TEST(CIMQualifier, NameConstants) {
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_KEY, "Key");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_ASSOCIATION, "Association");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_ABSTRACT, "Abstract");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_IN, "In");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_OUT, "Out");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_REQUIRED, "Required");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_PROVIDER, "Provider");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_READ, "Read");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_WRITE, "Write");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_DESCRIPTION, "Description");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_OVERRIDE, "Override");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_VALUES, "Values");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_VALUEMAP, "ValueMap");
    EXPECT_STREQ(CIMQualifier::CIM_QUAL_EMBEDDEDOBJECT, "EmbeddedObject");
}

TEST(CIMQualifierType, HoldsADeclaration) {
    CIMQualifierType type = Declaration();
    EXPECT_EQ(type.getName(), "Values");
    EXPECT_FALSE(type.getDefaultValue());
    EXPECT_TRUE(type.hasScope(CIMScope::METHOD));
    EXPECT_FALSE(type.hasScope(CIMScope::CLASS));
    EXPECT_EQ(type.getScopes().size(), 2u);
    EXPECT_EQ(type.getFlavors().size(), 2u);
    EXPECT_TRUE(type.hasFlavor(CIMFlavor::TRANSLATE));
    EXPECT_EQ(type.toString(), "CIMQualifierType(Values)");
    EXPECT_EQ(type.toMOF(), "Qualifier Values : string[] = NULL, Scope(property, method), "
                            "Flavor(DisableOverride, Translatable);\n");
    CIMQualifierType key("Key");
    key.setDefaultValue(CIMValue("true"));
    key.setDataType(CIMDataType::BOOLEAN);
    EXPECT_TRUE(key.getDefaultValue() == CIMValue(true));
    EXPECT_EQ(key.toMOF(), "Qualifier Key : boolean = true;\n");
}

TEST(CIMFlavor, NumbersAndKeywords) {
    EXPECT_EQ(CIMFlavor::ENABLEOVERRIDE, 1);
    EXPECT_EQ(CIMFlavor::DISABLEOVERRIDE, 2);
    EXPECT_EQ(CIMFlavor::RESTRICTED, 3);
    EXPECT_EQ(CIMFlavor::TOSUBCLASS, 4);
    EXPECT_EQ(CIMFlavor::TRANSLATE, 5);
    EXPECT_EQ(CIMFlavor(CIMFlavor::ENABLEOVERRIDE).toString(), "EnableOverride");
    EXPECT_EQ(CIMFlavor(CIMFlavor::DISABLEOVERRIDE).toString(), "DisableOverride");
    EXPECT_EQ(CIMFlavor(CIMFlavor::RESTRICTED).toString(), "Restricted");
    EXPECT_EQ(CIMFlavor(CIMFlavor::TOSUBCLASS).toString(), "ToSubclass");
    EXPECT_EQ(CIMFlavor(CIMFlavor::TRANSLATE).toMOF(), "Translatable");
    EXPECT_TRUE(!CIMFlavor());
}

TEST(CIMScope, Keywords) {
    EXPECT_EQ(CIMScope(CIMScope::SCHEMA).toString(), "schema");
    EXPECT_EQ(CIMScope(CIMScope::CLASS).toString(), "class");
    EXPECT_EQ(CIMScope(CIMScope::ASSOCIATION).toString(), "association");
    EXPECT_EQ(CIMScope(CIMScope::INDICATION).toString(), "indication");
    EXPECT_EQ(CIMScope(CIMScope::PROPERTY).toString(), "property");
    EXPECT_EQ(CIMScope(CIMScope::REFERENCE).toString(), "reference");
    EXPECT_EQ(CIMScope(CIMScope::METHOD).toString(), "method");
    EXPECT_EQ(CIMScope(CIMScope::PARAMETER).toString(), "parameter");
    EXPECT_EQ(CIMScope(CIMScope::ANY).toMOF(), "any");
    EXPECT_TRUE(!CIMScope());
}

} // namespace
