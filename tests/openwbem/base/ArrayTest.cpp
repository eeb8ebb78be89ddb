#include "OW_Array.hpp"

#include "OW_Bool.hpp"
#include "OW_Char16.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

namespace OpenWBEM {
namespace {

typedef std::vector<int> Ints;

Array<int> made(const Ints& elements) {
    return {elements.begin(), elements.end()};
}

Ints plain(const Array<int>& array) {
    return {array.begin(), array.end()};
}

const int* place(const Array<int>& array) {
    return &*array.begin();
}

TEST(Array, DefaultIsEmpty) {
    const Array<int> none;
    EXPECT_EQ(none.size(), 0U);
    EXPECT_TRUE(none.empty());
    EXPECT_TRUE(none.begin() == none.end());
    EXPECT_TRUE(none.rbegin() == none.rend());
    Array<int> changeable;
    EXPECT_TRUE(changeable.begin() == changeable.end());
}

TEST(Array, ConstructorsFillIt) {
    EXPECT_EQ(plain(Array<int>(3)), (Ints{0, 0, 0}));
    EXPECT_EQ(plain(Array<int>(3, 7)), (Ints{7, 7, 7}));
    const std::list<int> source{1, 2};
    EXPECT_EQ(plain(Array<int>(source.begin(), source.end())), (Ints{1, 2}));
    EXPECT_EQ(plain(Array<int>(new Ints{4, 5})), (Ints{4, 5}));
    Ints* const null = nullptr;
    EXPECT_TRUE(Array<int>(null).empty());
}

TEST(Array, CopiesShareUntilOneIsChanged) {
    Array<int> a = made({1, 2});
    const Array<int> b(a);
    EXPECT_EQ(place(a), place(b));
    a.push_back(3);
    EXPECT_EQ(plain(a), (Ints{1, 2, 3}));
    EXPECT_EQ(plain(b), (Ints{1, 2}));
    Array<int> c;
    c = b;
    EXPECT_EQ(place(c), place(b));
}

TEST(Array, ConstAccessNeverCopies) {
    const Array<int> a = made({1, 2});
    const std::vector<Array<int>> copies(1, a);
    const Array<int>& b = copies[0];
    EXPECT_EQ(b[1], 2);
    EXPECT_EQ(b.front(), 1);
    EXPECT_EQ(b.back(), 2);
    EXPECT_EQ(*b.rbegin(), 2);
    EXPECT_EQ(place(a), place(b));
}

TEST(Array, NonConstAccessDetaches) {
    const Array<int> original = made({1, 2, 3});
    Array<int> byBegin(original);
    *byBegin.begin() = 9;
    Array<int> byEnd(original);
    *(byEnd.end() - 1) = 9;
    Array<int> byIndex(original);
    byIndex[1] = 9;
    Array<int> byFront(original);
    byFront.front() = 9;
    Array<int> byBack(original);
    byBack.back() = 9;
    Array<int> byReverse(original);
    *byReverse.rbegin() = 9;
    EXPECT_EQ(plain(byBegin), (Ints{9, 2, 3}));
    EXPECT_EQ(plain(byEnd), (Ints{1, 2, 9}));
    EXPECT_EQ(plain(byIndex), (Ints{1, 9, 3}));
    EXPECT_EQ(plain(byFront), (Ints{9, 2, 3}));
    EXPECT_EQ(plain(byBack), (Ints{1, 2, 9}));
    EXPECT_EQ(plain(byReverse), (Ints{1, 2, 9}));
    EXPECT_EQ(plain(original), (Ints{1, 2, 3}));
}

TEST(Array, GrowsAndShrinks) {
    Array<int> a;
    a.reserve(10);
    EXPECT_GE(a.capacity(), 10U);
    a.push_back(1);
    a.append(2);
    a += 3;
    EXPECT_EQ(plain(a), (Ints{1, 2, 3}));
    a.pop_back();
    EXPECT_EQ(plain(a), (Ints{1, 2}));
    a.resize(3);
    EXPECT_EQ(plain(a), (Ints{1, 2, 0}));
    a.resize(5, 8);
    EXPECT_EQ(plain(a), (Ints{1, 2, 0, 8, 8}));
    a.resize(1);
    EXPECT_EQ(plain(a), (Ints{1}));
    a.clear();
    EXPECT_TRUE(a.empty());
    a.push_back(4);
    EXPECT_EQ(plain(a), (Ints{4}));
}

TEST(Array, ClearLeavesCopiesAlone) {
    Array<int> a = made({1});
    const Array<int> b(a);
    a.clear();
    EXPECT_EQ(plain(b), (Ints{1}));
}

TEST(Array, AppendArrayAddsTheOther) {
    Array<int> a = made({1, 2});
    a.appendArray(made({3}));
    a.appendArray(Array<int>());
    EXPECT_EQ(plain(a), (Ints{1, 2, 3}));
    a.appendArray(a);
    EXPECT_EQ(plain(a), (Ints{1, 2, 3, 1, 2, 3}));
    Array<int> none;
    none.appendArray(made({5}));
    EXPECT_EQ(plain(none), (Ints{5}));
}

TEST(Array, InsertsAtPositions) {
    Array<int> a = made({1, 4});
    EXPECT_EQ(*a.insert(a.begin() + 1, 3), 3);
    a.insert(Array<int>::size_type(1), 2);
    a.insert(a.size(), 5);
    EXPECT_EQ(plain(a), (Ints{1, 2, 3, 4, 5}));
    const Ints more{8, 9};
    a.insert(a.begin(), more.begin(), more.end());
    EXPECT_EQ(plain(a), (Ints{8, 9, 1, 2, 3, 4, 5}));
    Array<int> none;
    none.insert(none.begin(), 1);
    EXPECT_EQ(plain(none), (Ints{1}));
}

TEST(Array, ErasesAndRemoves) {
    Array<int> a = made({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(*a.erase(a.begin() + 1), 3);
    EXPECT_EQ(*a.erase(a.begin(), a.begin() + 2), 4);
    EXPECT_EQ(plain(a), (Ints{4, 5, 6}));
    a.remove(1);
    EXPECT_EQ(plain(a), (Ints{4, 6}));
    a.remove(0, 2);
    EXPECT_TRUE(a.empty());
}

TEST(Array, PositionsSurviveACopyTakenInBetween) {
    Array<int> a = made({1, 2, 3});
    Array<int>::iterator second = a.begin() + 1;
    const Array<int> copy(a);
    a.erase(second);
    EXPECT_EQ(plain(a), (Ints{1, 3}));
    second = a.begin() + 1;
    const Array<int> again(a);
    a.insert(second, 7);
    EXPECT_EQ(plain(a), (Ints{1, 7, 3}));
    EXPECT_EQ(plain(copy), (Ints{1, 2, 3}));
    EXPECT_EQ(plain(again), (Ints{1, 3}));
}

template <class F>
std::string messageOf(F f) {
    try {
        f();
    } catch (const OutOfBoundsException& e) {
        EXPECT_EQ(e.getErrorCode(), -1);
        EXPECT_EQ(e.getSubClassId(), 31);
        return e.getMessage();
    }
    return "nothing was thrown";
}

TEST(Array, IndexOutOfBoundsThrows) {
    Array<int> a = made({1, 2});
    const Array<int>& fixed = a;
    const std::string expected = "Array Index out of bounds. size = 2, index = 2";
    EXPECT_EQ(messageOf([&] { (void)a[2]; }), expected);
    EXPECT_EQ(messageOf([&] { (void)fixed[2]; }), expected);
    EXPECT_EQ(messageOf([&] { a.remove(2); }), expected);
    EXPECT_EQ(messageOf([&] { a.remove(0, 3); }), expected);
    EXPECT_EQ(messageOf([&] { a.remove(2, 3); }), expected);
    EXPECT_EQ(messageOf([] { (void)Array<int>()[0]; }),
              "Array Index out of bounds. size = 0, index = 0");
    EXPECT_EQ(plain(a), (Ints{1, 2}));
}

TEST(Array, ComparesElementByElement) {
    EXPECT_TRUE(made({1, 2}) == made({1, 2}));
    EXPECT_TRUE(made({1, 2}) != made({1, 3}));
    EXPECT_TRUE(made({1, 2}) != made({1}));
    EXPECT_TRUE(made({1}) < made({1, 2}));
    EXPECT_TRUE(made({1, 3}) > made({1, 2, 9}));
    EXPECT_TRUE(made({1, 2}) <= made({1, 2}));
    EXPECT_TRUE(made({1, 2}) >= made({1, 2}));
    EXPECT_FALSE(made({1, 2}) < made({1, 2}));
    const Array<int> none;
    const Array<int> sizedZero(Array<int>::size_type(0));
    EXPECT_TRUE(none == sizedZero);
    EXPECT_FALSE(made({1, 2}) == made({1, 3}));
    EXPECT_FALSE(made({2}) <= made({1}));
    EXPECT_FALSE(made({1}) >= made({2}));
}

TEST(Array, SwapExchangesTheElements) {
    Array<int> a = made({1});
    Array<int> b;
    a.swap(b);
    EXPECT_EQ(plain(b), (Ints{1}));
    swap(a, b);
    EXPECT_EQ(plain(a), (Ints{1}));
    EXPECT_TRUE(b.empty());
}

TEST(Array, MovingTakesTheElementsAlong) {
    Array<String> a;
    a.append(String("x"));
    const char* const text = a[0].c_str();
    const Array<String> b(std::move(a));
    EXPECT_EQ(b[0].c_str(), text);
}

TEST(Array, TypedefsNameTheirElements) {
    static_assert(std::is_same<UInt8Array::value_type, UInt8>::value, "");
    static_assert(std::is_same<Int8Array::value_type, Int8>::value, "");
    static_assert(std::is_same<UInt16Array::value_type, UInt16>::value, "");
    static_assert(std::is_same<Int16Array::value_type, Int16>::value, "");
    static_assert(std::is_same<UInt32Array::value_type, UInt32>::value, "");
    static_assert(std::is_same<Int32Array::value_type, Int32>::value, "");
    static_assert(std::is_same<UInt64Array::value_type, UInt64>::value, "");
    static_assert(std::is_same<Int64Array::value_type, Int64>::value, "");
    static_assert(std::is_same<Real32Array::value_type, Real32>::value, "");
    static_assert(std::is_same<Real64Array::value_type, Real64>::value, "");
    static_assert(std::is_same<StringArray::value_type, String>::value, "");
    static_assert(std::is_same<BoolArray::value_type, Bool>::value, "");
    static_assert(std::is_same<Char16Array::value_type, Char16>::value, "");
    EXPECT_EQ(UInt8Array(UInt8Array::size_type(2), 5)[1], 5);
    EXPECT_TRUE(BoolArray(BoolArray::size_type(1), Bool(true))[0]);
}

} // namespace
} // namespace OpenWBEM
