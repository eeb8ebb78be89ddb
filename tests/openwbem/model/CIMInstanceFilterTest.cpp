// clone, filterProperties, syncWithClass and createModifiedInstance.
#include "OW_CIM.hpp"

#include "openwbem/model/ModelTest.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace OpenWBEM;
using namespace OpenWBEM::WBEMFlags;
using tests::ArrayOf;
using tests::Thrown;

CIMProperty Property(const char* name, CIMDataType::Type type, const char* origin,
                     bool isPropagated) {
    CIMProperty property(name, CIMDataType(type));
    property.setOriginClass(origin).setPropagated(isPropagated);
    return property;
}

// ZNX_Base: InstanceID (key), Name. ZNX_Sub adds Count and Tags and overrides Name.
CIMClass Base() {
    CIMClass base("ZNX_Base");
    CIMProperty id = Property("InstanceID", CIMDataType::STRING, "ZNX_Base", false);
    base.addProperty(id.addQualifier(CIMQualifier::createKeyQualifier()));
    base.addProperty(Property("Name", CIMDataType::STRING, "ZNX_Base", false));
    base.addProperty(Property("Note", CIMDataType::STRING, "ZNX_Base", false));
    return base;
}

CIMClass Sub() {
    CIMClass sub("ZNX_Sub");
    sub.setSuperClass("ZNX_Base");
    CIMProperty id = Property("InstanceID", CIMDataType::STRING, "ZNX_Base", true);
    sub.addProperty(id.addQualifier(CIMQualifier::createKeyQualifier()));
    sub.addProperty(Property("Name", CIMDataType::STRING, "ZNX_Sub", false));
    sub.addProperty(Property("Note", CIMDataType::STRING, "ZNX_Base", true));
    CIMProperty count = Property("Count", CIMDataType::UINT8, "ZNX_Sub", false);
    sub.addProperty(count.setValue(CIMValue(UInt8(7))));
    CIMProperty tags = Property("Tags", CIMDataType::UINT16, "ZNX_Sub", false);
    sub.addProperty(tags.setDataType(CIMDataType(CIMDataType::UINT16, -1)));
    return sub;
}

CIMInstance Full() {
    CIMInstance instance = Sub().newInstance();
    instance.setProperty("InstanceID", CIMValue("1"));
    instance.setProperty("Name", CIMValue("n"));
    instance.setQualifier(CIMQualifier("Read"));
    return instance;
}

std::string Names(const CIMInstance& instance) {
    std::string names;
    for (const CIMProperty& property : instance.getProperties()) {
        names += names.empty() ? "" : " ";
        names += property.getName().c_str();
    }
    return names;
}

TEST(CIMInstanceClone, APropertyListKeepsTheListedOnes) {
    const CIMInstance full = Full();
    const auto cloned = [&full](const StringArray* list) {
        return full.clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, list);
    };
    const StringArray list = ArrayOf<String>({"count", "NAME", "unknown"});
    const StringArray none;
    EXPECT_EQ(Names(cloned(&list)), "Name Count");
    EXPECT_EQ(Names(cloned(&none)), "");
    EXPECT_EQ(Names(cloned(nullptr)), "InstanceID Name Note Count Tags");
    EXPECT_EQ(cloned(&none).getKeyValuePairs().size(), 1u);
    EXPECT_EQ(cloned(&none).getClassName(), "ZNX_Sub");
}

TEST(CIMInstanceClone, WithTheListAsAValueEmptyMeansAll) {
    const CIMInstance full = Full();
    const StringArray list = ArrayOf<String>({"Name"});
    EXPECT_EQ(Names(full.clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN)),
              "InstanceID Name Note Count Tags");
    EXPECT_EQ(
        Names(full.clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, list)),
        "Name");
    EXPECT_EQ(Names(full.clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, list,
                               true)),
              "");
}

TEST(CIMInstanceClone, LocalOnlyDropsWhatIsPropagated) {
    EXPECT_EQ(Names(Full().clone(E_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN)),
              "Name Count Tags");
}

TEST(CIMInstanceClone, QualifiersAndOriginAreLeftOutButTheKeysStay) {
    const CIMInstance bare =
        Full().clone(E_NOT_LOCAL_ONLY, E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN);
    EXPECT_TRUE(bare.getQualifiers().empty());
    for (const CIMProperty& property : bare.getProperties()) {
        EXPECT_TRUE(property.getQualifiers().empty()) << property.getName();
        EXPECT_EQ(property.getOriginClass(), "") << property.getName();
    }
    ASSERT_EQ(bare.getKeyValuePairs().size(), 1u);
    EXPECT_EQ(bare.getKeyValuePairs()[0].getValue().toString(), "1");
    const CIMInstance all =
        Full().clone(E_NOT_LOCAL_ONLY, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN);
    EXPECT_EQ(all.getQualifiers().size(), 1u);
    EXPECT_TRUE(all.getProperty("InstanceID").isKey());
    EXPECT_EQ(all.getProperty("InstanceID").getOriginClass(), "ZNX_Base");
}

