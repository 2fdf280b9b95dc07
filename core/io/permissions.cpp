#include "core/io/permissions.h"

#include <sys/stat.h>
#include <unistd.h>

bool ze::copyPermissions(const struct stat& from, int to) {
    constexpr auto kSameUser = static_cast<uid_t>(-1);
    constexpr auto kSameGroup = static_cast<gid_t>(-1);
    const bool hasGroup = fchown(to, kSameUser, from.st_gid) == 0;
    mode_t permissions = from.st_mode & 0777;
    if (!hasGroup) // Another group may do what everybody may.
        permissions = (permissions & ~static_cast<mode_t>(S_IRWXG)) | ((permissions & S_IRWXO) << 3);
    // While the file is still this process's own: afterwards that may not be allowed any more.
    if (fchmod(to, permissions) != 0)
        return false;
    const bool hasOwner = fchown(to, from.st_uid, kSameGroup) == 0;
    // A new owner costs a file its special bits, so they come last. It does without them rather than fail.
    mode_t special = from.st_mode & 07000;
    if (!hasOwner)
        special &= ~static_cast<mode_t>(S_ISUID);
    if (!hasGroup)
        special &= ~static_cast<mode_t>(S_ISGID);
    if (special != 0)
        fchmod(to, permissions | special);
    return true;
}
