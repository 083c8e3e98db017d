#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/feeds/CsvRows.hpp"
#include "host/feeds/OpenRecorded.hpp"

namespace vigil {

/// Whether a cell stands for "no value": empty; MM, NA, N/A, NaN, null, -, -- in any case of letters; -9999,
/// -9999.9, 9999 and 99999 however they are written (-9999.0). 999 does not: it is an ordinary pressure.
bool isMissingMark(std::string_view cell);

/// What the columns of a CSV file are. Whether a column holds numbers or texts is decided by its first cell
/// that holds a value, unless its name is that of a known text or date.
class CsvColumns {
  public:
    /// From the header row. An error is a sentence without its file and line.
    static Result<CsvColumns> fromHeader(const CsvRow& header, const CsvOptions& options,
                                         const ProblemTeller& tell);

    std::size_t size() const { return m_columns.size(); }
    std::size_t timeColumn() const { return m_time; }
    const std::optional<std::size_t>& stationColumn() const { return m_station; }
    /// What a cell that cannot be read is told to `tell` about and leaves out.
    std::shared_ptr<const Readings> readings(const CsvRow& row, Date time, const ProblemTeller& tell);

  private:
    enum class Role { Skipped, Undecided, Reading };
    struct Column {
        std::string name;
        Role role = Role::Skipped;
        std::shared_ptr<const AgentPropertyLabel> label{};  // of the type that is known so far
    };
    static void decide(Column& column, FourCharCode type);
    std::optional<AgentProperty> reading(Column& column, std::string_view cell, Date time,
                                         std::string& problem);

    std::vector<Column> m_columns;
    std::shared_ptr<const KeyTable> m_table;
    std::size_t m_time = 0;
    std::optional<std::size_t> m_station;
};

}  // namespace vigil
