// Tests of CUnicodeStringVector: element operations over UTF-16 texts.
#include <lumo/util/UnicodeStringVector.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/WideText.h"

#include <vector>

using lumo::base::CArrayIndexOutOfBoundsException;
using lumo::base::CIllegalArgumentException;
using lumo::base::CUnicodeString;
using lumo::util::CEnumeration;
using lumo::util::CNoSuchElementException;
using lumo::util::CUnicodeStringVector;
using lumotest::U16;
using lumotest::W;

namespace {
std::vector<std::u16string> Texts(CUnicodeStringVector const& v) {
    std::vector<std::u16string> texts;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        texts.push_back(U16(v[i]));
    return texts;
}
} // namespace

TEST(UnicodeStringVector, ElementOperationsOverUtf16Texts) {
    CUnicodeStringVector v(0, 2);
    v.AddElement(W(u"\u00e9t\u00e9"));
    v.AddElement(W(u"\u20ac"));
    v.InsertElementAt(W(u"a"), 0);
    v.InsertElementAt(W(u"\U0001F600"), 3);
    EXPECT_THROW(v.InsertElementAt(W(u"x"), 5), CArrayIndexOutOfBoundsException);
    EXPECT_EQ(Texts(v),
              (std::vector<std::u16string>{u"a", u"\u00e9t\u00e9", u"\u20ac", u"\U0001F600"}));
    EXPECT_EQ(v.GetCapacity(), 4u);
    v.SetElementAt(W(u"b"), 0);
    v.SetElementAt(W(u"ignored"), 4); // at the size: nothing, no exception
    EXPECT_EQ(v.GetIndexOf(W(u"\u20ac")), 2);
    EXPECT_EQ(v.GetIndexOf(W(u"\u20ad")), -1);
    v.AddElement(W(u"b"));
    EXPECT_EQ(v.GetLastIndexOf(W(u"b")), 4);
    EXPECT_EQ(U16(v.GetFirstElement()), u"b");
    v.RemoveElement(W(u"b"));
    v.RemoveElementAt(0);
    EXPECT_EQ(Texts(v), (std::vector<std::u16string>{u"\u20ac", u"\U0001F600", u"b"}));
    EXPECT_THROW(v.GetElementAt(3), CArrayIndexOutOfBoundsException);

    v.Sort([](void const* a, void const* b) {
        return static_cast<CUnicodeString const*>(a)->Compare(
            *static_cast<CUnicodeString const*>(b));
    });
    // By unit values: the surrogate pair sorts after the euro sign.
    EXPECT_EQ(Texts(v), (std::vector<std::u16string>{u"b", u"\u20ac", u"\U0001F600"}));

    CUnicodeStringVector copy(v);
    EXPECT_TRUE(copy == v);
    copy.RemoveAllElements();
    EXPECT_TRUE(copy != v);
    EXPECT_THROW(copy.GetLastElement(), CNoSuchElementException);
    CEnumeration<CUnicodeString> e = v.GetElements();
    int seen = 0;
    while (e.HasMoreElements()) {
        e.NextElement();
        ++seen;
    }
    EXPECT_EQ(seen, 3);

    lumotest::ExpectThrowIn<CIllegalArgumentException>(
        "lumo/util/UnicodeStringVector", [&] { v.AddElement(nullptr); }, "Invalid element.");
    EXPECT_THROW(v.Contains(nullptr), CIllegalArgumentException);
    EXPECT_THROW(v.SetElementAt(nullptr, 9), CIllegalArgumentException);
    EXPECT_EQ(v.GetSize(), 3u);
}
