#include "core/io/resource_info.h"

#include "core/tools/compression.h"
#include "core/warning.h"

#include <algorithm>
#include <mutex>

namespace {

/// The names that lead from the root to the node.
CZeStringList namesOf(const CZeString& path) {
    return path.mid(2).split('/', CZeString::SkipEmptyParts);
}

bool isFileName(const CZeString& name) {
    return name != CZeLatin1String(".") && name != CZeLatin1String("..");
}

} // namespace

struct CZeResourceInfo::Registry {
    std::mutex mutex;
    CZeResourceInfo root{Kind::Directory, CZeString()};
};

CZeResourceInfo::Registry& CZeResourceInfo::registry() {
    static Registry instance;
    return instance;
}

CZeResourceInfo::CZeResourceInfo() = default;
CZeResourceInfo::~CZeResourceInfo() = default;
CZeResourceInfo::CZeResourceInfo(const CZeResourceInfo&) = default;
CZeResourceInfo::CZeResourceInfo(CZeResourceInfo&&) noexcept = default;
CZeResourceInfo& CZeResourceInfo::operator=(const CZeResourceInfo&) = default;
CZeResourceInfo& CZeResourceInfo::operator=(CZeResourceInfo&&) noexcept = default;

CZeResourceInfo::CZeResourceInfo(Kind kind, const CZeString& name) : m_kind(kind), m_name(name) {}

bool CZeResourceInfo::isResourcePath(const CZeString& path) {
    return path.left(2) == CZeLatin1String(":/");
}

bool CZeResourceInfo::registerResource(const CZeString& path, const CZeByteArray& contents, Storage storage) {
    const CZeStringList names = namesOf(path);
    if (!isResourcePath(path) || names.isEmpty() || !std::all_of(names.begin(), names.end(), isFileName)) {
        ze::coreWarning("CZeResourceInfo::registerResource: Invalid path: %s",
                        path.toLocal8Bit().constData());
        return false;
    }
    CZeResourceInfo file(Kind::File, names[names.size() - 1]);
    file.m_storage = storage;
    file.m_contents = contents;

    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    if (all.root.insert(names, 0, file))
        return true;
    ze::coreWarning("CZeResourceInfo::registerResource: Path is taken: %s", path.toLocal8Bit().constData());
    return false;
}

bool CZeResourceInfo::unregisterResource(const CZeString& path) {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const CZeStringList names = namesOf(path);
    return isResourcePath(path) && !names.isEmpty() && all.root.erase(names, 0);
}

CZeResourceInfo CZeResourceInfo::find(const CZeString& path) {
    if (!isResourcePath(path))
        return {};
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    CZeResourceInfo* node = &all.root;
    for (const CZeString& name : namesOf(path)) {
        node = node->child(name);
        if (!node)
            return {};
    }
    return *node;
}

bool CZeResourceInfo::read(CZeByteArray& bytes) const {
    if (m_kind != Kind::File)
        return false;
    bytes = isCompressed() ? ZeUncompress(m_contents.constData(), m_contents.size()) : m_contents;
    const bool isEmptyFile = isCompressed() ? m_contents == ZeCompress(nullptr, 0) : m_contents.isEmpty();
    return isEmptyFile || !bytes.isEmpty();
}

CZeResourceInfo* CZeResourceInfo::child(const CZeString& name) {
    const auto found = std::find_if(m_children.begin(), m_children.end(),
                                    [&](const CZeResourceInfo& node) { return node.m_name == name; });
    return found == m_children.end() ? nullptr : &*found;
}

/// Puts `file` below this directory, at `path` from the name `depth` on. Changes nothing when it cannot.
bool CZeResourceInfo::insert(const CZeStringList& path, int depth, const CZeResourceInfo& file) {
    const bool isLast = depth == path.size() - 1;
    if (CZeResourceInfo* const node = child(path[depth]))
        return !isLast && node->isDirectory() && node->insert(path, depth + 1, file);
    CZeResourceInfo node = isLast ? file : CZeResourceInfo(Kind::Directory, path[depth]);
    if (!isLast)
        node.insert(path, depth + 1, file);
    const auto behind = std::find_if(m_children.begin(), m_children.end(), [&](const CZeResourceInfo& other) {
        return other.m_name > node.m_name;
    });
    m_children.insert(behind, std::move(node));
    return true;
}

bool CZeResourceInfo::erase(const CZeStringList& path, int depth) {
    CZeResourceInfo* const node = child(path[depth]);
    if (!node)
        return false;
    const bool isLast = depth == path.size() - 1;
    if (isLast ? node->m_kind != Kind::File : !node->erase(path, depth + 1))
        return false;
    if (node->m_children.empty())
        m_children.erase(m_children.begin() + (node - m_children.data()));
    return true;
}
