// Tests of the UTF-8 converter: its sequences, surrogate pairs across calls, the room in
// the destination, agreement with ICU, and the encoder registry.
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/io/WCharToCharConverter.h>

#include "support/CharStreams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using lumo::base::CRef;
using lumo::io::CWCharToCharConverter;
using lumo::io::CWCharToCharConverterFactory;
using lumo::io::CWCharToCharUTF8;
using lumotest::IcuUtf8;

namespace {

typedef std::vector<unsigned short> Units;

// Converts with a generous destination; "<-1>" when the call reports no room.
std::string Convert(CWCharToCharConverter& c, Units const& units, unsigned long room = 1024) {
    std::vector<char> out(room + 8, 'X');
    long const n =
        c.Convert(units.data(), 0, static_cast<unsigned long>(units.size()), out.data(), 4, room);
    if (n < 0)
        return "<-1>";
    return std::string(out.data() + 4, static_cast<std::size_t>(n));
}

std::string Invalid(char const* name) {
    try {
        CWCharToCharConverter::GetConverter(name);
    } catch (lumo::base::CIllegalArgumentException const& e) {
        return e.GetErrorDescription();
    }
    return "(none)";
}

class CountingFactory : public CWCharToCharConverterFactory {
public:
    explicit CountingFactory(char const* name) : CWCharToCharConverterFactory(name) {}
    CRef<CWCharToCharConverter> CreateConverter() override {
        ++made;
        return CRef<CWCharToCharConverter>(new CWCharToCharUTF8());
    }
    int made = 0;
};

} // namespace

TEST(WCharToCharConverterTest, Utf8Sequences) {
    CWCharToCharUTF8 c;
    EXPECT_STREQ("UTF-8", c.GetEncoding());
    EXPECT_EQ(0x0030, c.GetPendingSurrogate());
    // A lone surrogate, which ICU refuses, and U+0000; every other BMP unit is compared
    // with ICU below.
    EXPECT_EQ("\xED\xB0\x80", Convert(c, {0xDC00}));
    EXPECT_EQ(std::string("\0", 1), Convert(c, {0}));
    EXPECT_EQ("", Convert(c, {}));
}

TEST(WCharToCharConverterTest, SurrogatePairs) {
    CWCharToCharUTF8 c;
    // A pair inside one call becomes one "?"; so does a high surrogate before anything.
    EXPECT_EQ("a?b", Convert(c, {'a', 0xD83D, 0xDE00, 'b'}));
    EXPECT_EQ("??", Convert(c, {0xD83D, 'x', 0xDBFF, 0xD800}));

    // Split across calls: the proper 4-byte sequence.
    EXPECT_EQ("a", Convert(c, {'a', 0xD83D}));
    EXPECT_EQ(0xD83D, c.GetPendingSurrogate());
    EXPECT_EQ("\xF0\x9F\x98\x80z", Convert(c, {0xDE00, 'z'}));
    EXPECT_EQ(0x0030, c.GetPendingSurrogate());
    EXPECT_EQ("", Convert(c, {0xDBFF}));
    EXPECT_EQ("\xF4\x8F\xBF\xBF", Convert(c, {0xDFFF}));

    // A waiting surrogate not followed by its low half: "?" in front, and it keeps
    // waiting until a call opens with a low surrogate.
    Convert(c, {0xD800});
    EXPECT_EQ("?x", Convert(c, {'x'}));
    EXPECT_EQ("?y", Convert(c, {'y'}));
    EXPECT_EQ("\xF0\x90\x80\x80", Convert(c, {0xDC00}));

    // Reset forgets a waiting surrogate.
    Convert(c, {0xD800});
    c.Reset();
    EXPECT_EQ(0x0030, c.GetPendingSurrogate());
    EXPECT_EQ("\xED\xB0\x80", Convert(c, {0xDC00}));
}

TEST(WCharToCharConverterTest, DestinationRoom) {
    CWCharToCharUTF8 c;
    EXPECT_EQ("<-1>", Convert(c, {0x20AC}, 2));
    EXPECT_EQ("\xE2\x82\xAC", Convert(c, {0x20AC}, 3));
    EXPECT_EQ("<-1>", Convert(c, {'a', 'b', 0xE9}, 3));
    EXPECT_EQ("ab\xC3\xA9", Convert(c, {'a', 'b', 0xE9}, 4));
    EXPECT_EQ("", Convert(c, {0xD800}, 0));
    // No room for the completed pair: reported, and the pair is still waiting.
    EXPECT_EQ("<-1>", Convert(c, {0xDC00, 'a'}, 3));
    EXPECT_EQ(0xD800, c.GetPendingSurrogate());
    // Room for the pair but not for what follows: the pair waits again.
    EXPECT_EQ("<-1>", Convert(c, {0xDC00, 0x20AC}, 6));
    EXPECT_EQ(0xD800, c.GetPendingSurrogate());
    EXPECT_EQ("\xF0\x90\x80\x80"
              "a",
              Convert(c, {0xDC00, 'a'}, 5));

    // Bytes stored before the room ran out stay where they are.
    char out[4] = {'-', '-', '-', '-'};
    unsigned short const units[] = {'x', 0x20AC};
    EXPECT_EQ(-1, c.Convert(units, 0, 2, out, 1, 3));
    EXPECT_EQ('x', out[1]);
    EXPECT_EQ(-1, c.Convert(units, 1, 1, out, 0, 0));
}

