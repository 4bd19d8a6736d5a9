// Tests of CRef and RefCountedPtr: empty holders, single destruction by the last copy,
// self-assignment, throwing destructors, non-owning holders, conversions, moves, compare.
// ctest-labels: concurrency
#include <lumo/base/Exception.h>
#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <utility>

using namespace lumo::base;

namespace {

int g_destroyed = 0;

struct CCounted {
    virtual ~CCounted() { ++g_destroyed; }
    int value = 7;
};

struct CDerived : CCounted {
    int extra = 9;
};

// No virtual destructor: a CRef<CPlainBase> made from a CRef<CPlainDerived> must
// still destroy the object as the CPlainDerived it was handed over as.
struct CPlainBase {
    int base = 1;
};
struct CPlainDerived : CPlainBase {
    ~CPlainDerived() { ++g_destroyed; }
    int derived[4] = {};
};

struct CThrowing {
    ~CThrowing() noexcept(false) {
        ++g_destroyed;
        throw std::runtime_error("from destructor");
    }
};

struct CNode {
    ~CNode() { ++g_destroyed; }
    CRef<CNode> next;
};

class RefTest : public ::testing::Test {
protected:
    void SetUp() override { g_destroyed = 0; }
};

void ExpectNullReference(void (*f)()) {
    try {
        f();
        ADD_FAILURE() << "no exception";
    } catch (CNullReferenceException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/Ref");
        EXPECT_EQ(e.GetSourceLine(), 437u);
    }
}

} // namespace

TEST_F(RefTest, EmptyRefs) {
    CRef<CCounted> empty;
    CRef<CCounted> fromNull(static_cast<CCounted*>(nullptr)); // no record for a null pointer
    CRef<CCounted> copy(empty);
    CRef<CCounted> assigned(new CCounted);
    assigned = empty; // releases the object, takes no record
    EXPECT_EQ(g_destroyed, 1);
    for (CRef<CCounted> const* r : {&empty, &fromNull, &copy, &assigned}) {
        EXPECT_TRUE(r->IsNull());
        EXPECT_FALSE(*r);
        EXPECT_EQ(r->Get(), nullptr);
        EXPECT_EQ(r->GetRefCount(), 0u);
        EXPECT_FALSE(r->IsOwner());
    }
    ExpectNullReference([] { CRef<CCounted>()->value = 1; });
    ExpectNullReference([] { (void)*CRef<CCounted>(); });
}

TEST_F(RefTest, LastCopyDestroysTheObjectOnce) {
    auto* object = new CCounted;
    {
        CRef<CCounted> a(object);
        EXPECT_TRUE(a.IsOwner());
        EXPECT_EQ(a->value, 7);
        EXPECT_EQ((*a).value, 7);
        {
            CRef<CCounted> b(a);
            CRef<CCounted> c;
            c = b;
            EXPECT_EQ(a.GetRefCount(), 3u);
            EXPECT_EQ(c.Get(), object);
        }
        EXPECT_EQ(g_destroyed, 0);
        EXPECT_EQ(a.GetRefCount(), 1u);
    }
    EXPECT_EQ(g_destroyed, 1);
}

TEST_F(RefTest, AssignmentToItselfToACopyAndToItsOwnObject) {
    CRef<CCounted> a(new CCounted);
    CRef<CCounted>& alias = a;
    a = alias;
    EXPECT_EQ(a.GetRefCount(), 1u);
    CRef<CCounted> b(a);
    a = b; // same record
    b = a;
    a = a.Get(); // the object already held keeps the one record
    EXPECT_EQ(a.GetRefCount(), 2u);
    EXPECT_EQ(g_destroyed, 0);
    EXPECT_EQ(a->value, 7);
    CRef<CCounted>& self = a;
    a = std::move(self);
    EXPECT_EQ(a.GetRefCount(), 2u);
    EXPECT_EQ(g_destroyed, 0);
}

TEST_F(RefTest, AssignmentReleasesTheOldHolding) {
    CRef<CCounted> a(new CCounted);
    CRef<CCounted> keep(a);
    a = new CCounted; // the old object lives on in `keep`
    EXPECT_EQ(g_destroyed, 0);
    EXPECT_EQ(a.GetRefCount(), 1u);
    EXPECT_EQ(keep.GetRefCount(), 1u);
    EXPECT_NE(a, keep);
    a = new CCounted; // last holder of the second object
    EXPECT_EQ(g_destroyed, 1);
    a = static_cast<CCounted*>(nullptr);
    EXPECT_EQ(g_destroyed, 2);
    EXPECT_TRUE(a.IsNull());
    EXPECT_EQ(a.GetRefCount(), 0u);
    keep = nullptr;
    EXPECT_EQ(g_destroyed, 3);

    // Moves leave the source empty; a move assignment releases the target's object.
    CRef<CCounted> c(new CCounted);
    CRef<CCounted> d(std::move(c));
    EXPECT_TRUE(c.IsNull());
    CRef<CCounted> e(new CCounted);
    e = std::move(d);
    EXPECT_EQ(g_destroyed, 4);
    EXPECT_TRUE(d.IsNull());
    EXPECT_EQ(e.GetRefCount(), 1u);
}

