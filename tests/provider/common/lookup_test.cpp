#include "provider/ProviderTest.hpp"

#include "provider/common/SharedList.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::InvalidParameter;
using test_support::NotFound;
using test_support::PathOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Record {
    String InstanceID;
    int number;
};

Array<Record> ListOf(const std::vector<std::string>& ids) {
    Array<Record> list;
    for (const std::string& id : ids) {
        list.push_back(Record{id.c_str(), 0});
    }
    return list;
}

} // namespace

using Lookup = LogTest;

TEST_F(Lookup, FindsTheRecordWithExactlyThisId) {
    const Array<Record> list = ListOf({"0", "A", "a", "ab"});
    EXPECT_EQ(GetIndexFromInstanceID("0", list), 0);
    EXPECT_EQ(GetIndexFromInstanceID("a", list), 2);
    EXPECT_EQ(GetIndexFromInstanceID<Array<Record>>("ab", list), 3);
    EXPECT_EQ(CimErrorOf([&] { GetIndexFromInstanceID("b", list); }), NotFound());
    EXPECT_EQ(CimErrorOf([&] { GetIndexFromInstanceID("", list); }), NotFound());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(Lookup, FindsNothingInAnEmptyList) {
    EXPECT_EQ(CimErrorOf([] { GetIndexFromInstanceID("0", Array<Record>()); }), NotFound());
}

TEST_F(Lookup, FindsTheFirstOfTwo) {
    EXPECT_EQ(GetIndexFromInstanceID("b", ListOf({"a", "b", "b"})), 1);
}

TEST_F(Lookup, TakesTheIdFromThePath) {
    const Array<Record> list = ListOf({"x", "y"});
    EXPECT_EQ(GetIndexFromObjectPath(PathOf("ZNX_C", "InstanceID", "y"), list), 1);
    EXPECT_EQ(GetIndexFromObjectPath(PathOf("ZNX_C", "instanceid", "y"), list), 1);
    EXPECT_EQ(CimErrorOf([&] { GetIndexFromObjectPath(PathOf("C", "InstanceID", "Y"), list); }),
              NotFound());
    EXPECT_THAT(log->All(), IsEmpty());
}

TEST_F(Lookup, TakesTheTextOfAKeyThatIsNoString) {
    CIMObjectPath path("ZNX_C");
    path.setKeyValue("InstanceID", CIMValue(UInt32(7)));
    EXPECT_EQ(GetIndexFromObjectPath(path, ListOf({"6", "7"})), 1);
}

TEST_F(Lookup, AnEmptyKeyIsAValueLikeAnyOther) {
    EXPECT_EQ(GetIndexFromObjectPath(PathOf("ZNX_C", "InstanceID", ""), ListOf({"a", ""})), 1);
    EXPECT_EQ(CimErrorOf(
                  [] { GetIndexFromObjectPath(PathOf("ZNX_C", "InstanceID", ""), ListOf({"a"})); }),
              NotFound());
}

TEST_F(Lookup, RefusesAPathWithoutTheKey) {
    EXPECT_EQ(
        CimErrorOf([] { GetIndexFromObjectPath(PathOf("ZNX_C", "Name", "a"), ListOf({"a"})); }),
        InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("ERROR: Missing InstanceID property"));
}

TEST_F(Lookup, RefusesAPathWithANullKey) {
    CIMObjectPath path("ZNX_C");
    path.setKeys(CIMPropertyArray(1, CIMProperty("InstanceID", CIMDataType(CIMDataType::STRING))));
    EXPECT_EQ(CimErrorOf([&] { GetIndexFromObjectPath(path, ListOf({"a"})); }), InvalidParameter());
    EXPECT_THAT(log->All(), ElementsAre("ERROR: Missing InstanceID value"));
}

TEST(ProvPropCreateKey_, MakesAPropertyWithTheKeyQualifier) {
    const CIMProperty key = ProvPropCreateKey("InstanceID", CIMValue("5"));
    EXPECT_EQ(Text(key.getName()), "InstanceID");
    EXPECT_EQ(key.getValue(), CIMValue("5"));
    EXPECT_TRUE(key.isKey());
    EXPECT_TRUE(key.hasTrueQualifier("Key"));
    EXPECT_EQ(key.getQualifiers().size(), 1U);
}

TEST(ProvPropCreateKey_, DoesNotShareItsQualifierWithOtherKeys) {
    CIMProperty changed = ProvPropCreateKey("A", CIMValue("a"));
    changed.clearQualifiers();
    EXPECT_TRUE(ProvPropCreateKey("B", CIMValue("b")).isKey());
}

TEST(HasQuote, FindsTheApostrophe) {
    EXPECT_TRUE(hasQuote("it's"));
    EXPECT_TRUE(hasQuote("'"));
    EXPECT_FALSE(hasQuote("its"));
    EXPECT_FALSE(hasQuote(""));
    EXPECT_FALSE(hasQuote(String()));
}

TEST(HasSpecialChars, FindsEachOfTheNine) {
    for (const char special : std::string(";()[]*$#|")) {
        EXPECT_TRUE(hasSpecialChars((std::string("a") + special + "b").c_str())) << special;
    }
    EXPECT_FALSE(hasSpecialChars("abc/DEF-1.0_x"));
    EXPECT_FALSE(hasSpecialChars(""));
    EXPECT_FALSE(hasSpecialChars(String()));
}

TEST(IsValidIPAddr, TellsAddressesFromNames) {
    for (const char* const address : {"10.0.0.1", "255.255.255.255", "0.0.0.0"}) {
        EXPECT_TRUE(isValidIPAddr(address)) << address;
    }
    for (const char* const text : {"256.1.1.1", "server", "", "1.2.3.4.5", "1.2.3.4x", "::1"}) {
        EXPECT_FALSE(isValidIPAddr(text)) << text;
    }
}

TEST(SharedList, ASnapshotKeepsWhatItHolds) {
    Array<Record> shared;
    PublishList(shared, ListOf({"a"}));
    const Array<Record> snapshot = ListSnapshot(shared);
    PublishList(shared, ListOf({"b", "c"}));
    ASSERT_EQ(snapshot.size(), 1U);
    EXPECT_EQ(Text(snapshot[0].InstanceID), "a");
    EXPECT_EQ(ListSnapshot(shared).size(), 2U);
}

TEST(SharedList, ARefreshPublishesWhenItIsOver) {
    Array<Record> shared = ListOf({"old"});
    {
        ListRefresh<Record> refresh(shared);
        refresh.Records().push_back(Record{"new", 0});
        EXPECT_EQ(Text(ListSnapshot(shared)[0].InstanceID), "old");
    }
    ASSERT_EQ(shared.size(), 1U);
    EXPECT_EQ(Text(shared[0].InstanceID), "new");
}

TEST(SharedList, ARefreshThatFailsPublishesWhatItHas) {
    Array<Record> shared = ListOf({"old", "old"});
    EXPECT_THROW(
        {
            ListRefresh<Record> refresh(shared);
            refresh.Records().push_back(Record{"new", 0});
            throw 1;
        },
        int);
    ASSERT_EQ(shared.size(), 1U);
    EXPECT_EQ(Text(shared[0].InstanceID), "new");
}

TEST(CommonOddities, CM6_OtherCharactersOfTheShellPass) {
    for (const char* const text :
         {"a&b", "a b", "a`b", "a<b", "a>b", "a\nb", "a'b", "a\"b", "a\\b"}) {
        EXPECT_FALSE(hasSpecialChars(text)) << text;
    }
}

TEST(CommonOddities, CM7_AddressesAreWhatInetAtonTakes) {
    EXPECT_TRUE(isValidIPAddr("10.1"));
    EXPECT_TRUE(isValidIPAddr("10"));
    EXPECT_TRUE(isValidIPAddr("0x0a.0.0.1"));
    EXPECT_TRUE(isValidIPAddr("012.0.0.1"));
    EXPECT_TRUE(isValidIPAddr("127.0.0.1 ; touch x"));
}

TEST(CommonOddities, CM11_TheDoubleQuoteIsNoQuote) {
    EXPECT_FALSE(hasQuote("say \"it\""));
}
