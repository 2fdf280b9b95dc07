#include "core/io/permissions.h"

#include <sys/stat.h>
#include <unistd.h>

bool ze::copyPermissions(const struct stat& from, int to) {
    constexpr auto kSameUser = static_cast<uid_t>(-1);
    constexpr auto kSameGroup = static_cast<gid_t>(-1);
    // A new owner costs a file its special bits, so they are set last.
    const bool hasOwner = fchown(to, from.st_uid, kSameGroup) == 0;
    const bool hasGroup = fchown(to, kSameUser, from.st_gid) == 0;
    mode_t permissions = from.st_mode & 07777;
    if (!hasOwner)
        permissions &= ~static_cast<mode_t>(S_ISUID);
    if (!hasGroup)
        permissions &= ~static_cast<mode_t>(S_ISGID);
    return fchmod(to, permissions) == 0;
}
