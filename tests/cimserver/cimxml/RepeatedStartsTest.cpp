// Instances in one answer read as if each were written by itself, whatever stood before it.
#include "Support.hpp"

#include "OW_CIM.hpp"
#include "OW_CIMDateTime.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace OpenWBEM;
using cimxml_test::ResultSink;
using cimxml_test::ReturnValue;

std::string Together(const std::vector<CIMInstance>& instances) {
    return ReturnValue([&](ResultSink& sink) {
        for (const CIMInstance& instance : instances) {
            sink.NamedInstance(instance);
        }
    });
}

std::string OneByOne(const std::vector<CIMInstance>& instances) {
    std::string all;
    for (const CIMInstance& instance : instances) {
        all += Together({instance});
    }
    return all;
}

CIMInstance With(const CIMProperty& property, const char* className = "A") {
    CIMInstance instance(className);
    instance.setProperty(property);
    return instance;
}

CIMInstance Keyed(const char* className, const CIMPropertyArray& keys) {
    CIMInstance instance(className);
    instance.setKeys(keys);
    return instance;
}

CIMProperty Qualified(const CIMQualifier& qualifier) {
    CIMProperty property("P", CIMValue("text"));
    property.setQualifiers(CIMQualifierArray(1, qualifier));
    return property;
}

/// Neighbours that differ from the plain instance in one respect each.
std::vector<CIMInstance> Different() {
    CIMProperty origin("P", CIMValue("text"));
    origin.setOriginClass("Origin");
    CIMProperty propagated("P", CIMValue("text"));
    propagated.setPropagated(true);
    StringArray list(2, "element");
    CIMInstance twice = With(CIMProperty("P", CIMValue("first")));
    twice.setProperty("Q", CIMValue("second"));
    CIMQualifier other("Other");
    other.setValue(CIMValue(true));
    CIMInstance qualified("A");
    qualified.setQualifier(other);
    return {
        With(CIMProperty("P", CIMValue("other text"))),
        With(CIMProperty("P", CIMValue("<&>\""))),
        With(CIMProperty("P", CIMValue(""))),
        With(CIMProperty("Q", CIMValue("text"))),
        With(CIMProperty("p", CIMValue("text"))),
        With(CIMProperty("Longer", CIMValue("text"))),
        With(CIMProperty("P", CIMValue("text")), "B"),
        With(CIMProperty("P", CIMValue(UInt16(1)))),
        With(CIMProperty("P", CIMValue(CIMDateTime(String("20250102030405.000000+000"))))),
        With(CIMProperty("P", CIMValue(list))),
        With(CIMProperty("P", CIMDataType(CIMDataType::STRING))),
        With(CIMProperty("P", CIMValue(CIMObjectPath("C", "root")))),
        With(origin),
        With(propagated),
        With(Qualified(CIMQualifier::createKeyQualifier())),
        With(Qualified(other)),
        twice,
        CIMInstance("A"),
        qualified,
        Keyed("A", CIMPropertyArray(1, CIMProperty("K", CIMValue("key")))),
        Keyed("A", CIMPropertyArray(1, CIMProperty("L", CIMValue("key")))),
        Keyed("B", CIMPropertyArray(1, CIMProperty("K", CIMValue("key")))),
        Keyed("A", CIMPropertyArray(1, CIMProperty("K", CIMValue(UInt32(7))))),
        Keyed("A", CIMPropertyArray(1, CIMProperty("K", CIMValue(true)))),
        Keyed("A", CIMPropertyArray(1, CIMProperty("K", CIMValue(CIMObjectPath("C", "root"))))),
        Keyed("A", CIMPropertyArray(2, CIMProperty("K", CIMValue("key")))),
    };
}

TEST(RepeatedStarts, NoInstanceReadsLikeItsNeighbour) {
    const std::vector<CIMInstance> different = Different();
    for (const CIMInstance& one : different) {
        for (const CIMInstance& other : different) {
            EXPECT_EQ(Together({one, other, other, one}), OneByOne({one, other, other, one}));
        }
    }
}

TEST(RepeatedStarts, NeighboursWithTheSamePropertiesReadTheSame) {
    const CIMInstance instance = With(CIMProperty("P", CIMValue("text")));
    const std::string text = Together({instance});
    EXPECT_EQ(Together({instance, instance, instance}), text + text + text);
}

TEST(RepeatedStarts, TheyHoldAcrossPortionsOfAnyLength) {
    // A portion is 64 KiB: its end falls into every part of the second and third instance.
    for (std::size_t length = 64'500; length < 65'600; length += 5) {
        const std::vector<CIMInstance> instances = {
            With(CIMProperty("P", CIMValue(String(std::string(length, 'x').c_str())))),
            With(CIMProperty("P", CIMValue("a"))), With(CIMProperty("P", CIMValue("b")))};
        ASSERT_EQ(Together(instances), OneByOne(instances)) << length;
    }
}

} // namespace
