// Removing a directory with all that is in it.

#pragma once

#include <string>

namespace ze {

/// Does what CZeDir::removeRecursively promises, for an absolute `path`.
bool removeTree(std::string path);

} // namespace ze
