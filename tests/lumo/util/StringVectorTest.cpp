// Tests of CStringVector: element operations and the SetElementAt rule, sort, copies and
// enumeration.
#include <lumo/util/StringVector.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <cstring>
#include <string>
#include <vector>

using lumo::base::CArrayIndexOutOfBoundsException;
using lumo::base::CString;
using lumo::util::CEnumeration;
using lumo::util::CNoSuchElementException;
using lumo::util::CStringVector;

namespace {

std::vector<std::string> Texts(CStringVector const& v) {
    std::vector<std::string> texts;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        texts.push_back(static_cast<char const*>(v[i]));
    return texts;
}

lumotest::IllegalIn const ExpectIllegal{"lumo/util/StringVector"};

} // namespace

TEST(StringVector, ElementOperationsAndTheSetElementAtRule) {
    CStringVector v(0, 3);
    EXPECT_THROW(v.GetFirstElement(), CNoSuchElementException);
    EXPECT_THROW(v.GetLastElement(), CNoSuchElementException);
    v.AddElement("b");
    v.AddElement("d");
    v.InsertElementAt("a", 0);
    v.InsertElementAt("c", 2);
    v.InsertElementAt("e", 4); // == size appends
    EXPECT_THROW(v.InsertElementAt("z", 6), CArrayIndexOutOfBoundsException);
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(v.GetCapacity(), 6u);

    v.SetElementAt("B", 1);
    v.SetElementAt("ignored", 5); // at the size: nothing, no exception
    v.SetElementAt("ignored", 100);
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"a", "B", "c", "d", "e"}));
    v.GetElementAt(2) += "c"; // elements are handed out by reference
    EXPECT_STREQ(v.GetFirstElement(), "a");
    EXPECT_STREQ(v.GetLastElement(), "e");
    EXPECT_THROW(v.GetElementAt(5), CArrayIndexOutOfBoundsException);

    v.AddElement("a");
    EXPECT_EQ(v.GetIndexOf("a"), 0);
    EXPECT_EQ(v.GetLastIndexOf("a"), 5);
    EXPECT_EQ(v.GetIndexOf("b"), -1); // case-sensitive
    EXPECT_TRUE(v.Contains("cc"));
    v.RemoveElement("zzz");
    v.RemoveElement("a");
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"B", "cc", "d", "e", "a"}));
    v.RemoveElementAt(4);
    v.RemoveElementAt(0);
    EXPECT_EQ(v.GetCapacity(), 3u);
    EXPECT_THROW(v.RemoveElementAt(3), CArrayIndexOutOfBoundsException);
    v.RemoveAllElements();
    EXPECT_TRUE(v.IsEmpty());
    v.TrimToSize();
    EXPECT_EQ(v.GetCapacity(), 0u);
    v.EnsureCapacity(4);
    EXPECT_EQ(v.GetCapacity(), 6u);

    ExpectIllegal([&] { v.AddElement(nullptr); }, "Invalid element.");
    ExpectIllegal([&] { v.InsertElementAt(nullptr, 0); }, "Invalid element.");
    ExpectIllegal([&] { v.SetElementAt(nullptr, 0); }, "Invalid element.");
    ExpectIllegal([&] { v.Contains(nullptr); }, "Invalid element.");
    ExpectIllegal([&] { v.GetIndexOf(nullptr); }, "Invalid element.");
    ExpectIllegal([&] { v.GetLastIndexOf(nullptr); }, "Invalid element.");
    ExpectIllegal([&] { v.RemoveElement(nullptr); }, "Invalid element.");
    ExpectIllegal([&] { v.Sort(nullptr); }, "Invalid compare function.");
    ExpectIllegal([] { CStringVector bad(1, 0); }, "Invalid increment.");
}

TEST(StringVector, SortCopiesAndEnumeration) {
    CStringVector v;
    for (char const* text : {"pear", "apple", "fig", "banana", "cherry"})
        v.AddElement(text);
    v.Sort([](void const* a, void const* b) {
        return std::strcmp(*static_cast<CString const*>(a), *static_cast<CString const*>(b));
    });
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"apple", "banana", "cherry", "fig", "pear"}));

    CStringVector copy(v);
    EXPECT_TRUE(copy == v);
    copy.SetElementAt("kiwi", 3);
    EXPECT_TRUE(copy != v);
    EXPECT_STREQ(v[3], "fig"); // the copy's change stays its own
    CStringVector assigned(0, 2);
    assigned.AddElement("x");
    assigned = copy;
    EXPECT_TRUE(assigned == copy);
    assigned = assigned;
    EXPECT_EQ(assigned.GetSize(), 5u);

    CEnumeration<CString> e = v.GetElements();
    std::vector<std::string> seen;
    while (e.HasMoreElements())
        seen.push_back(static_cast<char const*>(*e.NextElement()));
    EXPECT_EQ(seen, Texts(v));
    EXPECT_THROW(e.NextElement(), CNoSuchElementException);
    e.Reset();
    EXPECT_STREQ(*e.NextElement(), "apple");
}
