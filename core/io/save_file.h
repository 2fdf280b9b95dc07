// Replacing a file as a whole.

#pragma once

#include "core/io/file_device.h"

#include <memory>

/// Writes a file's new contents to a temporary file in its directory; `commit` then puts that in its place.
/// Readers see the old or the new contents, never a part, and after a loss of power either is there. Whatever
/// else happens, the old file stays as it was and the temporary one goes. (Only a process that is killed
/// leaves it.)
///
/// A symbolic link is followed: it stays, and the file that it names is replaced. A replaced file passes on
/// its permissions, and its owner and group where this process may give files away; elsewhere a file that is
/// saved loses the set-user-ID or set-group-ID bit of the other owner or group. A new file has 0666 less the
/// umask. Other hard links keep the old contents.
class ZE_EXPORT CZeSaveFile : public CZeFileDevice {
public:
    /// A closed file without a name.
    CZeSaveFile();
    /// A closed file with a name.
    explicit CZeSaveFile(const CZeString& fileName);
    /// Discards what was not committed.
    ~CZeSaveFile() override;

    /// The name, as it was given.
    CZeString fileName() const { return m_fileName; }
    /// Refused with a warning while the file is open.
    void setFileName(const CZeString& fileName);

    /// Starts with an empty temporary file. `mode` is WriteOnly, with or without Truncate and Text; others
    /// are refused with a warning, as are an open file and an empty name. Fails when the file is not a
    /// regular one or must not be written, and when the directory takes no new file.
    bool open(int mode) override;

    /// Writes everything to the disk, puts the new file in the old one's place and closes. False when
    /// anything failed, also an earlier write: then the old file is untouched, and `errorString` tells why.
    bool commit();
    /// Discards what was written, and closes.
    void cancelWriting();
    /// The same as `cancelWriting`. True.
    bool close() override;

private:
    struct Target;

    bool openTemporary(int mode);
    bool replaceTarget();
    bool failOpen(int systemError);

    CZeString m_fileName;
    std::unique_ptr<Target> m_target; ///< While the file is open.
};
