#ifndef LUMO_NET_INETADDRESS_H
#define LUMO_NET_INETADDRESS_H

#include <lumo/base/String.h>

namespace lumo {
namespace net {

/// An IPv4 address value: four bytes in network order (the first byte is the first
/// number of the dotted form) and a host name looked up on first demand and then
/// kept. Copies carry the cached name along. Not a CObject. One object is used by one
/// thread at a time (the name cache is not locked).
class LUMO_API CInetAddress {
public:
    /// The any-interface address 0.0.0.0.
    static CInetAddress const AnyInetAddress;

    /// Copies the 4 bytes at `address`; the name is not looked up yet. A null or
    /// unreadable pointer throws CIllegalArgumentException "Invalid IPv4 address.".
    explicit CInetAddress(unsigned char const* address);
    /// Copies the bytes and the cached name.
    CInetAddress(CInetAddress const& other);
    /// Copies the bytes and the cached name.
    CInetAddress& operator=(CInetAddress const& other);
    ~CInetAddress();

    /// The 4 address bytes, valid as long as this object.
    unsigned char const* GetAddress() const { return m_address; }
    /// The dotted form "%u.%u.%u.%u", without leading zeros.
    base::CString GetHostAddress() const;
    /// The first call asks the resolver for the address's name and keeps the answer;
    /// every call returns the kept name. An address without name gives the empty text,
    /// and is not asked again (a failed lookup is not an error).
    base::CString GetHostName() const;
    /// True when the first byte is from 224 to 240 inclusive (240 included on purpose).
    bool IsMulticastAddress() const;

    /// Compare the 4 bytes only; names and lookup flags are ignored.
    bool operator==(CInetAddress const& other) const;
    /// The negation of ==.
    bool operator!=(CInetAddress const& other) const { return !(*this == other); }

    /// The first IPv4 address of `host`, a name or dotted text; its name is not filled
    /// in. A null or empty `host` throws CIllegalArgumentException "Invalid host name.";
    /// a name that does not resolve CUnknownHostException with that name.
    static CInetAddress GetByName(char const* host);
    /// The address of this machine's name. CUnknownHostException with "localhost" when
    /// the name cannot be read, with the name when it does not resolve;
    /// CMemoryException when the buffer for a long name cannot be allocated.
    static CInetAddress GetLocalHost();

private:
    unsigned char m_address[4];
    mutable base::CString m_hostName;
    mutable bool m_hostNameLookedUp;
};

} // namespace net
} // namespace lumo

#endif
