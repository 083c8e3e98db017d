#pragma once

#include <string>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// A monitor of the file in which earlier versions kept them (docs/formats/monitors.md).
struct FiledMonitor {
    std::string title{};
    std::string station{};  ///< its name
    std::string className{};
    std::string archive{};
};

/// "vigil/monitors.json" in the user's folder for data ($XDG_DATA_HOME, else ~/.local/share).
std::string defaultMonitorsFile();

/// The file's monitors from its text. An error says what is not understood, and where.
Result<std::vector<FiledMonitor>> readMonitors(const std::string& text);

}  // namespace vigil
