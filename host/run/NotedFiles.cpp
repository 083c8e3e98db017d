#include "host/run/NotedFiles.hpp"

namespace vigil {

Result<std::string> NotedFiles::readUtf8(const std::string& path) {
    auto text = m_files.readUtf8(path);
    if (text && path.starts_with(m_folder)) {
        m_name = path.substr(m_folder.size());
        m_source = text.value();
    }
    return text;
}

std::string NotedFiles::nameOf(const std::string& source) const {
    return source == m_source ? m_name : std::string();
}

}  // namespace vigil
