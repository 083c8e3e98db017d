#include <cmath>
#include <memory>
#include <string>
#include <utility>

#include "host/command/AbsentReadings.hpp"
#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/command/EvalBatch.hpp"
#include "host/command/FeedOptions.hpp"
#include "host/command/JsonText.hpp"

namespace vigil {
namespace {

struct EvalOptions {
    std::string condition;  // with --batch the file, if any
    FeedOptions feed;
    bool batch = false;
    bool json = false;
};

std::string verdictLine(const RecordedNotification& notification, bool holds, bool json) {
    if (!json) {
        std::string line = notification.time.description() + (holds ? "  holds" : "  does not hold");
        if (!notification.station.empty()) line += "  " + notification.station;
        return line + "\n";
    }
    const double seconds = notification.time.secondsSinceReference();
    std::string line = R"({"time":")" + notification.time.isoText(seconds == std::floor(seconds) ? 0 : 6);
    line += R"(","station":)";
    appendJsonText(line, notification.station);
    return line + (holds ? R"(,"holds":true})" : R"(,"holds":false})") + "\n";
}

/// Judges every notification. The status is Yes when the condition held for one of them.
void judgeAll(RecordedSource& source, const ConditionPredicate& condition, const EvalOptions& options,
              FeedReport& report, CommandContext& context) {
    AbsentReadings absent(condition.tree());
    std::size_t judged = 0;
    std::size_t held = 0;
    // At a terminal and behind a pipe that delivers now and then, each verdict shows at once.
    const bool prompt = options.feed.path == "-" || context.output.isTerminal();
    for (;;) {
        const auto next = source.next();
        if (!next) {
            context.output.error(next.error().message);
            context.status = ExitStatus::Environment;
            return;
        }
        if (!next.value()) break;
        absent.note(*next.value()->readings);
        const bool holds = condition.evaluateWithObject(next.value()->readings->view());
        context.output.write(verdictLine(*next.value(), holds, options.json));
        if (prompt) context.output.flush();
        ++judged;
        held += holds ? 1 : 0;
    }
    report.finish();
    absent.tell(context.output);
    if (judged == 0)
        tellNothingCame(options.feed, report, context);
    else if (held == 0)
        context.status = ExitStatus::No;
}

void evalNotifications(const EvalOptions& options, CommandContext& context) {
    const auto condition = conditionFromUser(options.condition, context);
    if (!condition) return;
    FeedReport report(options.feed.path, context.output);
    FeedOptions feed = options.feed;
    // A verdict needs no order: each comes as soon as its line is there, and in the lines' order.
    feed.csv.orderWindow = feed.lines.orderWindow = 0;
    const auto source = openFeed(feed, report, context);
    if (source) judgeAll(*source, *condition, options, report, context);
}

}  // namespace

void addEvalCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("eval", "Judge recorded readings by a condition");
    auto options = std::make_shared<EvalOptions>();
    auto* condition = command->add_option("CONDITION", options->condition, "The condition, as one argument");
    auto* file = command->add_option("FILE", options->feed.path,
                                     "JSON lines or CSV with a header; - or nothing: standard input");
    auto* json = command->add_flag("--json", options->json, "One JSON object for each notification");
    auto* batch = command->add_flag("--batch", options->batch,
                                    "Each line brings its own condition and readings; takes FILE alone");
    addFeedOptions(*command, options->feed);
    batch->excludes(json);
    command->footer(
        "The status is 0 when the condition held at least once, 1 when it never did, 2 when nothing could "
        "be\n"
        "read; with --batch 0, or 2 when a line could not be read.\n"
        "Examples:\n"
        "  vigil eval 'windChill.unitValue < 10' readings.jsonl\n"
        "  vigil eval --json 'windSpeed.unitValue > 25' --units us hourly.csv\n"
        "  echo '{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":2}}' | vigil eval --batch");
    command->callback([options, condition, file, &context] {
        if (options->batch) {
            if (file->count() > 0) throw CLI::ExtrasError("eval", {options->feed.path});
            return evalBatch(condition->count() > 0 ? options->condition : "-", context);
        }
        if (condition->count() == 0) throw CLI::RequiredError("CONDITION");
        evalNotifications(*options, context);
    });
}

}  // namespace vigil
