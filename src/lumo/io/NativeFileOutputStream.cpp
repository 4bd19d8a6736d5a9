// CNativeFileOutputStream: forwards writes, flush and close to its CNativeFile, the
// platform file handle kept behind an opaque pointer.
#include <lumo/io/NativeFileOutputStream.h>

#include "os/NativeFile.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/NativeFileOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CNativeFileOutputStream, "lumo::io::CNativeFileOutputStream",
                  "lumo::io::COutputStream");

CNativeFileOutputStream::CNativeFileOutputStream(unsigned short const* path, bool append)
    : m_impl(nullptr) {
    if (path == nullptr || *path == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid file path.");
    m_impl = new (kUnit, __LINE__) CNativeFile(path, append);
}

CNativeFileOutputStream::~CNativeFileOutputStream() {
    delete m_impl;
}

void CNativeFileOutputStream::Write(char c) {
    Write(&c, 0, 1);
}

void CNativeFileOutputStream::Write(char const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CNativeFileOutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    if (!m_impl->IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    // No null test is made on the block: a null one with bytes to write fails like
    // any write the platform refuses (the offset is not applied to it).
    m_impl->Write(buf == nullptr ? nullptr : buf + off, len);
}

void CNativeFileOutputStream::Flush() {
    if (!m_impl->IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    m_impl->Flush();
}

void CNativeFileOutputStream::Close() {
    m_impl->Close();
}

} // namespace io
} // namespace lumo
