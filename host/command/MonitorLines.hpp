#pragma once

#include <string>

#include "host/command/OpenMonitor.hpp"

namespace vigil {

/// A monitor for people: its title, condition, wait and rows, a line each.
std::string monitorLines(const StoredMonitor& stored, const OpenMonitor& monitor);

/// The same as one JSON object and a line's end.
std::string monitorJson(const StoredMonitor& stored, const OpenMonitor& monitor);

}  // namespace vigil