TEST_F(RefTest, ThrowingDestructorIsReleasedAndDropped) {
    {
        CRef<CThrowing> a(new CThrowing);
        CRef<CThrowing> b(a);
        a = nullptr;
        EXPECT_EQ(g_destroyed, 0);
    } // the exception is caught; the record is freed (LeakSanitizer checks)
    EXPECT_EQ(g_destroyed, 1);
    CRef<CThrowing> c(new CThrowing);
    EXPECT_NO_THROW(c = new CThrowing);
    EXPECT_EQ(g_destroyed, 2);
    EXPECT_NO_THROW(c = nullptr);
    EXPECT_EQ(g_destroyed, 3);
}

TEST_F(RefTest, RecordAndNonOwningHolders) {
    try {
        RefCountedPtr record(nullptr, true);
        ADD_FAILURE() << "no exception";
    } catch (CIllegalArgumentException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/RefCountedPtr");
        EXPECT_EQ(e.GetSourceLine(), 98u);
        EXPECT_STREQ(e.GetErrorDescription(), "Invalid pointer.");
    }
    int value = 3;
    auto* record = new RefCountedPtr(&value, false);
    EXPECT_EQ(record->GetObject(), &value);
    EXPECT_FALSE(record->IsOwner());
    record->AddRef();
    EXPECT_EQ(record->GetCount(), 2u);
    RefCountedPtr::Release(record);
    EXPECT_EQ(record->GetCount(), 1u);
    RefCountedPtr::Release(record); // frees the record, leaves the object
    RefCountedPtr::Release(nullptr);
    EXPECT_EQ(value, 3);

    CCounted local;
    {
        CRef<CCounted> a(&local, false);
        CRef<CCounted> b(a);
        EXPECT_FALSE(b.IsOwner());
        EXPECT_EQ(b->value, 7);
    }
    EXPECT_EQ(g_destroyed, 0);
}

TEST_F(RefTest, ConversionsShareTheRecord) {
    CRef<CPlainDerived> derived(new CPlainDerived);
    {
        CRef<CPlainBase> base(derived);
        EXPECT_EQ(base.Get(), static_cast<CPlainBase*>(derived.Get()));
        EXPECT_TRUE(base == derived);
        CRef<CPlainBase> assigned;
        assigned = derived;
        EXPECT_EQ(derived.GetRefCount(), 3u);
        CRef<CPlainBase> moved(std::move(assigned));
        EXPECT_TRUE(assigned.IsNull());
        EXPECT_EQ(derived.GetRefCount(), 3u);
    }
    EXPECT_EQ(derived.GetRefCount(), 1u);
    // The last holder is a base-class CRef: the object still goes as a CPlainDerived.
    CRef<CPlainBase> last(derived);
    derived = nullptr;
    EXPECT_EQ(g_destroyed, 0);
    last = nullptr;
    EXPECT_EQ(g_destroyed, 1);

    CRef<CCounted> counted(new CDerived);
    CRef<CDerived> down = counted.DynamicCast<CDerived>();
    EXPECT_EQ(down->extra, 9);
    EXPECT_EQ(counted.GetRefCount(), 2u);
    EXPECT_EQ(counted.StaticCast<CDerived>().Get(), down.Get());
    CRef<CCounted> plain(new CCounted);
    EXPECT_TRUE(plain.DynamicCast<CDerived>().IsNull());
    EXPECT_EQ(plain.GetRefCount(), 1u);

    // Any class, and library objects made and destroyed through the library allocator.
    CRef<int const> constNumber(new int const(5));
    EXPECT_EQ(*constNumber, 5);
    CRef<CMemoryException> exception(new CMemoryException("lumo/base/Test", 1));
    CRef<CObject> object = exception;
    EXPECT_EQ(object.GetRefCount(), 2u);
    EXPECT_EQ(object->GetClass(), &CMemoryException::m_classCMemoryException);
}

TEST_F(RefTest, Comparisons) {
    auto* object = new CCounted;
    CRef<CCounted> a(object);
    CRef<CCounted> b(a);
    CRef<CCounted> other(new CCounted);
    CRef<CCounted> empty;
    CCounted const* constObject = object;
    EXPECT_TRUE(a == b && !(a != b) && a != other);
    EXPECT_TRUE(a == object && object == a && other != object && a == constObject);
    EXPECT_TRUE(empty == nullptr && nullptr == empty && a != nullptr);
    EXPECT_TRUE(empty == CRef<CCounted>());
    std::map<CRef<CCounted>, int> byObject;
    byObject[a] = 1;
    byObject[other] = 2;
    EXPECT_EQ(byObject[b], 1);
}

// Regression: the old head was released while its `next` was the source of the
// assignment.
TEST_F(RefTest, AssignmentFromAHolderInsideTheReleasedObject) {
    CRef<CNode> head(new CNode);
    head->next = new CNode;
    head->next->next = new CNode;
    head = head->next;
    EXPECT_EQ(g_destroyed, 1);
    EXPECT_EQ(head.GetRefCount(), 1u);
    head = head->next;
    EXPECT_EQ(g_destroyed, 2);
    head = nullptr;
    EXPECT_EQ(g_destroyed, 3);
}