TEST(CIMInstanceClone, FilterPropertiesCanIgnoreTheList) {
    const CIMInstance full = Full();
    const StringArray list = ArrayOf<String>({"name"});
    EXPECT_EQ(Names(full.filterProperties(list, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN)),
              "Name");
    EXPECT_EQ(
        Names(full.filterProperties(StringArray(), E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN)),
        "");
    EXPECT_EQ(
        Names(full.filterProperties(list, E_INCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, true)),
        "InstanceID Name Note Count Tags");
    EXPECT_FALSE(full.filterProperties(list, E_EXCLUDE_QUALIFIERS, E_INCLUDE_CLASS_ORIGIN, true)
                     .getProperty("InstanceID")
                     .isKey());
}

struct EnumerationRow {
    ELocalOnlyFlag localOnly;
    EDeepFlag deep;
    const char* requestedClass;
    const char* properties;
};

TEST(CIMInstanceClone, AnEnumerationShowsWhatBelongsToTheRequestedClass) {
    const EnumerationRow rows[] = {
        {E_NOT_LOCAL_ONLY, E_DEEP, "ZNX_Base", "InstanceID Name Note Count Tags"},
        {E_NOT_LOCAL_ONLY, E_SHALLOW, "ZNX_Base", "InstanceID Name Note"},
        {E_LOCAL_ONLY, E_DEEP, "ZNX_Base", "InstanceID Name Note Count Tags"},
        {E_LOCAL_ONLY, E_SHALLOW, "ZNX_Base", "InstanceID Note"},
        {E_NOT_LOCAL_ONLY, E_DEEP, "ZNX_Sub", "InstanceID Name Note Count Tags"},
        {E_NOT_LOCAL_ONLY, E_SHALLOW, "ZNX_Sub", "InstanceID Name Note Count Tags"},
        {E_LOCAL_ONLY, E_DEEP, "ZNX_Sub", "Name Count Tags"},
        {E_LOCAL_ONLY, E_SHALLOW, "ZNX_Sub", "Name Count Tags"},
    };
    CIMInstance instance("ZNX_Sub");
    instance.setProperty("Count", CIMValue(UInt8(1)));
    instance.setProperty("Foreign", CIMValue("x"));
    for (const EnumerationRow& row : rows) {
        const CIMClass requested = String(row.requestedClass) == "ZNX_Base" ? Base() : Sub();
        const CIMInstance copy = instance.clone(row.localOnly, row.deep, E_INCLUDE_QUALIFIERS,
                                                E_INCLUDE_CLASS_ORIGIN, nullptr, requested, Sub());
        std::string sorted;
        for (const CIMProperty& property : Sub().getAllProperties()) {
            if (copy.getProperty(property.getName())) {
                sorted += sorted.empty() ? "" : " ";
                sorted += property.getName().c_str();
            }
        }
        EXPECT_EQ(sorted, row.properties) << "local only " << row.localOnly << ", deep " << row.deep
                                          << ", " << row.requestedClass;
        EXPECT_TRUE(!copy.getProperty("Foreign"));
    }
}

TEST(CIMInstanceClone, AnEnumerationAppliesListQualifiersAndOrigin) {
    const StringArray list = ArrayOf<String>({"InstanceID", "Count"});
    const CIMInstance copy = Full().clone(E_NOT_LOCAL_ONLY, E_SHALLOW, E_EXCLUDE_QUALIFIERS,
                                          E_EXCLUDE_CLASS_ORIGIN, &list, Base(), Sub());
    EXPECT_EQ(Names(copy), "InstanceID");
    EXPECT_FALSE(copy.getProperty("InstanceID").isKey());
    EXPECT_EQ(copy.getProperty("InstanceID").getOriginClass(), "");
    EXPECT_EQ(copy.getKeyValuePairs().size(), 1u);
}

