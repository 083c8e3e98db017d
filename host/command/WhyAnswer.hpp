#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "host/command/MonitorReplay.hpp"

namespace vigil {

/// One comparison of a condition against one notification.
struct ComparisonAnswer {
    Comparison comparison;
    std::string text;                   ///< as the language writes it
    bool holds = false;                 ///< against what was judged
    bool absent = false;                ///< the notification has no such reading
    bool leftOut = false;               ///< the reading had not changed, so it was not judged
    std::optional<double> number;       ///< unitValue, or the seconds of a date
    std::optional<std::string> string;  ///< of a comparison of texts
    std::string unit;
    /// How far the reading is from where the comparison turns, 0 or more; nothing where there is no such
    /// distance (texts, != and what is no number). A comparison with < or > turns at its literal, too.
    std::optional<double> margin;
    std::optional<double> age;  ///< seconds from the reading's time to the notification
};

/// Why a monitor did what it did at one notification.
struct WhyAnswer {
    enum class Reason { Fired, ConditionFalse, Waiting, NotWatching, NoCondition };

    Reason reason = Reason::ConditionFalse;
    Date time;                         ///< of the notification
    std::optional<Date> waitingUntil;  ///< of Waiting
    std::string condition;
    bool onlyOnChange = false;
    bool wouldHold = false;  ///< the condition on all readings of the notification
    std::vector<ComparisonAnswer> comparisons;
};

/// "fired", "false", "waiting", "unwatched", "no condition"
const char* whyReasonName(WhyAnswer::Reason reason);

/// The monitor's condition as it stands; nothing where it has none.
std::shared_ptr<ConditionPredicate> conditionOf(QRVPlugIn& monitor);

/// About the last notification at `at` or before (without it: the very last); nothing where there is none.
/// `replay` is fresh, and traces.
Result<std::optional<WhyAnswer>> whyAt(MonitorReplay& replay, HistoryReader& reader, RecordId station,
                                       std::optional<Date> at);

/// For people, and as one JSON object a line (docs/history.md).
std::string whyText(const WhyAnswer& answer, const std::string& title, const std::string& station);
std::string whyJson(const WhyAnswer& answer, const std::string& title, const std::string& station);

}  // namespace vigil
