#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string>

#include "host/feeds/Recorded.hpp"
#include "host/readings/Unit.hpp"

namespace vigil {

/// How a CSV file is read. Its form is described in docs/formats/csv.md.
struct CsvOptions {
    char separator = ',';
    /// Absent: the first of "time", "date", "datetime", "dateTime", "timestamp" that there is, else the first
    /// column.
    std::optional<std::string> timeColumn{};
    /// Absent: "station" if there is such a column, else all rows are of one station without a name.
    std::optional<std::string> stationColumn{};
    /// Keeps the rows of this station only.
    std::optional<std::string> station{};
    /// Which short units known readings are labelled with. Numbers stand as they are recorded.
    UnitSystem units = UnitSystem::Metric;
    /// 0: rows come as they stand, in whatever order.
    std::size_t orderWindow = kOrderWindow;
};

/// How JSON lines are read. Their form is described in docs/formats/readings-json.md.
struct JsonLinesOptions {
    /// Keeps the lines of this station only.
    std::optional<std::string> station{};
    /// 0: lines come as they stand, each as soon as it has been read, in whatever order.
    std::size_t orderWindow = kOrderWindow;
};

using Opened = Result<std::unique_ptr<RecordedSource>, OpenError>;

/// `path` is a file, or "-" for standard input.
Opened openCsv(const std::string& path, CsvOptions options, ProblemTeller tell);
Opened openJsonLines(const std::string& path, JsonLinesOptions options, ProblemTeller tell);
/// Either form, told apart by the file's name (.jsonl, .ndjson and .json, .csv and .tsv), else by the first
/// byte that is no blank: JSON lines begin with "{".
Opened openRecorded(const std::string& path, CsvOptions csv, JsonLinesOptions lines, ProblemTeller tell);

/// The same from an open stream; `name` stands for the file in messages.
Opened openCsv(std::shared_ptr<std::istream> in, const std::string& name, CsvOptions options,
               ProblemTeller tell);
Opened openJsonLines(std::shared_ptr<std::istream> in, const std::string& name, JsonLinesOptions options,
                     ProblemTeller tell);

/// What the simulated station does.
struct SimulatedOptions {
    std::string station = "Simulated station";
    Date start{794826000.0};             ///< the first notification; 2026-03-10 09:00 UTC
    double step = 300;                   ///< seconds from one notification to the next, above 0
    std::optional<std::size_t> count{};  ///< absent: without end
};

/// A believable day, the same for the same seed and options on every machine. A shower with cold gusts
/// passes soon after the start and again every few hours, so that the wind chill crosses 10 °C and the wind
/// 25 km/h, both of them both ways, within the first ten notifications of five minutes. Wind speeds are m/s
/// inside and km/h for people; all else is shown as it is held.
std::unique_ptr<RecordedSource> simulatedSource(std::uint64_t seed, SimulatedOptions options = {});

}  // namespace vigil
