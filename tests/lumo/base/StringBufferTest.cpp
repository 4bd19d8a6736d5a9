// Tests of CStringBuffer and CUnicodeStringBuffer: capacity rounding and an exact-array
// model, typed over both, and the text operations and conversions of each.
#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/StringBuffer.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using lumo::base::CMemoryException;
using lumo::base::CString;
using lumo::base::CStringBuffer;
using lumo::base::CUnicodeString;
using lumo::base::CUnicodeStringBuffer;

namespace {

template <class B> using Unit = std::remove_pointer_t<decltype(std::declval<B&>().GetBuffer(0))>;

char const* Text(CStringBuffer const& b) {
    return b;
}

std::u16string Text(CUnicodeStringBuffer const& b) {
    unsigned short const* p = b;
    return std::u16string(p, p + b.GetSize());
}

// The buffer's units up to its size, one byte each (ASCII texts only).
template <class B> std::string Str(B const& b) {
    Unit<B> const* p = b;
    return std::string(p, p + b.GetSize());
}

// Both buffers round and grow alike, by units.
template <class B> class StringBuffers : public ::testing::Test {};
using BothStringBuffers = ::testing::Types<CStringBuffer, CUnicodeStringBuffer>;
TYPED_TEST_SUITE(StringBuffers, BothStringBuffers);

} // namespace

TYPED_TEST(StringBuffers, CapacityRounding) {
    using B = TypeParam;
    B small(3);
    EXPECT_EQ(8u, small.GetCapacityIncrement());
    EXPECT_EQ(0u, small.GetCapacity());
    EXPECT_EQ("", Str(small));
    EXPECT_TRUE(small.IsEmpty());
    EXPECT_NE(nullptr, static_cast<Unit<B>*>(small)); // never null
    EXPECT_EQ(0, static_cast<Unit<B>*>(small)[0]);

    B b(8);
    b.EnsureCapacity(9);
    EXPECT_EQ(16u, b.GetCapacity());
    b.EnsureCapacity(16);
    EXPECT_EQ(16u, b.GetCapacity());
    b.EnsureCapacity(4); // never shrinks
    EXPECT_EQ(16u, b.GetCapacity());
    b.SetCapacityIncrement(10);
    b.EnsureCapacity(21);
    EXPECT_EQ(30u, b.GetCapacity());
    b.SetCapacityIncrement(0);
    EXPECT_EQ(8u, b.GetCapacityIncrement());

    // Storage made at construction is all zero.
    B zeroed(20, 8);
    EXPECT_EQ(24u, zeroed.GetCapacity());
    Unit<B> const* units = zeroed;
    EXPECT_EQ(std::vector<Unit<B>>(24), std::vector<Unit<B>>(units, units + 24));

    // Written through the array, then trimmed to the rounded text size.
    Unit<B>* p = b.GetBuffer(100);
    EXPECT_EQ(104u, b.GetCapacity());
    for (int i = 0; i <= 10; ++i)
        p[i] = "0123456789"[i];
    EXPECT_EQ(10u, b.GetSize());
    b.TrimToSize();
    EXPECT_EQ(16u, b.GetCapacity());
    EXPECT_EQ("0123456789", Str(b));

    // Past 65537 characters a 64 KiB increment's rounding product wraps in 32 bits;
    // the result is still the next multiple.
    TypeParam large(65536);
    for (unsigned long n : {100000ul, 131072ul, 131073ul, 196608ul})
        large.EnsureCapacity(n);
    EXPECT_EQ(196608u, large.GetCapacity());
    large.EnsureCapacity(196609);
    EXPECT_EQ(262144u, large.GetCapacity());

    // A request that the 32-bit rounding cannot hold is refused; the text stays.
    b = "kept";
    try {
        b.EnsureCapacity(0xFFFFFFF9ul);
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ("lumo/base/StringBuffer", e.GetSourceFile());
        EXPECT_EQ(296u, e.GetSourceLine());
    }
    EXPECT_THROW(b.GetBuffer(0x100000000ul), CMemoryException);
    EXPECT_EQ("kept", Str(b));
}

