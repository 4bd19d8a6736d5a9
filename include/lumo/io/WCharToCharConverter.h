// Encoders from UTF-16 to bytes: the converter base, the built-in UTF-8 converter, and
// the factories entered in the process-wide registry by encoding name.
#ifndef LUMO_IO_WCHARTOCHARCONVERTER_H
#define LUMO_IO_WCHARTOCHARCONVERTER_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/base/String.h>
#include <lumo/util/Hashtable.h>

namespace lumo {
namespace io {

/// Turns UTF-16 units into the bytes of one encoding. A converter may keep state
/// between calls (a high surrogate waiting for its low half); Reset forgets it.
class LUMO_API CWCharToCharConverter : public base::CObject {
    LUMO_DECLARE_CLASS(CWCharToCharConverter);

public:
    ~CWCharToCharConverter() override;

    /// The encoding name the converter was made for, e.g. "UTF-8".
    base::CString const& GetEncoding() const { return m_encoding; }

    /// Converts src[srcOff .. srcOff + srcLen) into dst[dstOff .. dstOff + dstLen)
    /// (dstLen is the room from dstOff on). Returns the bytes written; all source
    /// units are then consumed. Returns -1 when the room ran out: the call then counts
    /// as not made (the converter's state is as before it, so the same source can be
    /// converted again into more room), though bytes may have been stored.
    virtual long Convert(unsigned short const* src, unsigned long srcOff, unsigned long srcLen,
                         char* dst, unsigned long dstOff, unsigned long dstLen) = 0;
    /// Forgets the state kept between calls (a waiting high surrogate).
    virtual void Reset() = 0;

    /// A new converter for the encoding registered under `name` (matched exactly).
    /// A null or empty name: CIllegalArgumentException "Invalid encoding."; no such
    /// encoding: CUnsupportedEncodingException carrying the name.
    ///@{
    static base::CRef<CWCharToCharConverter> GetConverter(char const* name);
    static base::CRef<CWCharToCharConverter> GetConverter(base::CString const& name);
    ///@}

protected:
    /// A converter for `encoding` (copied).
    explicit CWCharToCharConverter(char const* encoding);

private:
    base::CString m_encoding;
};

/// The "UTF-8" encoding. A surrogate pair split across two calls (the high half
/// the last unit of one call, the low half the first of the next) becomes its 4-byte
/// sequence. A high surrogate followed by any unit within one call becomes a single
/// "?" and both units are consumed, so a pair that lies whole inside one call is
/// written as "?". A lone low surrogate gets the 3-byte form of its value. A high
/// surrogate left waiting and not followed by a low one puts "?" in front of every
/// later call until a call begins with a low surrogate or Reset is called.
class LUMO_API CWCharToCharUTF8 : public CWCharToCharConverter {
    LUMO_DECLARE_CLASS(CWCharToCharUTF8);

public:
    /// The pending-surrogate value that means nothing is waiting.
    static constexpr unsigned short NO_PENDING_SURROGATE = 0x0030;

    CWCharToCharUTF8();
    ~CWCharToCharUTF8() override;

    long Convert(unsigned short const* src, unsigned long srcOff, unsigned long srcLen, char* dst,
                 unsigned long dstOff, unsigned long dstLen) override;
    void Reset() override;

    /// The high surrogate waiting for its low half, or NO_PENDING_SURROGATE.
    unsigned short GetPendingSurrogate() const { return m_pendingSurrogate; }

private:
    unsigned short m_pendingSurrogate;
};

/// Makes the converters of one encoding. Factories are entered in one process-wide
/// registry by encoding name; the registry does not own them, so a registered
/// factory must stay alive until it is unregistered. The registry has no lock:
/// register during start-up, look up afterwards.
class LUMO_API CWCharToCharConverterFactory : public base::CBase {
public:
    /// `encoding` is kept, not copied.
    explicit CWCharToCharConverterFactory(char const* encoding) : m_encoding(encoding) {}
    virtual ~CWCharToCharConverterFactory();

    CWCharToCharConverterFactory(CWCharToCharConverterFactory const&) = delete;
    CWCharToCharConverterFactory& operator=(CWCharToCharConverterFactory const&) = delete;

    /// The encoding name given at construction.
    char const* GetEncoding() const { return m_encoding; }

    /// A new converter of the factory's encoding; CMemoryException when out of memory.
    virtual base::CRef<CWCharToCharConverter> CreateConverter() = 0;

    /// Enters `factory` under its encoding name. False for a null factory, one
    /// without a name, a name taken by another factory, or lack of memory; true
    /// when it is entered (or already was).
    static bool RegisterConverterFactory(CWCharToCharConverterFactory* factory);
    /// Removes `factory` if it is the one registered under its name.
    static bool UnregisterConverterFactory(CWCharToCharConverterFactory* factory);
    /// The factory registered under `name`, or null. A null or empty name:
    /// CIllegalArgumentException "Invalid encoding.".
    ///@{
    static CWCharToCharConverterFactory* GetConverterFactory(char const* name);
    static CWCharToCharConverterFactory* GetConverterFactory(base::CString const& name);
    ///@}

    /// The registry: encoding name to factory.
    static util::CHashtable<base::CString, CWCharToCharConverterFactory*> m_theConverterFactories;

private:
    char const* m_encoding;
};

/// The factory of converters of class T (default-constructible).
template <class T>
class LUMO_API CConcreteWCharToCharConverterFactory : public CWCharToCharConverterFactory {
public:
    /// A factory registered under nothing yet; `encoding` is kept, not copied.
    explicit CConcreteWCharToCharConverterFactory(char const* encoding)
        : CWCharToCharConverterFactory(encoding) {}

    /// A new default-constructed T.
    base::CRef<CWCharToCharConverter> CreateConverter() override {
        return base::CRef<CWCharToCharConverter>(new ("lumo/io/WCharToCharConvFactory", __LINE__)
                                                     T());
    }
};

extern template class CConcreteWCharToCharConverterFactory<CWCharToCharUTF8>;

} // namespace io
} // namespace lumo

#endif
