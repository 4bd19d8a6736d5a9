// CStringSet over StringHashtable: membership, enumeration and the set algebra, the
// intersection built in a fresh table.
#include <lumo/util/StringSet.h>

#include "StringHashtable.h"

#include <climits>

namespace lumo {
namespace util {

using base::CString;

namespace {

char const kUnit[] = "lumo/util/StringSet";
typedef StringHashtable<char> Table;

long CapacityOf(unsigned long initialCapacity) {
    // Beyond the range of long the request cannot be met anyway; the table reports it.
    return initialCapacity > static_cast<unsigned long>(LONG_MAX)
               ? LONG_MAX
               : static_cast<long>(initialCapacity);
}

// Calls `f` with every element of `table`.
template <class F> void ForEach(Table const& table, F f) {
    CEnumeration<CString> keys = table.GetKeys();
    while (keys.HasMoreElements())
        f(*keys.NextElement());
}

} // namespace

CStringSet::CStringSet(unsigned long initialCapacity, float loadFactor)
    : m_table(new (kUnit, __LINE__) Table(CapacityOf(initialCapacity), loadFactor)) {}

CStringSet::CStringSet(CStringSet const& other)
    : m_table(new (kUnit, __LINE__) Table(*other.m_table)) {}

CStringSet& CStringSet::operator=(CStringSet const& other) {
    if (this != &other) {
        Table copy(*other.m_table);
        m_table->Swap(copy);
    }
    return *this;
}

CStringSet::~CStringSet() {
    delete m_table;
}

unsigned long CStringSet::GetSize() const {
    return m_table->GetSize();
}

unsigned long CStringSet::GetCapacity() const {
    return m_table->GetCapacity();
}

void CStringSet::Put(char const* text) {
    m_table->Put(text, 1);
}

bool CStringSet::Contains(char const* text) const {
    return m_table->Contains(text);
}

void CStringSet::Remove(char const* text) {
    m_table->Remove(text);
}

void CStringSet::Empty() {
    m_table->Clear();
}

CEnumeration<CString> CStringSet::GetElements() const {
    return m_table->GetKeys();
}

bool CStringSet::operator==(CStringSet const& other) const {
    return GetSize() == other.GetSize() && IsSubSetOf(other);
}

CStringSet& CStringSet::operator+=(CStringSet const& other) {
    if (this != &other)
        ForEach(*other.m_table, [this](CString const& text) { m_table->Put(text, 1); });
    return *this;
}

CStringSet& CStringSet::operator-=(CStringSet const& other) {
    if (this == &other) {
        Empty();
        return *this;
    }
    ForEach(*other.m_table, [this](CString const& text) {
        if (m_table->Contains(text))
            m_table->Remove(text);
    });
    return *this;
}

CStringSet& CStringSet::operator*=(CStringSet const& other) {
    if (this == &other)
        return *this;
    Table common(101, 0.75f);
    ForEach(*other.m_table, [&](CString const& text) {
        if (m_table->Contains(text))
            common.Put(text, 1);
    });
    m_table->Swap(common);
    return *this;
}

bool CStringSet::IsSubSetOf(CStringSet const& other) const {
    if (this == &other)
        return true;
    CEnumeration<CString> keys = m_table->GetKeys();
    while (keys.HasMoreElements())
        if (!other.m_table->Contains(*keys.NextElement()))
            return false;
    return true;
}

} // namespace util
} // namespace lumo
