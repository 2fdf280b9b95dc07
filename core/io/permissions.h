// Who may do what with a file that takes the place of another.

#pragma once

struct stat;

namespace ze {

/// Gives the open file `to`, which is this process's own, the owner, the group and the permissions of `from`.
/// Where this process may not give a file away, it keeps its owner or group; it then does not get the
/// set-user-ID or set-group-ID bit, which would speak for somebody else, and another group may do no more
/// than everybody. False, with errno set, when the permissions cannot be set.
bool copyPermissions(const struct stat& from, int to);

} // namespace ze
