#include "core/io/resource_info.h"

#include "core/tools/compression.h"
#include "core/warning.h"

#include <map>
#include <mutex>
#include <new>
#include <utility>

namespace {

/// The names in a resource path, one after the other.
class Names {
public:
    /// `path`, which begins with ":/", must outlive this.
    explicit Names(const CZeString& path) : m_units(path.unicode()), m_pathSize(path.size()) {}

    /// Moves on to the next name, the first at the first call. False when there is none.
    bool next() {
        m_start = m_end;
        while (m_start < m_pathSize && m_units[m_start] == '/')
            ++m_start;
        m_end = m_start;
        while (m_end < m_pathSize && m_units[m_end] != '/')
            ++m_end;
        return m_start < m_end;
    }

    const CZeChar* units() const { return m_units + m_start; }
    int size() const { return m_end - m_start; }
    /// Where the name ends in the path.
    int end() const { return m_end; }

    /// "." or "..".
    bool isDots() const { return units()[0] == '.' && (size() == 1 || (size() == 2 && units()[1] == '.')); }

private:
    const CZeChar* m_units;
    int m_pathSize;
    int m_start = 0;
    int m_end = 1; // behind the ':'
};

/// Where one path lies when seen from another. All paths have an order: by their names from the root on, a
/// directory before what is in it.
enum class Relation { Before, Around, Same, Inside, After };

Relation relationOf(const CZeString& left, const CZeString& right) {
    Names l(left), r(right);
    for (;;) {
        const bool hasLeft = l.next();
        const bool hasRight = r.next();
        if (!hasLeft)
            return hasRight ? Relation::Around : Relation::Same;
        if (!hasRight)
            return Relation::Inside;
        const int order =
            CZeString::compare_helper(l.units(), l.size(), r.units(), r.size(), Ze::CaseSensitive);
        if (order != 0)
            return order < 0 ? Relation::Before : Relation::After;
    }
}

/// A path with all that is in it.
struct Tree {
    const CZeString& root;
};

/// The order of paths. To a tree all paths in it are equivalent.
struct Order {
    using is_transparent = void;

    bool operator()(const CZeString& left, const CZeString& right) const {
        return relationOf(left, right) < Relation::Same;
    }
    bool operator()(const CZeString& path, const Tree& tree) const {
        return relationOf(path, tree.root) < Relation::Same;
    }
    bool operator()(const Tree& tree, const CZeString& path) const {
        return relationOf(path, tree.root) == Relation::After;
    }
};

bool isFilePath(const CZeString& path) {
    if (!CZeResourceInfo::isResourcePath(path))
        return false;
    Names names(path);
    int count = 0;
    for (; names.next(); ++count)
        if (names.isDots())
            return false;
    return count > 0;
}

} // namespace

/// Only files have an entry: a directory is there for as long as there are files in it. No file's path leads
/// through another file.
struct CZeResourceInfo::Registry {
    struct File {
        Storage storage;
        CZeByteArray contents;
    };

    std::mutex mutex;
    std::map<CZeString, File, Order> files;

    static Registry& instance() {
        static Registry registry;
        return registry;
    }

    /// False when the path is taken or leads through a file.
    bool add(const CZeString& path, const File& file) {
        const std::lock_guard lock(mutex);
        const auto place = files.lower_bound(Tree{path});
        if (place != files.end() && relationOf(place->first, path) != Relation::After)
            return false;
        // With nothing in between, a file that the path leads through comes right before it.
        if (place != files.begin() && relationOf(std::prev(place)->first, path) == Relation::Around)
            return false;
        files.emplace_hint(place, path, file);
        return true;
    }

    /// The node called `path`, which `file` is or has inside it.
    static CZeResourceInfo node(const CZeString& path, const std::pair<const CZeString, File>& file) {
        CZeResourceInfo info;
        info.m_path = path;
        info.m_kind = Kind::Directory;
        if (relationOf(file.first, path) == Relation::Same) {
            info.m_kind = Kind::File;
            info.m_storage = file.second.storage;
            info.m_contents = file.second.contents;
        }
        return info;
    }
};

bool CZeResourceInfo::isResourcePath(const CZeString& path) {
    return path.size() >= 2 && path[0] == ':' && path[1] == '/';
}

bool CZeResourceInfo::registerResource(const CZeString& path, const CZeByteArray& contents, Storage storage) {
    if (!isFilePath(path)) {
        ze::coreWarning("CZeResourceInfo::registerResource: Invalid path: %s",
                        path.toLocal8Bit().constData());
        return false;
    }
    const CZeString ownPath(path.unicode(), path.size()); // `path` may wrap memory of somebody else
    bool hasMemory = !ownPath.isNull();
    try {
        if (hasMemory && Registry::instance().add(ownPath, {storage, contents}))
            return true;
    } catch (const std::bad_alloc&) {
        hasMemory = false;
    }
    // The registry is not locked any more: whoever reads the log may use it.
    if (hasMemory)
        ze::coreWarning("CZeResourceInfo::registerResource: Path is taken: %s",
                        path.toLocal8Bit().constData());
    else
        ze::coreWarning("CZeResourceInfo::registerResource: Not enough memory");
    return false;
}

bool CZeResourceInfo::unregisterResource(const CZeString& path) {
    if (!isResourcePath(path))
        return false;
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    const auto file = registry.files.find(path);
    if (file == registry.files.end())
        return false;
    registry.files.erase(file);
    return true;
}

CZeResourceInfo CZeResourceInfo::find(const CZeString& path) {
    if (!isResourcePath(path))
        return {};
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    const auto file = registry.files.find(Tree{path});
    if (file != registry.files.end())
        return Registry::node(path, *file);
    CZeResourceInfo root;
    if (!Names(path).next())
        root.m_kind = Kind::Directory;
    return root;
}

CZeString CZeResourceInfo::name() const {
    Names names(m_path);
    int start = 0, size = 0;
    while (names.next()) {
        start = names.end() - names.size();
        size = names.size();
    }
    return m_path.mid(start, size);
}

std::vector<CZeResourceInfo> CZeResourceInfo::children() const {
    std::vector<CZeResourceInfo> nodes;
    if (isDirectory() && !addChildren(nodes)) {
        nodes.clear();
        ze::coreWarning("CZeResourceInfo::children: Not enough memory");
    }
    return nodes;
}

/// False when there is no memory for them.
bool CZeResourceInfo::addChildren(std::vector<CZeResourceInfo>& nodes) const {
    int depth = 0;
    for (Names names(m_path); names.next(); ++depth)
        continue;
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    const auto end = registry.files.upper_bound(Tree{m_path});
    auto file = registry.files.lower_bound(Tree{m_path});
    if (file != end && relationOf(file->first, m_path) == Relation::Same)
        return true; // a file has taken the place of the directory
    while (file != end) {
        Names names(file->first);
        for (int i = 0; i <= depth; ++i)
            names.next();
        const CZeString path = file->first.left(names.end());
        if (path.isNull())
            return false;
        try {
            nodes.push_back(Registry::node(path, *file));
        } catch (const std::bad_alloc&) {
            return false;
        }
        file = registry.files.upper_bound(Tree{path});
    }
    return true;
}

bool CZeResourceInfo::read(CZeByteArray& bytes) const {
    if (m_kind != Kind::File)
        return false;
    bytes = isCompressed() ? ZeUncompress(m_contents.constData(), m_contents.size()) : m_contents;
    const bool isEmptyFile = isCompressed() ? m_contents == ZeCompress(nullptr, 0) : m_contents.isEmpty();
    return isEmptyFile || !bytes.isEmpty();
}
