#include "tool/files/output_file.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"

namespace ze::tool {

OutputFile::OutputFile(const std::string& path, const std::vector<uint8_t>& bytes)
    : m_path(path), m_file(libraryFileName(path)) {
    require(m_file.open(Ze::WriteOnly));
    const auto size = static_cast<int64_t>(bytes.size());
    require(m_file.write(reinterpret_cast<const char*>(bytes.data()), size) == size);
}

void OutputFile::commit() {
    require(m_file.commit());
}

void OutputFile::require(bool done) const {
    if (!done)
        throw Failure(ExitCode::failed, m_path,
                      std::string("cannot be written: ") + m_file.errorString().toUtf8().constData());
}

} // namespace ze::tool
