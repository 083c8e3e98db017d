#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Appends one notification as a JSON line (docs/formats/readings-json.md) that reads back as the same
/// readings; times to the microsecond. A reading stands in its short form where that says it all.
void appendReadingsLine(std::string& to, std::string_view station, Date time, const Readings& readings);

/// A column of CSV: a reading in one unit, as its header names both.
struct ReadingColumn {
    std::string key;
    std::string unit;  ///< empty where the readings have none that the reader of CSV knows

    static ReadingColumn of(const AgentProperty& reading);
};

/// Appends a row of CSV: the time, then of each column what people see of it (the number in the column's
/// unit, the text, the date), or nothing.
void appendReadingsRow(std::string& to, Date time, const std::vector<ReadingColumn>& columns,
                       const Readings& readings);
/// Appends the header of such rows.
void appendReadingsHeader(std::string& to, const std::vector<ReadingColumn>& columns);

/// ISO 8601 in UTC, with six digits of fraction where there is one.
std::string exactIsoText(Date time);

}  // namespace vigil
