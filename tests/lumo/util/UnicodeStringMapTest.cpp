// Tests of CUnicodeStringMap: a namespace prefix map with exactly compared keys.
#include <lumo/util/UnicodeStringMap.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/WideText.h"

using lumo::base::CArrayIndexOutOfBoundsException;
using lumo::base::CIllegalArgumentException;
using lumo::util::CNoSuchElementException;
using lumo::util::CUnicodeStringMap;
using lumotest::U16;
using lumotest::W;

TEST(UnicodeStringMap, PrefixMapWithExactKeys) {
    CUnicodeStringMap map(0, 0); // steps of 5
    map.Put(W(u"xs"), W(u"http://www.w3.org/2001/XMLSchema"));
    map.Put(W(u"XS"), W(u"upper")); // keys compare exactly
    map.Put(W(u"\u00e9"), nullptr);
    EXPECT_EQ(map.GetSize(), 3u);
    EXPECT_EQ(map.GetCapacity(), 5u);
    EXPECT_EQ(U16(map.Get(W(u"xs"))), u"http://www.w3.org/2001/XMLSchema");
    EXPECT_TRUE(map.Get(W(u"\u00e9")).IsEmpty());
    map.Put(W(u"xs"), W(u"replaced"));
    EXPECT_EQ(U16(map.GetKeyAt(0)), u"xs");
    EXPECT_EQ(U16(map.GetAt(0)), u"replaced");
    EXPECT_EQ(map.GetIndexOfKey(W(u"XS")), 1);
    EXPECT_EQ(map.GetIndexOf(W(u"upper")), 1);
    EXPECT_TRUE(map.Contains(nullptr));
    EXPECT_THROW(map.Get(W(u"xsi")), CNoSuchElementException);
    EXPECT_THROW(map.GetAt(3), CArrayIndexOutOfBoundsException);
    lumotest::ExpectThrowIn<CIllegalArgumentException>(
        "lumo/util/UnicodeStringMap", [&] { map.Put(W(u""), W(u"v")); }, "Invalid key.");
    EXPECT_THROW(map.ContainsKey(nullptr), CIllegalArgumentException);

    CUnicodeStringMap copy(map);
    EXPECT_TRUE(copy == map);
    map.Remove(W(u"xs"));
    EXPECT_TRUE(copy != map);
    EXPECT_EQ(U16(map.GetKeyAt(0)), u"XS");
    CUnicodeStringMap::CKeyIterator keys = copy.GetKeyIterator();
    EXPECT_EQ(U16(keys.NextElement()), u"xs");
    copy = map;
    EXPECT_EQ(copy.GetSize(), 2u);
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
}
