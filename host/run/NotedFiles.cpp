#include "host/run/NotedFiles.hpp"

namespace vigil {

Result<std::string> NotedFiles::readUtf8(const std::string& path) {
    auto text = m_files.readUtf8(path);
    if (!path.starts_with(m_folder)) return text;
    const std::string name = path.substr(m_folder.size());
    if (!text) {
        m_missed(name, name.empty() ? "the row names no script" : text.error().message);
        return text;
    }
    m_name = name;
    m_source = text.value();
    return text;
}

std::string NotedFiles::nameOf(const std::string& source) const {
    return source == m_source ? m_name : std::string();
}

}  // namespace vigil
