#include "host/command/ScriptRows.hpp"

#include <filesystem>
#include <string_view>

namespace vigil {

std::vector<std::string> scriptNames(const OpenMonitor& monitor) {
    constexpr std::string_view kRow = "Run script: ";
    std::vector<std::string> names;
    for (const std::string& line : monitor.actions()) {
        if (!line.starts_with(kRow)) continue;
        const std::string typed = line.substr(kRow.size());
        names.push_back(typed.substr(0, typed.find(' ')));
    }
    return names;
}

bool hasScript(const std::string& folder, const std::string& name) {
    std::error_code unknown;
    return std::filesystem::is_regular_file(folder + "/" + name, unknown);
}

}  // namespace vigil
