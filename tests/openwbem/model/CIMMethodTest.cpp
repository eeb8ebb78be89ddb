#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

namespace {

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using tests::ArrayOf;
using tests::Flag;
using tests::Text;
using tests::Thrown;

CIMParameter Parameter(const char* name, std::initializer_list<CIMQualifier> qualifiers) {
    CIMParameter parameter(name);
    parameter.setDataType(CIMDataType::STRING);
    parameter.setQualifiers(ArrayOf<CIMQualifier>(qualifiers));
    return parameter;
}

std::string Names(const CIMParameterArray& parameters) {
    std::string names;
    for (const CIMParameter& parameter : parameters) {
        names += names.empty() ? "" : " ";
        names += parameter.getName().c_str();
    }
    return names;
}

TEST(CIMMethod, TheInAndOutQualifiersSortTheParameters) {
    CIMMethod method("Get");
    method.addParameter(Parameter("plain", {}))
        .addParameter(Parameter("in", {Flag("In", true)}))
        .addParameter(Parameter("out", {Flag("Out", true)}))
        .addParameter(Parameter("outOnly", {Flag("IN", false), Flag("OUT", true)}))
        .addParameter(Parameter("notOut", {Flag("Out", false)}));
    EXPECT_EQ(Names(method.getParameters()), "plain in out outOnly notOut");
    EXPECT_EQ(Names(method.getINParameters()), "plain in out notOut");
    EXPECT_EQ(Names(method.getOUTParameters()), "out outOnly");
    EXPECT_TRUE(method.setParameters(CIMParameterArray()).getParameters().empty());
}

TEST(CIMMethod, HasReturnTypeQualifiersAndOrigin) {
    CIMMethod method("Get");
    EXPECT_FALSE(method.getReturnType());
    method.setReturnType(CIMDataType::SINT8)
        .setQualifiers(ArrayOf<CIMQualifier>({Flag("Static", true)}));
    method.setOriginClass("ZNX_A").setPropagated(true);
    EXPECT_EQ(method.getReturnType().getType(), CIMDataType::SINT8);
    EXPECT_TRUE(method.getQualifier("STATIC"));
    EXPECT_TRUE(!method.getQualifier("Override"));
    EXPECT_TRUE(method.hasTrueQualifier("static"));
    EXPECT_EQ(method.getOriginClass(), "ZNX_A");
    EXPECT_TRUE(method.getPropagated());
    method.setName("Other");
    EXPECT_EQ(method.getName(), "Other");
}

TEST(CIMMethod, CloneLeavesOutQualifiersAndOrigin) {
    CIMMethod method("Get");
    method.setQualifiers(ArrayOf<CIMQualifier>({Flag("Static", true)})).setOriginClass("ZNX_A");
    method.addParameter(Parameter("in", {Flag("In", true)}));
    const CIMMethod all = method.clone(E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN);
    EXPECT_EQ(all.getOriginClass(), "ZNX_A");
    EXPECT_TRUE(all.getParameters()[0].getQualifier("In"));
    const CIMMethod bare = method.clone(E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN);
    EXPECT_TRUE(bare.getQualifiers().empty());
    EXPECT_EQ(bare.getOriginClass(), "");
    ASSERT_EQ(bare.getParameters().size(), 1u);
    EXPECT_TRUE(bare.getParameters()[0].getQualifiers().empty());
    EXPECT_TRUE(method.getParameters()[0].getQualifier("In"));
}

TEST(CIMMethod, TextForm) {
    CIMMethod method("Get");
    method.setReturnType(CIMDataType::SINT8);
    EXPECT_EQ(method.toMOF(), "  sint8 Get();\n");
    method.setQualifiers(ArrayOf<CIMQualifier>({Flag("Static", true)}));
    method.addParameter(Parameter("a", {Flag("In", true)})).addParameter(Parameter("b", {}));
    EXPECT_EQ(method.toMOF(), "  [Static(true)]\n  sint8 Get(\n    [In(true)] string a,\n"
                              "    string b);\n");
    EXPECT_EQ(method.toString(), Text(method.toMOF()).c_str());
}

TEST(CIMParameter, HasATypeAndQualifiers) {
    CIMParameter parameter = Parameter("p", {Flag("Required", true), Flag("In", false)});
    EXPECT_EQ(parameter.getType().getType(), CIMDataType::STRING);
    EXPECT_TRUE(parameter.getQualifier("required"));
    EXPECT_TRUE(!parameter.getQualifier("Out"));
    EXPECT_TRUE(parameter.hasTrueQualifier("Required"));
    EXPECT_FALSE(parameter.hasTrueQualifier("In"));
    EXPECT_EQ(parameter.getQualifiers().size(), 2u);
    parameter.setDataType(CIMDataType(CIMDataType::UINT8, -1)).setName("q");
    EXPECT_EQ(parameter.toString(), "uint8 q[]");
    EXPECT_EQ(parameter.toMOF(), "[Required(true), In(false)] uint8 q[]");
}

TEST(CIMParamValue, PairsANameAndAValue) {
    CIMParamValue value("n", CIMValue(UInt8(3)));
    EXPECT_EQ(value.getName(), "n");
    EXPECT_EQ(value.getValue().toUInt8(), 3);
    EXPECT_EQ(value.toString(), "CIMParamValue(n): 3");
    const CIMParamValue empty(CIMName("n"));
    EXPECT_FALSE(empty.getValue());
    EXPECT_EQ(empty.toString(), "CIMParamValue(n): (null)");
    CIMParamValue copy(value);
    copy.setName("m").setValue(CIMValue("x"));
    EXPECT_EQ(copy.toString(), "CIMParamValue(m): x");
    EXPECT_EQ(value.toString(), "CIMParamValue(n): 3");
    EXPECT_EQ(CIMParamValue().getName(), "");
}

TEST(CIMParamValue, ArraysOfThemAreChecked) {
    CIMParamValueArray values;
    values.push_back(CIMParamValue("n", CIMValue("x")));
    EXPECT_EQ(values[0].getName(), "n");
    EXPECT_EQ(Thrown([&] { values[1].getName(); }),
              "OutOfBoundsException: Array Index out of bounds. size = 1, index = 1");
}

} // namespace
