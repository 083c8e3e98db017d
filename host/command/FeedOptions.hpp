#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <CLI/App.hpp>

#include "host/command/CommandContext.hpp"
#include "host/feeds/OpenRecorded.hpp"

namespace vigil {

/// What a command line says about recorded readings.
struct FeedOptions {
    std::string path = "-";
    CsvOptions csv;
    JsonLinesOptions lines;
};

/// Adds --time-column, --station-column, --station, --units and --separator. `options` must outlive the
/// parsing.
void addFeedOptions(CLI::App& command, FeedOptions& options);

/// Tells the problems of a feed on the error stream: the first kMostTold each, the rest as a number.
class FeedReport {
  public:
    static constexpr std::size_t kMostTold = 20;

    FeedReport(std::string path, Output& output);
    /// The report must outlive it.
    ProblemTeller teller();
    std::size_t problems() const { return m_problems; }
    /// Says how many problems were not told.
    void finish();

  private:
    std::string m_name;
    Output& m_output;
    std::size_t m_problems = 0;
};

/// Opens a file, or tells why not and sets the status (BadInput or Environment) and gives nothing.
std::unique_ptr<RecordedSource> openFeed(const FeedOptions& options, FeedReport& report,
                                         CommandContext& context);

/// Says why no notification came, and sets the status: BadInput where something could not be read or nothing
/// is of the chosen station, else No.
void tellNothingCame(const FeedOptions& options, const FeedReport& report, CommandContext& context);

}  // namespace vigil
