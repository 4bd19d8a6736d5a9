// Test support: byte stream doubles (a recording output stream, a scripted input stream)
// and helpers that check thrown descriptions and closed streams.
#ifndef LUMO_TESTS_SUPPORT_STREAMS_H
#define LUMO_TESTS_SUPPORT_STREAMS_H

// Test doubles for the byte stream interfaces: an output stream that records every
// call, and an input stream over a string that counts its calls.

#include <lumo/io/IOException.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/OutputStream.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumotest {

// Sets *destroyed when deleted, so tests can tell who deletes a wrapped stream.
class RecordingOutputStream : public lumo::io::COutputStream {
public:
    explicit RecordingOutputStream(bool* destroyed = nullptr) : m_destroyed(destroyed) {}
    ~RecordingOutputStream() override {
        if (m_destroyed != nullptr)
            *m_destroyed = true;
    }

    void Write(char const* buf, unsigned long off, unsigned long len) override {
        if (throwOnWrite)
            throw lumo::io::CIOException("test", 1, "write failed", nullptr);
        blockWrites.push_back(len);
        bytes.append(buf + off, len);
    }
    void Write(char const* buf, unsigned long len) override { Write(buf, 0, len); }
    void Write(char c) override {
        ++charWrites;
        bytes.push_back(c);
    }
    void Flush() override {
        ++flushes;
        flushedAt.push_back(bytes.size());
    }
    void Close() override {
        ++closes;
        if (throwOnClose)
            throw lumo::io::CIOException("test", 1, "close failed", nullptr);
    }

    std::string bytes;
    std::vector<unsigned long> blockWrites;
    std::vector<std::size_t> flushedAt;
    int charWrites = 0;
    int flushes = 0;
    int closes = 0;
    bool throwOnClose = false;
    bool throwOnWrite = false;

private:
    bool* m_destroyed;
};

// Hands out `data`, at most `chunk` bytes per block read.
class ScriptedInputStream : public lumo::io::CInputStream {
public:
    explicit ScriptedInputStream(std::string data, unsigned long chunk = 0xFFFFFFFF,
                                 bool* destroyed = nullptr)
        : m_data(std::move(data)), m_chunk(chunk), m_destroyed(destroyed) {}
    ~ScriptedInputStream() override {
        if (m_destroyed != nullptr)
            *m_destroyed = true;
    }

    unsigned long GetAvailable() const override { return m_data.size() - position; }
    long Read(char* buf, unsigned long off, unsigned long len) override {
        ++blockReads;
        requested.push_back(len);
        if (position >= m_data.size())
            return -1;
        unsigned long n = m_data.size() - position;
        if (n > len)
            n = len;
        if (n > m_chunk)
            n = m_chunk;
        m_data.copy(buf + off, n, position);
        position += n;
        return static_cast<long>(n);
    }
    void Reset() override {
        ++resets;
        position = 0;
    }
    void Close() override { ++closes; }

    std::size_t position = 0;
    std::vector<unsigned long> requested;
    int blockReads = 0;
    int resets = 0;
    int closes = 0;

private:
    std::string m_data;
    unsigned long m_chunk;
    bool* m_destroyed;
};

// Runs `f` and checks that it throws an exception of type E with `description`.
template <class E, class F> void ExpectThrowWith(F&& f, char const* description) {
    try {
        f();
        ADD_FAILURE() << "expected an exception with \"" << description << "\"";
    } catch (E const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), description);
    }
}

// Checks that writing to or flushing a closed stream fails with "Stream closed.".
template <class S> void ExpectOutputClosed(S& out) {
    ExpectThrowWith<lumo::io::CIOException>([&] { out.Write('x'); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { out.Write("xy", 2); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { out.Flush(); }, "Stream closed.");
}

// Checks that reading, skipping, asking for the available bytes and closing a
// closed stream fail with "Stream closed.".
template <class S> void ExpectInputClosed(S& in) {
    char buf[2];
    ExpectThrowWith<lumo::io::CIOException>([&] { in.Read(); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { in.Read(buf, 0, 2); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { in.Skip(1); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { in.GetAvailable(); }, "Stream closed.");
    ExpectThrowWith<lumo::io::CIOException>([&] { in.Close(); }, "Stream closed.");
}

} // namespace lumotest

#endif
