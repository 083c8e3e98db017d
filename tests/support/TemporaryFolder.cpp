#include "tests/support/TemporaryFolder.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace vigil {

TemporaryFolder::TemporaryFolder()
    : m_path((std::filesystem::temp_directory_path() / "vigil-test-XXXXXX").string()) {
    if (!mkdtemp(m_path.data())) throw std::runtime_error("no temporary folder: " + m_path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;  // a test that removed its folder by itself is none that failed
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, std::string_view bytes) const {
    std::string path = m_path + "/" + name;
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw std::runtime_error("not written: " + path);
    return path;
}

std::string TemporaryFolder::makeFolder(const std::string& name) const {
    std::string path = m_path + "/" + name;
    std::filesystem::create_directory(path);
    return path;
}

}  // namespace vigil
