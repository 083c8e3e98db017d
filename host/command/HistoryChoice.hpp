#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

#include "host/command/CommandContext.hpp"
#include "host/site/HistoryReader.hpp"

namespace vigil {

/// What of a site's history a command is asked about.
struct HistoryChoice {
    std::string site;  ///< the site file; empty: the usual one
    std::string since;
    std::string until;
};

/// Adds --site, --since and --until. `choice` must outlive the parsing.
void addHistoryOptions(CLI::App& command, HistoryChoice& choice);

/// An open history with the names that people know its stations and monitors by.
struct OpenHistory {
    std::unique_ptr<HistoryReader> reader;
    std::vector<StoredStation> stations;
    std::vector<StoredPlugIn> monitors;
    HistoryRange range;

    /// "Roof", or "station 3" for one without a name.
    std::string stationName(RecordId station) const;
};

/// Nothing where the times are none or the history cannot be read; the reason is then told and the status
/// set.
std::optional<OpenHistory> openHistory(const HistoryChoice& choice, CommandContext& context);

/// Nothing where there is none of that name; the names that there are are then told and the status set. An
/// empty name is the only station or monitor, where there is one only.
const StoredStation* chooseStation(const OpenHistory& history, const std::string& name,
                                   CommandContext& context);
const StoredPlugIn* chooseMonitor(const OpenHistory& history, const std::string& title,
                                  CommandContext& context);

}  // namespace vigil