TEST(CStringBuffer, TextOperations) {
    CStringBuffer b(8);
    b = "hello";
    b += " world";
    b += static_cast<char const*>(b) + 6; // a piece of itself, across a reallocation
    b += b;
    EXPECT_STREQ("hello worldworldhello worldworld", Text(b));

    unsigned short const wide[] = {0xE9, 0xD83D, 0xDE00, 0xD800, 0};
    b = wide; // UTF-8, an unpaired surrogate as '?'
    EXPECT_STREQ("\xC3\xA9\xF0\x9F\x98\x80?", Text(b));
    b = CString("c");
    b += CUnicodeString("\xC3\xA9");
    b += CString("!");
    b += static_cast<unsigned short const*>(nullptr);
    b += static_cast<char const*>(nullptr);
    EXPECT_STREQ("c\xC3\xA9!", Text(b));

    CStringBuffer copy(b);
    EXPECT_STREQ("c\xC3\xA9!", Text(copy));
    EXPECT_NE(static_cast<char const*>(copy), Text(b));
    copy = static_cast<char const*>(nullptr);
    EXPECT_TRUE(copy.IsEmpty());

    // An array filled to the end without a terminator is measured to its end and
    // gets a terminator when it grows.
    CStringBuffer full(8);
    std::memset(full.GetBuffer(8), 'z', 8);
    EXPECT_EQ(8u, full.GetSize());
    full += "!";
    EXPECT_STREQ("zzzzzzzz!", Text(full));
}

TEST(CUnicodeStringBuffer, TextOperations) {
    CUnicodeStringBuffer b(3);
    b = "a\xC3\xA9";
    EXPECT_EQ(u"a\u00E9", Text(b));
    b += CString("\xF0\x9F\x98\x80");
    b += CUnicodeString("z");
    EXPECT_EQ(u"a\u00E9\U0001F600z", Text(b));
    EXPECT_EQ(5u, b.GetSize());
    b += static_cast<unsigned short const*>(b) + 1;
    EXPECT_EQ(u"a\u00E9\U0001F600z\u00E9\U0001F600z", Text(b));

    CUnicodeStringBuffer copy(b);
    copy += copy;
    EXPECT_EQ(18u, copy.GetSize());
    b = CUnicodeString("xyz");
    EXPECT_EQ(u"xyz", Text(b));
    b.TrimToSize();
    EXPECT_EQ(8u, b.GetCapacity());
    b = static_cast<char const*>(nullptr);
    EXPECT_TRUE(b.IsEmpty());
}

// Random appends, assignments and writes through the array against a model that
// reallocates exactly at every capacity step, as the capacity rule reads: sizes,
// capacities and the text must agree, whatever the caller wrote through a pointer
// that is still valid.
TYPED_TEST(StringBuffers, AgreesWithAnExactArrayUnderWritesThroughThePointer) {
    std::mt19937 random(5);
    for (unsigned long increment : {8ul, 64ul, 1000ul}) {
        TypeParam buffer(increment);
        std::vector<char> model;         // the array, its size the capacity
        Unit<TypeParam>* held = nullptr; // a pointer from GetBuffer, until the array moves
        auto length = [&] { return model.empty() ? 0 : strnlen(model.data(), model.size()); };
        auto ensure = [&](std::size_t n) {
            std::size_t const rounded = (n + increment - 1) / increment * increment;
            if (rounded <= model.size())
                return;
            std::size_t const old = model.size();
            model.resize(rounded, 'z');
            model[old] = 0;
            held = nullptr;
        };
        for (int step = 0; step < 4000; ++step) {
            unsigned const action = random() % 8;
            if (action < 4) {
                std::string const piece(1 + random() % 30, static_cast<char>('a' + step % 26));
                std::size_t const at = length();
                ensure(at + piece.size() + 1);
                std::memcpy(model.data() + at, piece.c_str(), piece.size() + 1);
                buffer += piece.c_str();
            } else if (action == 4) {
                std::size_t const n = 1 + random() % 300;
                ensure(n);
                held = buffer.GetBuffer(n);
            } else if (action == 5 && held != nullptr) {
                // Rewrite part of the text, sometimes cutting it short.
                std::size_t const at = random() % model.size();
                char const c = random() % 4 == 0 ? '\0' : 'W';
                held[at] = c;
                model[at] = c;
            } else if (action == 6) {
                buffer.Empty();
                if (!model.empty())
                    model[0] = 0;
            } else {
                std::string const text(random() % 200, 'q');
                buffer = text.c_str();
                if (!text.empty()) {
                    std::size_t const rounded = (text.size() + increment) / increment * increment;
                    if (rounded > model.size()) {
                        model.assign(rounded, 'z');
                        held = nullptr;
                    }
                    std::memcpy(model.data(), text.c_str(), text.size() + 1);
                } else if (!model.empty()) {
                    model[0] = 0;
                }
            }
            ASSERT_EQ(buffer.GetCapacity(), model.size()) << step;
            ASSERT_EQ(buffer.GetSize(), length()) << step;
            ASSERT_EQ(Str(buffer), std::string(model.data(), length())) << step;
        }
    }
}
