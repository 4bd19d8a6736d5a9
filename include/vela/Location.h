// IO::Location: a file path given in UTF-8 or UTF-16 and kept in UTF-8, with the checks
// IsEmpty and IsLegal (well-formed text within the platform's length limits).
#ifndef VELA_LOCATION_H
#define VELA_LOCATION_H

#include <vela/Config.h>

namespace IO {

/// The name of a file. The path is kept in UTF-8 whichever form it was given in;
/// text that is not well-formed (malformed UTF-8, an unpaired UTF-16 surrogate)
/// makes the location illegal rather than being silently altered.
class VELA_API Location {
public:
    /// An empty location.
    Location() noexcept;
    /// A null path gives an empty location.
    Location(char const* utf8Path);
    /// A UTF-16 path, converted to UTF-8; null gives an empty location, an unpaired surrogate an
    /// illegal one.
    Location(unsigned short const* utf16Path);
    /// Copy or take over the path.
    ///@{
    Location(Location const& other);
    Location(Location&& other) noexcept;
    ///@}
    /// Replace the path with a copy of the other's, or take it over.
    ///@{
    Location& operator=(Location const& other);
    Location& operator=(Location&& other) noexcept;
    ///@}
    ~Location();

    /// True when the path is empty.
    bool IsEmpty() const noexcept { return m_length == 0; }
    /// Non-empty, well-formed text within the platform's limits on path and name
    /// lengths. Whether the file exists is not asked.
    bool IsLegal() const noexcept;

    /// The path in UTF-8; never null (an empty text for an empty location).
    char const* GetPath() const noexcept;
    /// The path's length in UTF-8 bytes.
    unsigned long GetLength() const noexcept { return m_length; }

private:
    void Assign(char const* utf8, unsigned long length, bool wellFormed);

    char* m_path;
    unsigned long m_length;
    bool m_wellFormed;
};

} // namespace IO

#endif