TEST(CIMInstanceSync, TakesTypesSpellingAndMissingPropertiesFromTheClass) {
    CIMInstance instance("znx_sub");
    instance.setProperty("tags", CIMValue(UInt16(3)));
    instance.setProperty("Foreign", CIMValue("x"));
    instance.setProperty("instanceid", CIMValue(UInt8(5)));
    instance.setProperty("NAME", CIMValue(CIMNULL));
    instance.syncWithClass(Sub());
    EXPECT_EQ(instance.getClassName(), "znx_sub");
    EXPECT_EQ(Names(instance), "Tags InstanceID Name Note Count");
    EXPECT_TRUE(instance.getPropertyValue("Tags") == CIMValue(ArrayOf<UInt16>({3})));
    EXPECT_TRUE(instance.getPropertyValue("InstanceID") == CIMValue("5"));
    EXPECT_FALSE(instance.getPropertyValue("Name"));
    EXPECT_EQ(instance.getProperty("Name").getDataType().getType(), CIMDataType::STRING);
    EXPECT_TRUE(instance.getPropertyValue("Count") == CIMValue(UInt8(7))) << "the default";
    EXPECT_EQ(instance.getProperty("Note").getOriginClass(), "ZNX_Base");
    EXPECT_TRUE(instance.getProperty("Note").getPropagated());
    ASSERT_EQ(instance.getKeyValuePairs().size(), 1u);
    EXPECT_EQ(instance.getKeyValuePairs()[0].getName(), "InstanceID");
}

TEST(CIMInstanceSync, QualifiersMayBeLeftOut) {
    CIMInstance instance("ZNX_Sub");
    instance.setProperty("InstanceID", CIMValue("1"));
    CIMInstance plain(instance);
    instance.syncWithClass(Sub());
    EXPECT_TRUE(instance.getProperty("InstanceID").isKey());
    plain.syncWithClass(Sub(), E_EXCLUDE_QUALIFIERS);
    EXPECT_FALSE(plain.getProperty("InstanceID").isKey());
    EXPECT_EQ(plain.getKeyValuePairs().size(), 1u);
}

TEST(CIMInstanceSync, AFailureLeavesTheInstanceAlone) {
    CIMInstance instance("ZNX_Sub");
    instance.setProperty("Count", CIMValue("many"));
    EXPECT_EQ(Thrown([&] { instance.syncWithClass(Sub()); }),
              "CIMException: general error (Unable to convert \"many\" into UInt8)");
    EXPECT_EQ(instance.toString(), "instance of ZNX_Sub {\nCount = many;\n}");
}

TEST(CIMInstanceSync, ANullClassDoesNothing) {
    CIMInstance instance("ZNX_Sub");
    instance.setProperty("Foreign", CIMValue("x"));
    instance.syncWithClass(CIMClass(CIMNULL));
    EXPECT_EQ(Names(instance), "Foreign");
}

TEST(CIMInstanceModify, WithoutListItIsACopyOfTheNewOne) {
    CIMInstance modified("ZNX_Sub");
    modified.setProperty("Name", CIMValue("new"));
    const CIMInstance result =
        modified.createModifiedInstance(Full(), E_INCLUDE_QUALIFIERS, nullptr, Sub());
    EXPECT_EQ(result.toString(), "instance of ZNX_Sub {\nName = new;\n}");
}

TEST(CIMInstanceModify, TheListedPropertiesComeFromTheNewOneOrTheClass) {
    CIMInstance modified("ZNX_Sub");
    modified.setProperty("Name", CIMValue("new"));
    modified.setProperty("Note", CIMValue("not listed"));
    CIMInstance previous = Full();
    previous.setProperty("Count", CIMValue(UInt8(1)));
    previous.setProperty("Foreign", CIMValue("x"));
    const StringArray list = ArrayOf<String>({"name", "Count", "Foreign"});
    const CIMInstance result =
        modified.createModifiedInstance(previous, E_INCLUDE_QUALIFIERS, &list, Sub());
    EXPECT_EQ(result.toString(), "instance of ZNX_Sub {\nInstanceID = 1;\nName = new;\nNote = "
                                 "null;\nCount = 7;\nTags = null;\n}");
    EXPECT_EQ(result.getKeyValuePairs().size(), 1u);
}

TEST(CIMInstanceModify, WithoutQualifiersThoseOfThePreviousStay) {
    CIMInstance modified("ZNX_Sub");
    CIMProperty name("Name", CIMValue("new"));
    modified.setProperty(name.addQualifier(CIMQualifier("Read")));
    const StringArray list = ArrayOf<String>({"Name"});
    const auto qualifiers = [&](EIncludeQualifiersFlag flag) {
        return modified.createModifiedInstance(Full(), flag, &list, Sub())
            .getProperty("Name")
            .getQualifiers()
            .size();
    };
    EXPECT_EQ(qualifiers(E_INCLUDE_QUALIFIERS), 1u);
    EXPECT_EQ(qualifiers(E_EXCLUDE_QUALIFIERS), 0u);
}

} // namespace