TEST(WCharToCharConverterTest, MatchesIcu) {
    std::mt19937 random(7);
    Units text;
    // Every BMP unit but the surrogates, in random order and mixed scripts.
    for (unsigned c = 1; c < 0x10000; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            text.push_back(static_cast<unsigned short>(c));
    std::shuffle(text.begin(), text.end(), random);
    CWCharToCharUTF8 c;
    EXPECT_EQ(IcuUtf8(lumotest::ToU16(text)),
              Convert(c, text, static_cast<unsigned long>(text.size() * 3)));

    // Supplementary characters split across calls come out as ICU writes them.
    Units mixed;
    std::vector<std::size_t> cuts;
    std::uniform_int_distribution<unsigned> pick(0x10000, 0x10FFFF);
    for (int i = 0; i < 2000; ++i) {
        mixed.push_back(static_cast<unsigned short>('a' + i % 26));
        mixed.push_back(static_cast<unsigned short>(0x400 + i % 200));
        unsigned const cp = pick(random) - 0x10000;
        mixed.push_back(static_cast<unsigned short>(0xD800 + (cp >> 10)));
        cuts.push_back(mixed.size());
        mixed.push_back(static_cast<unsigned short>(0xDC00 + (cp & 0x3FF)));
    }
    std::string ours;
    std::size_t from = 0;
    for (std::size_t cut : cuts) {
        ours += Convert(c, Units(mixed.begin() + static_cast<long>(from),
                                 mixed.begin() + static_cast<long>(cut)));
        from = cut;
    }
    ours += Convert(c, Units(mixed.begin() + static_cast<long>(from), mixed.end()));
    EXPECT_EQ(IcuUtf8(lumotest::ToU16(mixed)), ours);
}

TEST(WCharToCharConverterTest, Registry) {
    CRef<CWCharToCharConverter> utf8 = CWCharToCharConverter::GetConverter("UTF-8");
    ASSERT_FALSE(utf8.IsNull());
    EXPECT_TRUE(utf8->IsInstanceOf(&CWCharToCharUTF8::m_classCWCharToCharUTF8));
    EXPECT_STREQ("lumo::io::CWCharToCharUTF8", utf8->GetClass()->GetQualifiedName());
    EXPECT_STREQ("UTF-8", utf8->GetEncoding());
    // Each call makes a converter of its own.
    EXPECT_NE(utf8.Get(), CWCharToCharConverter::GetConverter(lumo::base::CString("UTF-8")).Get());

    CWCharToCharConverterFactory* factory =
        CWCharToCharConverterFactory::GetConverterFactory("UTF-8");
    ASSERT_NE(nullptr, factory);
    EXPECT_STREQ("UTF-8", factory->GetEncoding());
    EXPECT_EQ(nullptr, CWCharToCharConverterFactory::GetConverterFactory("utf-8"));

    for (char const* name : {"utf-8", "UTF8", "ISO-8859-1"}) {
        try {
            CWCharToCharConverter::GetConverter(name);
            ADD_FAILURE() << name;
        } catch (lumo::io::CUnsupportedEncodingException const& e) {
            EXPECT_STREQ(name, e.GetEncoding());
        }
    }
    EXPECT_EQ("Invalid encoding.", Invalid(""));
    EXPECT_EQ("Invalid encoding.", Invalid(nullptr));
    EXPECT_THROW(CWCharToCharConverterFactory::GetConverterFactory(lumo::base::CString()),
                 lumo::base::CIllegalArgumentException);

    CountingFactory mine("X-TEST");
    CountingFactory other("X-TEST");
    CountingFactory unnamed("");
    EXPECT_TRUE(CWCharToCharConverterFactory::RegisterConverterFactory(&mine));
    EXPECT_TRUE(CWCharToCharConverterFactory::RegisterConverterFactory(&mine));
    EXPECT_FALSE(CWCharToCharConverterFactory::RegisterConverterFactory(&other));
    EXPECT_FALSE(CWCharToCharConverterFactory::RegisterConverterFactory(&unnamed));
    EXPECT_FALSE(CWCharToCharConverterFactory::RegisterConverterFactory(nullptr));
    CWCharToCharConverter::GetConverter("X-TEST");
    EXPECT_EQ(1, mine.made);
    EXPECT_EQ(0, other.made);
    EXPECT_FALSE(CWCharToCharConverterFactory::UnregisterConverterFactory(&other));
    EXPECT_TRUE(CWCharToCharConverterFactory::UnregisterConverterFactory(&mine));
    EXPECT_FALSE(CWCharToCharConverterFactory::UnregisterConverterFactory(&mine));
    EXPECT_THROW(CWCharToCharConverter::GetConverter("X-TEST"),
                 lumo::io::CUnsupportedEncodingException);
    EXPECT_EQ(factory, CWCharToCharConverterFactory::GetConverterFactory("UTF-8"));
}
