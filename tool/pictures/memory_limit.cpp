#include "tool/pictures/memory_limit.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace ze::tool {
namespace {

// The lowest number in the files `name` of the folder `group` below `root` and of its parents. Files say
// "max", or a number beyond any memory, where there is no limit.
int64_t lowestIn(const std::filesystem::path& root, std::filesystem::path group, const char* name,
                 int64_t limit) {
    for (;; group = group.parent_path()) {
        std::ifstream file(root / group / name);
        int64_t value = 0;
        if (file >> value)
            limit = std::min(limit, value);
        if (group.empty())
            return limit;
    }
}

} // namespace

int64_t memoryLimit() {
    int64_t limit = int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
    std::ifstream groups("/proc/self/cgroup"); // lines of "ID:CONTROLLERS:/GROUP", see cgroups(7)
    for (std::string line; std::getline(groups, line);) {
        const size_t controllers = line.find(':');
        const size_t group = line.find(":/", controllers + 1);
        if (group == line.npos)
            continue;
        const std::string path = line.substr(group + 2);
        const std::string kind = line.substr(controllers, group + 1 - controllers);
        if (kind == "::")
            limit = lowestIn("/sys/fs/cgroup", path, "memory.max", limit);
        else if (kind == ":memory:")
            limit = lowestIn("/sys/fs/cgroup/memory", path, "memory.limit_in_bytes", limit);
    }
    return limit;
}

} // namespace ze::tool
