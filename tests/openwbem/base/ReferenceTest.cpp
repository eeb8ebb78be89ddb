#include "OW_COWIntrusiveReference.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_SharedLibraryReference.hpp"

#include "OW_Exception.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OpenWBEM {
namespace {

struct Counted : IntrusiveCountableBase {
    explicit Counted(int* aliveCounter = nullptr) : alive(aliveCounter) { count(1); }
    Counted(const Counted& other) : IntrusiveCountableBase(other), alive(other.alive) { count(1); }
    Counted& operator=(const Counted&) = default;
    ~Counted() override { count(-1); }
    void count(int change) {
        if (alive) {
            *alive += change;
        }
    }
    int* alive;
};

struct Derived : Counted {
    using Counted::Counted;
};

struct Other : Counted {
    using Counted::Counted;
};

TEST(IntrusiveReference, LastHandleDeletesTheObject) {
    int alive = 0;
    {
        IntrusiveReference<Counted> first(new Counted(&alive));
        IntrusiveReference<Counted> second(first);
        first = nullptr;
        EXPECT_EQ(alive, 1);
        EXPECT_FALSE(first);
        EXPECT_TRUE(second);
    }
    EXPECT_EQ(alive, 0);
}

TEST(IntrusiveReference, DefaultIsNull) {
    const IntrusiveReference<Counted> none;
    EXPECT_EQ(none.getPtr(), nullptr);
    EXPECT_TRUE(!none);
    EXPECT_FALSE(none);
}

TEST(IntrusiveReference, IsMadeImplicitlyFromAPointer) {
    int alive = 0;
    {
        const IntrusiveReference<Counted> made = new Counted(&alive);
        EXPECT_EQ(made->alive, &alive);
        EXPECT_EQ((*made).alive, &alive);
    }
    EXPECT_EQ(alive, 0);
}

TEST(IntrusiveReference, ConvertsToTheBase) {
    int alive = 0;
    {
        IntrusiveReference<Derived> derived(new Derived(&alive));
        IntrusiveReference<Counted> base(derived);
        IntrusiveReference<Counted> assigned;
        assigned = derived;
        derived = nullptr;
        base = nullptr;
        EXPECT_EQ(alive, 1);
        EXPECT_TRUE(assigned);
    }
    EXPECT_EQ(alive, 0);
}

TEST(IntrusiveReference, AssignmentToItselfKeepsTheObject) {
    int alive = 0;
    IntrusiveReference<Counted> reference(new Counted(&alive));
    const IntrusiveReference<Counted>& same = reference;
    reference = same;
    reference = reference.getPtr();
    EXPECT_EQ(alive, 1);
}

TEST(IntrusiveReference, MovingLeavesNull) {
    int alive = 0;
    IntrusiveReference<Counted> source(new Counted(&alive));
    IntrusiveReference<Counted> target(std::move(source));
    EXPECT_EQ(source.getPtr(), nullptr);
    source = std::move(target);
    EXPECT_EQ(target.getPtr(), nullptr);
    EXPECT_EQ(alive, 1);
}

TEST(IntrusiveReference, SwapExchangesTheObjects) {
    IntrusiveReference<Counted> a(new Counted);
    IntrusiveReference<Counted> b;
    Counted* const object = a.getPtr();
    a.swap(b);
    EXPECT_EQ(b.getPtr(), object);
    swap(a, b);
    EXPECT_EQ(a.getPtr(), object);
}

TEST(IntrusiveReference, CastsAreChecked) {
    const IntrusiveReference<Counted> base(new Derived);
    EXPECT_EQ(base.cast_to<Derived>().getPtr(), base.getPtr());
    EXPECT_FALSE(base.cast_to<Other>());
    EXPECT_EQ(dynamic_pointer_cast<Derived>(base).getPtr(), base.getPtr());
    EXPECT_FALSE(dynamic_pointer_cast<Other>(base));
    EXPECT_EQ(static_pointer_cast<Derived>(base).getPtr(), base.getPtr());
    const IntrusiveReference<const Counted> fixed(base);
    EXPECT_EQ(const_pointer_cast<Counted>(fixed).getPtr(), base.getPtr());
}

TEST(IntrusiveReference, ComparesAddresses) {
    const IntrusiveReference<Derived> a(new Derived);
    const IntrusiveReference<Counted> sameAsA(a);
    const IntrusiveReference<Counted> b(new Counted);
    EXPECT_TRUE(a == sameAsA);
    EXPECT_FALSE(a != sameAsA);
    EXPECT_TRUE(b != sameAsA);
    EXPECT_TRUE(b == b.getPtr());
    EXPECT_TRUE(b.getPtr() == b);
    EXPECT_TRUE(b != a.getPtr());
    EXPECT_TRUE(a.getPtr() != b);
    EXPECT_NE(b < sameAsA, sameAsA < b);
}

TEST(IntrusiveCountableBase, CopyingDoesNotCopyTheCount) {
    int alive = 0;
    {
        const IntrusiveReference<Counted> original(new Counted(&alive));
        const IntrusiveReference<Counted> again(original);
        const IntrusiveReference<Counted> copy(new Counted(*original));
        EXPECT_EQ(alive, 2);
        *copy = *original;
    }
    EXPECT_EQ(alive, 0);
}

TEST(IntrusiveCountableBase, ObjectsWithoutHandleMayStandAnywhere) {
    int alive = 0;
    {
        const Counted onTheStack(&alive);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

struct Text : COWIntrusiveCountableBase {
    explicit Text(const char* initial) : value(initial) {}
    std::string value;
};

typedef COWIntrusiveReference<Text> TextRef;

std::string read(const TextRef& text) {
    return text->value;
}

TEST(COWIntrusiveReference, CopiesShareUntilOneIsChanged) {
    TextRef a(new Text("a"));
    TextRef b(a);
    EXPECT_TRUE(a == b);
    EXPECT_EQ(read(a), "a");
    EXPECT_TRUE(a == b);
    b->value = "b";
    EXPECT_TRUE(a != b);
    EXPECT_EQ(read(a), "a");
    EXPECT_EQ(read(b), "b");
}

TEST(COWIntrusiveReference, OnlyHolderChangesInPlace) {
    TextRef a(new Text("a"));
    const Text* const before = a.getPtr();
    (*a).value = "b";
    EXPECT_EQ(a.getPtr(), before);
    { const TextRef b(a); }
    a->value = "c";
    EXPECT_EQ(a.getPtr(), before);
}

TEST(COWIntrusiveReference, NullHandleThrowsOnEveryAccess) {
    TextRef none;
    const TextRef& fixed = none;
    EXPECT_FALSE(none);
    EXPECT_TRUE(!none);
    EXPECT_THROW((void)fixed->value, Exception);
    EXPECT_THROW((void)(*fixed).value, Exception);
    EXPECT_THROW((void)none->value, Exception);
    EXPECT_THROW((void)(*none).value, Exception);
}

TEST(COWIntrusiveReference, NullDereferenceHasItsOwnClass) {
    const TextRef none;
    try {
        (void)none->value;
        FAIL() << "nothing was thrown";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.type(), "NULLCOWIntrusiveReferenceException");
        EXPECT_STREQ(e.getMessage(), "NULL COWReference dereferenced");
        EXPECT_EQ(e.getErrorCode(), -1);
        EXPECT_EQ(e.getSubClassId(), 47);
    }
}

struct Step : SharedLibrary {
    explicit Step(std::vector<std::string>& targetLog) : log(targetLog) {}
    ~Step() override { log.emplace_back("library"); }
    std::vector<std::string>& log;
};

struct Code : IntrusiveCountableBase {
    explicit Code(std::vector<std::string>& targetLog) : log(targetLog) {}
    ~Code() override { log.emplace_back("object"); }
    std::vector<std::string>& log;
};

typedef SharedLibraryReference<IntrusiveReference<Code>> CodeRef;

TEST(SharedLibraryReference, ReleasesTheObjectBeforeTheLibrary) {
    std::vector<std::string> log;
    {
        const CodeRef reference(new Step(log), new Code(log));
        EXPECT_TRUE(reference);
        EXPECT_FALSE(reference.isNull());
        EXPECT_EQ(&reference->log, &log);
        EXPECT_EQ(&(*reference).log, &log);
    }
    EXPECT_EQ(log, (std::vector<std::string>{"object", "library"}));
}

TEST(SharedLibraryReference, AssignmentReleasesInTheSameOrder) {
    std::vector<std::string> log;
    CodeRef reference(new Step(log), new Code(log));
    reference = CodeRef();
    EXPECT_TRUE(!reference);
    EXPECT_TRUE(reference.isNull());
    EXPECT_EQ(log, (std::vector<std::string>{"object", "library"}));
}

TEST(SharedLibraryReference, AnotherObjectKeepsTheLibrary) {
    std::vector<std::string> log;
    CodeRef first(new Step(log), new Code(log));
    const CodeRef second(first, new Code(log));
    EXPECT_EQ(second.getLibRef(), first.getLibRef());
    first = CodeRef();
    EXPECT_EQ(log, (std::vector<std::string>{"object"}));
}

} // namespace
} // namespace OpenWBEM
