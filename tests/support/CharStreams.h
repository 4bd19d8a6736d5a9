// Readers and writers over memory that record how they are called, for the tests
// of the character stream filters.
#ifndef LUMO_TESTS_SUPPORT_CHARSTREAMS_H
#define LUMO_TESTS_SUPPORT_CHARSTREAMS_H

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <lumo/io/Reader.h>
#include <lumo/io/Writer.h>

#include <unicode/ustring.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumotest {

typedef std::u16string U16;

inline U16 ToU16(std::vector<unsigned short> const& v) {
    return U16(v.begin(), v.end());
}
inline U16 ToU16(unsigned short const* p, unsigned long n) {
    return U16(p, p + n);
}

// The UTF-8 form of a text, as ICU writes it.
inline std::string IcuUtf8(U16 const& text) {
    std::string out(text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], static_cast<int32_t>(out.size()), &length,
                reinterpret_cast<UChar const*>(text.data()), static_cast<int32_t>(text.size()),
                &status);
    out.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return out;
}

// Hands out a fixed text; block reads give at most `maxBlock` units.
class ArrayReader : public lumo::io::CReader {
public:
    explicit ArrayReader(U16 text, unsigned long maxBlock = 0xFFFFFFFF)
        : m_text(std::move(text)), m_maxBlock(maxBlock) {}
    ~ArrayReader() override { ++*destroyed; }

    using CReader::Read;
    long Read(unsigned short* buf, unsigned long off, unsigned long len) override {
        if (closed)
            throw lumo::io::CIOException("test", __LINE__, "Reader closed.", nullptr);
        blockReads.push_back(len);
        if (len == 0)
            return 0;
        if (m_pos >= m_text.size())
            return -1;
        unsigned long n = static_cast<unsigned long>(m_text.size() - m_pos);
        if (n > len)
            n = len;
        if (n > m_maxBlock)
            n = m_maxBlock;
        for (unsigned long i = 0; i < n; ++i)
            buf[off + i] = m_text[m_pos + i];
        m_pos += n;
        return static_cast<long>(n);
    }
    void Reset() override {
        ++resets;
        m_pos = 0;
    }
    void Close() override {
        if (closed)
            throw lumo::io::CIOException("test", __LINE__, "Reader closed.", nullptr);
        closed = true;
    }

    std::vector<unsigned long> blockReads;
    int resets = 0;
    bool closed = false;
    int ownCount = 0;
    int* destroyed = &ownCount;

private:
    U16 m_text;
    std::size_t m_pos = 0;
    unsigned long m_maxBlock;
};

// Collects what is written and the size of each block write.
class ArrayWriter : public lumo::io::CWriter {
public:
    ~ArrayWriter() override { ++*destroyed; }

    using CWriter::Write;
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override {
        if (closed)
            throw lumo::io::CIOException("test", __LINE__, "Writer closed.", nullptr);
        if (failWrites)
            throw lumo::io::CIOException("test", __LINE__, "Write failed.", nullptr);
        blockWrites.push_back(len);
        text.append(buf + off, buf + off + len);
    }
    void Flush() override { ++flushes; }
    void Close() override {
        if (closed)
            throw lumo::io::CIOException("test", __LINE__, "Writer closed.", nullptr);
        closed = true;
    }

    U16 text;
    std::vector<unsigned long> blockWrites;
    int flushes = 0;
    bool closed = false;
    bool failWrites = false;
    int ownCount = 0;
    int* destroyed = &ownCount;
};

// The error description of the CIOException (or subclass) that `f` throws, or
// "(none)" when it throws nothing.
template <class F> std::string IOErrorOf(F f) {
    try {
        f();
    } catch (lumo::io::CIOException const& e) {
        return e.GetErrorDescription() != nullptr ? e.GetErrorDescription() : "";
    }
    return "(none)";
}

// The error description of the CIllegalArgumentException that `f` throws, or
// "(none)" when it throws nothing.
template <class F> std::string ArgumentErrorOf(F f) {
    try {
        f();
    } catch (lumo::base::CIllegalArgumentException const& e) {
        return e.GetErrorDescription() != nullptr ? e.GetErrorDescription() : "";
    }
    return "(none)";
}

// Checks that the calls on a closed reader fail with "Reader closed.".
template <class R> void ExpectReaderClosed(R& r) {
    unsigned short buf[2];
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { r.Read(); }));
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { r.Read(buf, 0, 2); }));
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { r.Skip(1); }));
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { r.Reset(); }));
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { r.Close(); }));
}

// Checks that writing to or flushing a closed writer fails with "Writer closed.".
template <class W> void ExpectWriterClosed(W& w) {
    unsigned short const units[] = {'x', 'y'};
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Write(static_cast<unsigned short>('x')); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Write(units, 0, 2); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Flush(); }));
}

} // namespace lumotest

#endif
