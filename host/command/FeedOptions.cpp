#include "host/command/FeedOptions.hpp"

#include <utility>

#include <CLI/CLI.hpp>

namespace vigil {

void addFeedOptions(CLI::App& command, FeedOptions& options) {
    command.add_option("--time-column", options.csv.timeColumn, "CSV: the column that holds the time")
        ->type_name("NAME");
    command
        .add_option("--station-column", options.csv.stationColumn, "CSV: the column that names the station")
        ->type_name("NAME");
    command
        .add_option_function<std::string>(
            "--station",
            [&options](const std::string& name) { options.csv.station = options.lines.station = name; },
            "Take the readings of this station only")
        ->type_name("NAME");
    command
        .add_option_function<std::string>(
            "--units",
            [&options](const std::string& system) {
                if (system != "metric" && system != "us")
                    throw CLI::ValidationError("--units", "expected metric or us");
                options.csv.units = system == "us" ? UnitSystem::Us : UnitSystem::Metric;
            },
            "CSV: the units of the numbers, metric (default) or us")
        ->type_name("SYSTEM");
    command
        .add_option_function<std::string>(
            "--separator",
            [&options](const std::string& text) {
                const std::string one = text == "tab" || text == "\\t" ? "\t" : text;
                const bool usable =
                    one == "\t" || (one.size() == 1 && one[0] > ' ' && one[0] < 0x7F && one != "\"");
                if (!usable) throw CLI::ValidationError("--separator", "expected one character, or tab");
                options.csv.separator = one[0];
            },
            "CSV: what stands between cells, a comma unless given; `tab` for a tab")
        ->type_name("CHARACTER");
}

FeedReport::FeedReport(std::string path, Output& output)
    : m_name(path == "-" ? "standard input" : std::move(path)), m_output(output) {}

ProblemTeller FeedReport::teller() {
    return [this](const FeedProblem& problem) {
        if (++m_problems <= kMostTold)
            m_output.error(m_name + ":" + std::to_string(problem.line) + ": " + problem.message);
    };
}

void FeedReport::finish() {
    if (m_problems > kMostTold)
        m_output.error(m_name + ": " + std::to_string(m_problems - kMostTold) + " more problems like these");
}

std::unique_ptr<RecordedSource> openFeed(const FeedOptions& options, FeedReport& report,
                                         CommandContext& context) {
    auto opened = openRecorded(options.path, options.csv, options.lines, report.teller());
    if (opened) return std::move(opened).value();
    context.output.error(opened.error().message);
    const bool environment = opened.error().kind == OpenError::Kind::CannotRead;
    context.status = environment ? ExitStatus::Environment : ExitStatus::BadInput;
    return nullptr;
}

}  // namespace vigil
