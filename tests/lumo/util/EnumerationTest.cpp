// Tests of CEnumeration: handles share one enumeration object and delete it once.
#include <lumo/util/Enumeration.h>

#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

using namespace lumo::base;
using namespace lumo::util;

namespace {

int g_deleted = 0;

// Counts 0, 1, 2 and is deleted exactly once by the last handle.
class CCounting : public IEnumeration<int> {
public:
    ~CCounting() override { ++g_deleted; }
    bool HasMoreElements() const override { return m_next < 3; }
    int* NextElement() override {
        if (m_next >= 3)
            throw CNoSuchElementException("test", __LINE__);
        m_value = m_next++;
        return &m_value;
    }
    void Reset() override { m_next = 0; }

private:
    int m_next = 0;
    int m_value = 0;
};

} // namespace

TEST(Enumeration, HandlesShareOneEnumerationAndDeleteItOnce) {
    g_deleted = 0;
    {
        CEnumeration<int> a(new CCounting);
        EXPECT_EQ(*a.NextElement(), 0);
        {
            CEnumeration<int> b(a);
            EXPECT_EQ(*b.NextElement(), 1);
            CEnumeration<int> c;
            c = b;
            c = c;
            EXPECT_EQ(*c.NextElement(), 2);
            EXPECT_TRUE(c.GetEnumeration()->IsExhausted());
        }
        EXPECT_EQ(g_deleted, 0);
        EXPECT_FALSE(a.HasMoreElements());
        EXPECT_THROW(a.NextElement(), CNoSuchElementException);
        a.Reset();
        EXPECT_EQ(*a.NextElement(), 0);
        a = CEnumeration<int>(new CCounting); // the first one goes
        EXPECT_EQ(g_deleted, 1);
    }
    EXPECT_EQ(g_deleted, 2);

    CEnumeration<int> empty;
    CEnumeration<int> fromNull(nullptr);
    EXPECT_EQ(fromNull.GetEnumeration(), nullptr);
    lumotest::ExpectThrowIn<CNullReferenceException>("lumo/util/Enumeration",
                                                     [&] { empty.HasMoreElements(); });
    EXPECT_THROW(fromNull.NextElement(), CNullReferenceException);
    EXPECT_THROW(empty.Reset(), CNullReferenceException);
}
