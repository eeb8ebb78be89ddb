#include "OW_CIMInstance.hpp"
#include "OW_CIMInstanceEnumeration.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMObjectPathEnumeration.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMValue.hpp"
#include "OW_EnumerationException.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace OpenWBEM {
namespace {

CIMInstance named(const char* className) {
    CIMInstance instance;
    instance.setClassName(className);
    return instance;
}

void expectFailure(const std::function<void()>& use, const char* type, const char* message,
                   int subClassId) {
    try {
        use();
        ADD_FAILURE() << "nothing thrown";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.type(), type);
        EXPECT_STREQ(e.getMessage(), message);
        EXPECT_EQ(e.getSubClassId(), subClassId);
        EXPECT_EQ(e.getErrorCode(), -1);
    }
}

} // namespace

TEST(Enumeration, IsEmptyAtFirst) {
    const CIMInstanceEnumeration queue;
    EXPECT_FALSE(queue.hasMoreElements());
    EXPECT_EQ(queue.numberOfElements(), 0u);
}

TEST(Enumeration, FirstInIsFirstOut) {
    CIMInstanceEnumeration queue;
    queue.addElement(named("A"));
    queue.addElement(named("B"));
    queue.addElement(named("C"));
    EXPECT_EQ(queue.numberOfElements(), 3u);
    EXPECT_EQ(queue.nextElement().getClassName(), "A");
    CIMInstance second;
    queue.nextElement(second);
    EXPECT_EQ(second.getClassName(), "B");
    EXPECT_EQ(queue.numberOfElements(), 1u);
    EXPECT_TRUE(queue.hasMoreElements());
    EXPECT_EQ(queue.nextElement().getClassName(), "C");
    EXPECT_FALSE(queue.hasMoreElements());
}

TEST(Enumeration, CopiesShareOneQueue) {
    CIMObjectPathEnumeration queue;
    CIMObjectPathEnumeration copy(queue);
    CIMObjectPathEnumeration assigned;
    assigned = queue;
    queue.addElement(CIMObjectPath("A"));
    copy.addElement(CIMObjectPath("B"));
    EXPECT_EQ(assigned.numberOfElements(), 2u);
    EXPECT_EQ(assigned.nextElement().getClassName(), "A");
    EXPECT_EQ(queue.nextElement().getClassName(), "B");
    EXPECT_FALSE(copy.hasMoreElements());
}

TEST(Enumeration, CopyOutlivesTheOriginal) {
    CIMInstanceEnumeration copy;
    {
        CIMInstanceEnumeration original;
        original.addElement(named("A"));
        copy = original;
    }
    EXPECT_EQ(copy.nextElement().getClassName(), "A");
}

TEST(Enumeration, TakingFromAnEmptyOneFails) {
    CIMInstanceEnumeration queue;
    const char* const text = "Attempt to Extract from empty Enum";
    expectFailure([&] { queue.nextElement(); }, "EnumerationException", text, 18);
    CIMInstance out;
    expectFailure([&] { queue.nextElement(out); }, "EnumerationException", text, 18);
    queue.addElement(named("A"));
    queue.nextElement();
    expectFailure([&] { queue.nextElement(); }, "EnumerationException", text, 18);
}

TEST(Enumeration, ClearEmptiesIt) {
    CIMInstanceEnumeration queue;
    queue.addElement(named("A"));
    queue.clear();
    EXPECT_FALSE(queue.hasMoreElements());
    EXPECT_EQ(queue.numberOfElements(), 0u);
}

TEST(Enumeration, WhatComesOutIsIndependentOfWhatWentIn) {
    CIMInstance original = named("A");
    original.setProperty("p", CIMValue(UInt32(1)));
    CIMInstanceEnumeration queue;
    queue.addElement(original);
    original.setProperty("p", CIMValue(UInt32(2)));
    CIMInstance out = queue.nextElement();
    EXPECT_EQ(out.getPropertyT("p").getValue().toString(), "1");
    out.setProperty("p", CIMValue(UInt32(3)));
    EXPECT_EQ(original.getPropertyT("p").getValue().toString(), "2");
}

TEST(Enumeration, DefaultInstancePassesUnharmed) {
    CIMInstanceEnumeration queue;
    queue.addElement(CIMInstance());
    EXPECT_FALSE(!queue.nextElement());
}

TEST(Enumeration, NullInstanceIsRefusedAndSpoilsTheQueue) {
    CIMInstanceEnumeration queue;
    queue.addElement(named("A"));
    expectFailure([&] { queue.addElement(CIMInstance(CIMNULL)); },
                  "NULLCOWIntrusiveReferenceException", "NULL COWReference dereferenced", 47);
    CIMInstanceEnumeration copy(queue);
    EXPECT_THROW(copy.nextElement(), EnumerationException);
    EXPECT_THROW(queue.nextElement(), EnumerationException);
    queue.clear();
    queue.addElement(named("B"));
    EXPECT_EQ(queue.nextElement().getClassName(), "B");
}

TEST(Enumeration, NullPathIsRefusedAndSpoilsTheQueue) {
    CIMObjectPathEnumeration queue;
    expectFailure([&] { queue.addElement(CIMObjectPath(CIMNULL)); },
                  "NULLCOWIntrusiveReferenceException", "NULL COWReference dereferenced", 47);
    EXPECT_THROW(queue.nextElement(), EnumerationException);
}

TEST(Enumeration, HoldsOtherTypesToo) {
    Enumeration<String> queue;
    queue.addElement(String());
    queue.addElement("text");
    EXPECT_EQ(queue.nextElement(), "");
    EXPECT_EQ(queue.nextElement(), "text");
}

TEST(Enumeration, TakesHundredThousandElements) {
    CIMObjectPathEnumeration queue;
    const CIMObjectPath path("A");
    for (int i = 0; i < 100000; ++i) {
        queue.addElement(path);
    }
    std::size_t count = 0;
    while (queue.hasMoreElements()) {
        queue.nextElement();
        ++count;
    }
    EXPECT_EQ(count, 100000u);
}

} // namespace OpenWBEM
