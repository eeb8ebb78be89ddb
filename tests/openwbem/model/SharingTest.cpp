// Copies of one instance, path and class are made and changed in several threads at once.
#include "OW_CIM.hpp"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace OpenWBEM;

constexpr int rounds = 2000;

CIMInstance Sample() {
    CIMClass cimClass("ZNX_A");
    CIMProperty id("InstanceID", CIMDataType(CIMDataType::STRING));
    cimClass.addProperty(id.addQualifier(CIMQualifier::createKeyQualifier()));
    cimClass.addProperty(CIMProperty("Name", CIMDataType(CIMDataType::STRING)));
    CIMInstance instance = cimClass.newInstance();
    instance.setProperty("InstanceID", CIMValue("1"));
    instance.setProperty("Name", CIMValue("shared"));
    return instance;
}

// The number of rounds in which something else came out than expected.
int ChangeCopies(const CIMInstance& shared, const std::string& mine) {
    int failures = 0;
    for (int round = 0; round < rounds; ++round) {
        CIMInstance copy(shared);
        copy.setProperty("Name", CIMValue(mine.c_str()));
        copy.setProperty("InstanceID", CIMValue(mine.c_str()));
        copy.setProperty("Extra", CIMValue(UInt16(7)));
        const CIMObjectPath path("root", copy);
        const bool isMine = copy.getPropertyValue("Name").toString() == mine.c_str() &&
                            path.getKeyValue("InstanceID").toString() == mine.c_str();
        const bool isUntouched = shared.getPropertyValue("Name").toString() == "shared" &&
                                 shared.getProperties().size() == 2;
        failures += isMine && isUntouched ? 0 : 1;
    }
    return failures;
}

TEST(Sharing, ThreadsChangeTheirCopiesOfOneInstance) {
    const CIMInstance shared = Sample();
    int failures[] = {-1, -1};
    std::thread first([&] { failures[0] = ChangeCopies(shared, "first"); });
    std::thread second([&] { failures[1] = ChangeCopies(shared, "second"); });
    first.join();
    second.join();
    EXPECT_EQ(failures[0], 0);
    EXPECT_EQ(failures[1], 0);
    EXPECT_EQ(shared.toString(), "instance of ZNX_A {\nInstanceID = 1;\nName = shared;\n}");
}

TEST(Sharing, TheLastOwnerOfAnInstanceMayBeAnyThread) {
    for (int round = 0; round < 100; ++round) {
        CIMInstance instance = Sample();
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([copy = instance, i]() mutable {
                copy.setProperty("Name", CIMValue(Int32(i)));
                EXPECT_EQ(copy.getPropertyValue("Name").toString(), String(Int32(i)));
            });
        }
        instance.setNull();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

TEST(Sharing, ThreadsReadOneClassAndMakeInstancesOfIt) {
    const CIMInstance sample = Sample();
    CIMClass cimClass("ZNX_A");
    cimClass.setProperties(sample.getProperties());
    const CIMClass& shared = cimClass;
    const auto work = [&shared] {
        for (int round = 0; round < rounds; ++round) {
            CIMInstance instance = shared.newInstance();
            instance.setProperty("Name", CIMValue(Int32(round)));
            CIMObjectPath path = CIMObjectPath::parse("root:ZNX_A.InstanceID=5");
            path.syncWithClass(shared);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_EQ(shared.getProperty("Name").getValue().toString(), "shared");
}

} // namespace
