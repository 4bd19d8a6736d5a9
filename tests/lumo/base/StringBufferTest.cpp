// Tests of CStringBuffer and CUnicodeStringBuffer: capacity rounding and the text
// operations of both.
#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/StringBuffer.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

using lumo::base::CMemoryException;
using lumo::base::CString;
using lumo::base::CStringBuffer;
using lumo::base::CUnicodeString;
using lumo::base::CUnicodeStringBuffer;

namespace {

char const* Text(CStringBuffer const& b) {
    return b;
}

std::u16string Text(CUnicodeStringBuffer const& b) {
    unsigned short const* p = b;
    return std::u16string(p, p + b.GetSize());
}

} // namespace

TEST(CStringBuffer, CapacityRounding) {
    CStringBuffer small(3);
    EXPECT_EQ(8u, small.GetCapacityIncrement());
    EXPECT_EQ(0u, small.GetCapacity());
    EXPECT_STREQ("", Text(small));
    EXPECT_TRUE(small.IsEmpty());

    CStringBuffer b(8);
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
    CStringBuffer zeroed(20, 8);
    EXPECT_EQ(24u, zeroed.GetCapacity());
    char const* chars = zeroed;
    EXPECT_EQ(std::string(24, '\0'), std::string(chars, 24));

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
    EXPECT_STREQ("kept", Text(b));
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

    // Written through the array, then trimmed to the rounded text size.
    char* p = b.GetBuffer(100);
    EXPECT_EQ(104u, b.GetCapacity());
    std::strcpy(p, "0123456789");
    EXPECT_EQ(10u, b.GetSize());
    b.TrimToSize();
    EXPECT_EQ(16u, b.GetCapacity());
    EXPECT_STREQ("0123456789", Text(b));

    // An array filled to the end without a terminator is measured to its end and
    // gets a terminator when it grows.
    CStringBuffer full(8);
    std::memset(full.GetBuffer(8), 'z', 8);
    EXPECT_EQ(8u, full.GetSize());
    full += "!";
    EXPECT_STREQ("zzzzzzzz!", Text(full));

    CStringBuffer fresh;
    char* writable = fresh; // never null
    ASSERT_NE(nullptr, writable);
    EXPECT_EQ('\0', writable[0]);
}

TEST(CUnicodeStringBuffer, TextOperations) {
    CUnicodeStringBuffer b(3);
    EXPECT_EQ(8u, b.GetCapacityIncrement());
    b.EnsureCapacity(9);
    EXPECT_EQ(16u, b.GetCapacity());
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

    CUnicodeStringBuffer zeroed(9, 8);
    EXPECT_EQ(16u, zeroed.GetCapacity());
    EXPECT_EQ(0u, zeroed.GetSize());
    try {
        zeroed.EnsureCapacity(0xFFFFFFFFul);
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_EQ(296u, e.GetSourceLine());
    }
}

// Random appends, assignments and writes through the array against a model that
// reallocates exactly at every capacity step, as the capacity rule reads: sizes,
// capacities and the text must agree, whatever the caller wrote through a pointer
// that is still valid.
TEST(CStringBuffer, AgreesWithAnExactArrayUnderWritesThroughThePointer) {
    std::mt19937 random(5);
    for (unsigned long increment : {8ul, 64ul, 1000ul}) {
        CStringBuffer buffer(increment);
        std::vector<char> model; // the array, its size the capacity
        char* held = nullptr;    // a pointer from GetBuffer, until the array moves
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
            ASSERT_EQ(std::string(Text(buffer), buffer.GetSize()),
                      std::string(model.data(), length()))
                << step;
        }
    }
}
