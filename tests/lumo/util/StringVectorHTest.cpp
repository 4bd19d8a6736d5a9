// Tests of CStringVectorH: packing of the strings and the last-index rule, insert, set,
// search and copies.
#include <lumo/util/StringVectorH.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace lumo::base;
using namespace lumo::util;

namespace {

std::vector<std::string> Texts(CStringVectorH const& v) {
    std::vector<std::string> texts;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        texts.push_back(static_cast<char const*>(v[i]));
    return texts;
}

std::vector<unsigned long> Offsets(CStringVectorH const& v) {
    std::vector<unsigned long> offsets;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        offsets.push_back(v.GetOffsetAt(i));
    return offsets;
}

} // namespace

TEST(StringVectorH, PackingAndTheLastIndexRule) {
    CStringVectorH v(0, 0, 0, 0); // data in steps of 256, index in steps of 1
    EXPECT_EQ(v.GetDataCapacity(), 0u);
    v.AddElement("x");
    v.AddElement("yy");
    v.AddElement("zzz");
    EXPECT_EQ(v.GetDataCapacity(), 256u);
    EXPECT_EQ(v.GetIndexCapacity(), 3u);
    EXPECT_EQ(Offsets(v), (std::vector<unsigned long>{0, 2, 5}));
    EXPECT_EQ(v.GetDataLength(), 9u);
    v.RemoveElementAt(1);
    EXPECT_EQ(Offsets(v), (std::vector<unsigned long>{0, 2}));
    EXPECT_EQ(v.GetDataLength(), 6u);
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"x", "zzz"}));
    EXPECT_EQ(v.GetIndexCapacity(), 2u);

    v.RemoveElementAt(1); // the last index: its bytes go, its slot stays
    EXPECT_EQ(v.GetSize(), 2u);
    EXPECT_EQ(v.GetDataLength(), 2u);
    {
        // Copies answer as the original does, the kept slot included.
        CStringVectorH copy(v), assigned;
        assigned = v;
        for (CStringVectorH const* other : {&copy, &assigned}) {
            EXPECT_EQ(Texts(*other), Texts(v));
            EXPECT_STREQ(other->GetLastElement(), v.GetLastElement());
            EXPECT_EQ(other->GetLastIndexOf("zzz"), v.GetLastIndexOf("zzz"));
        }
    }
    EXPECT_STREQ(v.GetFirstElement(), "x");
    v.AddElement("new"); // lands where the cut string was
    EXPECT_EQ(v.GetSize(), 3u);
    EXPECT_EQ(Offsets(v), (std::vector<unsigned long>{0, 2, 2}));
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"x", "new", "new"}));
    EXPECT_THROW(v.GetElementAt(3), CArrayIndexOutOfBoundsException);
    EXPECT_THROW(v.RemoveElementAt(3), CArrayIndexOutOfBoundsException);

    std::string const big(300, 'b');
    v.AddElement(big.c_str());
    EXPECT_EQ(v.GetDataCapacity(), 512u);
    v.RemoveElement(big.c_str()); // the last: cut back to 6 bytes, plus 256 of slack
    EXPECT_EQ(v.GetDataCapacity(), 512u);
    EXPECT_EQ(v.GetSize(), 4u);
    v.RemoveAllElements();
    EXPECT_TRUE(v.IsEmpty());
    EXPECT_EQ(v.GetDataCapacity(), 256u);
    EXPECT_EQ(v.GetIndexCapacity(), 1u);
    EXPECT_THROW(v.GetFirstElement(), CNoSuchElementException);
    CString text;
    EXPECT_THROW(v.GetLastElement(text), CNoSuchElementException);
}

TEST(StringVectorH, InsertSetSearchAndCopies) {
    CStringVectorH v(10, 4, 2, 2);
    EXPECT_EQ(v.GetDataCapacity(), 12u);
    EXPECT_EQ(v.GetIndexCapacity(), 2u);
    v.AddElement("bb");
    v.AddElement("dddd");
    v.InsertElementAt("a", 0);
    v.InsertElementAt("ccc", 2);
    v.InsertElementAt("", 4); // == size appends
    EXPECT_THROW(v.InsertElementAt("z", 6), CArrayIndexOutOfBoundsException);
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"a", "bb", "ccc", "dddd", ""}));
    EXPECT_EQ(Offsets(v), (std::vector<unsigned long>{0, 2, 5, 9, 14}));
    EXPECT_EQ(v.GetDataLength(), 15u);
    EXPECT_EQ(v.GetDataCapacity(), 16u);

    v.SetElementAt(1, "BBBBBB"); // longer: the tail moves up
    v.SetElementAt(2, "c");      // shorter: the tail moves down
    v.SetElementAt(4, "end");    // the last one: nothing to move
    EXPECT_EQ(Texts(v), (std::vector<std::string>{"a", "BBBBBB", "c", "dddd", "end"}));
    EXPECT_EQ(Offsets(v), (std::vector<unsigned long>{0, 2, 9, 11, 16}));
    EXPECT_EQ(v.GetDataLength(), 20u);
    EXPECT_THROW(v.SetElementAt(5, "x"), CArrayIndexOutOfBoundsException);

    v.AddElement("c");
    EXPECT_EQ(v.GetIndexOf("c"), 2);
    EXPECT_EQ(v.GetLastIndexOf("c"), 5);
    EXPECT_EQ(v.GetIndexOf("C"), -1);
    EXPECT_EQ(v.GetIndexOf("ddd"), -1); // no prefix match
    CString last;
    v.GetLastElement(last);
    EXPECT_STREQ(last, "c");
    v.GetElementAt(1, last);
    EXPECT_STREQ(last, "BBBBBB");

    CStringVectorH copy(v);
    EXPECT_EQ(Texts(copy), Texts(v));
    copy.RemoveElement("BBBBBB");
    EXPECT_EQ(v.GetSize(), 6u);
    CStringVectorH assigned;
    assigned.AddElement("old");
    assigned = copy;
    EXPECT_EQ(Texts(assigned), Texts(copy));
    assigned = assigned;
    EXPECT_EQ(assigned.GetSize(), 5u);
}
