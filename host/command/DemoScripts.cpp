#include "host/command/DemoScripts.hpp"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace vigil {
namespace {

namespace fs = std::filesystem;

constexpr const char* kText = R"(#!/bin/sh
# What a monitor of yours could run: a message to your phone, a switch, a mail. The readings are in the environment.
echo "At the $VIGIL_SITE it feels like $VIGIL_windChill_TEXT, with a wind of $VIGIL_windSpeed_TEXT."
)";

}  // namespace

DemoScripts::DemoScripts() {
    const fs::path above = fs::temp_directory_path();
    std::string pattern = (above / "vigil-demo-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder can be made in " + above.string());
    m_folder = pattern;
    std::ofstream file(m_folder / kName);
    file << kText;
    if (!file.flush()) throw std::runtime_error("cannot write " + (m_folder / kName).string());
}

DemoScripts::~DemoScripts() {
    std::error_code ignored;  // what cannot be removed is the system's to clear
    fs::remove_all(m_folder, ignored);
}

}  // namespace vigil
