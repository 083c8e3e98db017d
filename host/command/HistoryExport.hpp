#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/command/HistoryChoice.hpp"

namespace vigil {

/// Passes a station's readings of the history's range on as JSON lines. Rows that cannot be read are told and
/// left out. The status becomes No when there was nothing, and Environment when a row could not be read.
void writeReadings(const OpenHistory& history, const StoredStation& station,
                   const std::function<void(std::string_view)>& write, CommandContext& context);

/// Writes them into a file, CSV or JSON lines by its name, and says how many. The file is replaced when all
/// is written.
void exportReadings(const OpenHistory& history, const StoredStation& station, const std::string& file,
                    CommandContext& context);

}  // namespace vigil
