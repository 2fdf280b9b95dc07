// Byte blocks in memory that can be read as files.

#pragma once

#include "core/export.h"
#include "core/tools/byte_array.h"
#include "core/tools/ze_string.h"

#include <vector>

/// A node in the tree of registered resources: a file with its bytes, or a directory. Paths begin with ":/",
/// which is the root; '/' separates names, and several count as one.
///
/// Registration is process-wide, and any thread may register, unregister and look up at any time. A node is
/// handed out as a copy, which shares the bytes of a file; later registrations do not change it.
class ZE_EXPORT CZeResourceInfo {
public:
    /// How the registered bytes are stored.
    enum Storage : int {
        Plain,
        Compressed, ///< As ZeCompress makes them.
    };

    /// A name that belongs to resources: it begins with ":/".
    static bool isResourcePath(const CZeString& path);

    /// Makes `contents` a file called `path`, and directories of the names before it. Compressed contents are
    /// uncompressed whenever the file is opened. Refused with a warning when the path does not begin with
    /// ":/", names no file, has a name "." or "..", is taken, or leads through a file, and without memory.
    static bool registerResource(const CZeString& path, const CZeByteArray& contents,
                                 Storage storage = Plain);
    /// Takes the file `path` away, with the directories that then are empty. False when there is none. Files
    /// that are open on it can still be read.
    static bool unregisterResource(const CZeString& path);
    /// The node called `path`; one that does not exist when there is none.
    static CZeResourceInfo find(const CZeString& path);

    /// A node that does not exist.
    CZeResourceInfo() = default;

    /// Whether there is such a node, whether it is a directory, and whether its bytes are compressed.
    bool exists() const { return m_kind != Kind::None; }
    bool isDirectory() const { return m_kind == Kind::Directory; }
    bool isCompressed() const { return m_storage == Compressed; }
    /// The last name of its path; empty for the root.
    CZeString name() const;
    /// The nodes that are in the directory now, in the order of their names. Without memory for all of them
    /// there are none, and a warning.
    std::vector<CZeResourceInfo> children() const;

    /// Gives the file's bytes; those of a compressed one are uncompressed by each call. False when that
    /// fails, of which ZeUncompress warns, and when this is no file.
    bool read(CZeByteArray& bytes) const;

private:
    enum class Kind : char { None, Directory, File };
    struct Registry;

    bool addChildren(std::vector<CZeResourceInfo>& nodes) const;

    Kind m_kind = Kind::None;
    Storage m_storage = Plain;
    CZeString m_path;
    CZeByteArray m_contents;
};
