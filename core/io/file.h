// A file by name.

#pragma once

#include "core/io/file_device.h"

/// A file of the local file system, or a registered resource when its name begins with ":/". The name may
/// hold any characters but the zero; it goes to the system in UTF-8.
class ZE_EXPORT CZeFile : public CZeFileDevice {
public:
    /// A closed file without a name.
    CZeFile();
    /// A closed file with a name.
    explicit CZeFile(const CZeString& fileName);
    /// Closes the file. Bytes that cannot be written then are logged as a warning.
    ~CZeFile() override;

    /// The name, as it was given.
    CZeString fileName() const { return m_fileName; }
    /// Refused with a warning while the file is open.
    void setFileName(const CZeString& fileName);

    /// Opens the file with bits of Ze::OpenModeFlag: ReadOnly needs an existing file, every other mode
    /// creates a missing one; WriteOnly without ReadOnly or Append, and Truncate without Append, empty it.
    /// The position is 0, with Append the end. Refused with a warning while it is open, without an access bit
    /// and without a name. A failure leaves it closed.
    bool open(int mode) override;

    /// There is something of that name, be it a directory. A query that finds nothing is logged.
    bool exists() const;
    /// As in CZeFileDevice.
    int64_t size() const override;
    bool isSequential() const override;

    /// Closes the file and removes it from its directory.
    bool remove();

    /// Closes the file and renames it to `newName`, which this object then has as its name; there must not be
    /// anything of that name, except the same file in other letter case, and it must not be one of a
    /// resource. Where the system cannot rename, the contents are copied, with owner, permissions and times
    /// as far as possible, and the old file removed. After a failure, error code FileErrRename, the file has
    /// its old name and contents and no new file is left behind; it may be closed. What could not be written
    /// before renaming is a write error.
    bool rename(const CZeString& newName);

private:
    bool failRename(const char* text);
    bool renameInTwoSteps(const char* from, const char* to);
    bool renameOrCopy(const CZeString& newName, const char* newPath);

    CZeString m_fileName;
};
