// Tests of CBase64OutputStream: output equal to OpenSSL's in any write pattern, line
// breaks, Flush and Close, and ownership of the wrapped stream.
#include "support/Streams.h"

#include <lumo/io/Base64OutputStream.h>

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <random>
#include <string>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::io::CBase64OutputStream;
using lumo::io::CIOException;
using lumo::io::COutputStream;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;

namespace {
std::string OpenSslBase64(std::string const& bytes) {
    std::string out(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    int const n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[0]),
                                  reinterpret_cast<unsigned char const*>(bytes.data()),
                                  static_cast<int>(bytes.size()));
    out.resize(static_cast<std::size_t>(n));
    return out;
}
} // namespace

TEST(Base64OutputStream, EncodesLikeOpenSslInAnyWritePattern) {
    std::mt19937 rng(7);
    for (std::size_t length : {0u, 1u, 2u, 3u, 4u, 5u, 100u, 767u, 768u, 769u, 5000u}) {
        std::string bytes(length, '\0');
        for (char& c : bytes)
            c = static_cast<char>(rng());
        RecordingOutputStream blockSink, charSink;
        CBase64OutputStream block(&blockSink, 0), single(&charSink, 0);
        // Block writes of varying sizes, and single bytes.
        std::size_t i = 0;
        for (std::size_t step = 1; i < length; step = step * 2 + 1) {
            std::size_t const n = std::min(step, length - i);
            block.Write(bytes.data(), i, n);
            i += n;
        }
        for (char c : bytes)
            single.Write(c);
        block.Close();
        single.Close();
        EXPECT_EQ(blockSink.bytes, OpenSslBase64(bytes)) << length;
        EXPECT_EQ(charSink.bytes, OpenSslBase64(bytes)) << length;
        EXPECT_EQ(blockSink.closes, 1);
    }
}

TEST(Base64OutputStream, LineBreaksFlushAndClose) {
    RecordingOutputStream sink;
    CBase64OutputStream out(&sink, 4);
    out.Write("Man", 3);
    EXPECT_EQ(sink.bytes, "TWFu"); // no break after the last character
    out.Write("Ma", 2);
    EXPECT_EQ(sink.bytes, "TWFu");
    out.Flush(); // ends the quantum early, padding included
    EXPECT_EQ(sink.bytes, "TWFu\r\nTWE=");
    EXPECT_EQ(sink.flushedAt, std::vector<std::size_t>{10});
    out.Write('M');
    out.Close(); // the waiting byte is encoded before the wrapped stream closes
    EXPECT_EQ(sink.bytes, "TWFu\r\nTWE=\r\nTQ==");
    EXPECT_EQ(sink.closes, 1);
    out.Close();
    EXPECT_EQ(sink.closes, 1);
    lumotest::ExpectOutputClosed(out);

    RecordingOutputStream wide;
    CBase64OutputStream unbroken(&wide, 0);
    unbroken.Write(std::string(300, 'x').data(), 300);
    unbroken.Flush();
    EXPECT_EQ(wide.bytes.size(), 400u);
    EXPECT_EQ(wide.bytes.find('\r'), std::string::npos);
}

TEST(Base64OutputStream, ConstructionAndOwnership) {
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBase64OutputStream(static_cast<COutputStream*>(nullptr), 0); },
        "Invalid output stream.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBase64OutputStream(CRef<COutputStream>(), 76); }, "Invalid output stream.");
    bool destroyed = false;
    {
        CBase64OutputStream out(CRef<COutputStream>(new RecordingOutputStream(&destroyed)), 76);
        out.Write('a');
    }
    EXPECT_TRUE(destroyed);
    destroyed = false;
    auto* borrowed = new RecordingOutputStream(&destroyed);
    { CBase64OutputStream out(borrowed, 76); }
    EXPECT_FALSE(destroyed);
    delete borrowed;
}
