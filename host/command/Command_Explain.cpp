#include <cmath>
#include <memory>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>
#include <simdjson.h>

#include "host/command/AbsentReadings.hpp"
#include "host/command/BatchLines.hpp"
#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/command/Explainer.hpp"
#include "host/command/FeedOptions.hpp"
#include "host/command/JsonText.hpp"
#include "host/feeds/ReadingJson.hpp"

namespace vigil {
namespace {

/// What the monitor says where no comparison holds.
constexpr std::string_view kNothingNamed = "Alert was caused by .";

struct ExplainOptions {
    std::string condition;  // with --batch the file, if any
    FeedOptions feed;
    bool batch = false;
    bool json = false;
};

void fail(CommandContext& context, const std::string& text) {
    context.output.error(text);
    context.status = ExitStatus::Environment;
}

/// `"status":…,"failure":…}` and a line's end.
void appendExplanation(std::string& to, const Explanation& explanation) {
    to += R"("status":)";
    appendJsonText(to, explanation.status);
    const char* failure = failureName(explanation.failure);
    to += failure ? R"(,"failure":")" + std::string(failure) + "\"}\n" : ",\"failure\":null}\n";
}

std::string explainedLine(const RecordedNotification& notification, const Explanation& explanation,
                          bool holds, bool json) {
    if (json) {
        const double seconds = notification.time.secondsSinceReference();
        std::string line = R"({"time":")" + notification.time.isoText(seconds == std::floor(seconds) ? 0 : 6);
        line += R"(","station":)";
        appendJsonText(line, notification.station);
        line += ',';
        appendExplanation(line, explanation);
        return line;
    }
    std::string line = notification.time.description() + "  ";
    if (!notification.station.empty()) line += notification.station + "  ";
    const bool nothing = !holds && explanation.status == kNothingNamed;
    line += nothing ? std::string("does not hold") : explanation.status;
    if (explanation.failure == Explanation::Failure::Range)
        line += "  (cannot be explained: a piece of the condition's text has no blank)";
    if (explanation.failure == Explanation::Failure::Parse)
        line += "  (cannot be explained: a piece of the condition's text is no condition)";
    return line + "\n";
}

/// Explains every notification. The status is Yes when the condition held for one of them.
void explainAll(RecordedSource& source, const std::shared_ptr<ConditionPredicate>& condition,
                Explainer& explainer, const ExplainOptions& options, FeedReport& report,
                CommandContext& context) {
    AbsentReadings absent(condition->tree());
    std::size_t explained = 0;
    std::size_t held = 0;
    const bool prompt = options.feed.path == "-" || context.output.isTerminal();
    for (;;) {
        const auto next = source.next();
        if (!next) return fail(context, next.error().message);
        if (!next.value()) break;
        const auto& readings = next.value()->readings;
        absent.note(*readings);
        const bool holds = condition->evaluateWithObject(readings->view());
        context.output.write(
            explainedLine(*next.value(), explainer.explain(condition, readings), holds, options.json));
        if (prompt) context.output.flush();
        ++explained;
        held += holds ? 1 : 0;
    }
    report.finish();
    absent.tell(context.output);
    if (explained == 0)
        tellNothingCame(options.feed, report, context);
    else if (held == 0)
        context.status = ExitStatus::No;
}

void explainNotifications(const ExplainOptions& options, CommandContext& context) {
    const auto condition = conditionFromUser(options.condition, context);
    if (!condition) return;
    const auto explainer = Explainer::make(context.programFolder);
    if (!explainer) return fail(context, explainer.error().message);
    FeedReport report(options.feed.path, context.output);
    FeedOptions feed = options.feed;
    // An explanation needs no order: each comes as soon as its line is there, and in the lines' order.
    feed.csv.orderWindow = feed.lines.orderWindow = 0;
    const auto source = openFeed(feed, report, context);
    if (source) explainAll(*source, condition, *explainer.value(), options, report, context);
}

/// {"condition":…,"properties":[…]} in; {"status":…,"failure":…} out.
Result<Done> explainLine(Explainer& explainer, LastCondition& conditions, const simdjson::dom::element& line,
                         std::string& answers) {
    std::string_view text;
    if (line["condition"].get(text) != simdjson::SUCCESS) return Error{"condition: expected a text"};
    simdjson::dom::element given;
    if (line["properties"].get(given) != simdjson::SUCCESS)
        return Error{"properties: expected a list of readings"};
    const auto readings = readingsFromJsonList(given, std::nullopt, "properties");
    if (!readings) return readings.error();
    const Condition& condition = conditions.of(text);
    if (condition) {
        answers += '{';
        appendExplanation(answers, explainer.explain(condition.value(), readings.value()));
    } else {
        appendAnswer(answers, condition, std::nullopt);
    }
    return Done{};
}

void explainBatch(const std::string& path, CommandContext& context) {
    const auto explainer = Explainer::make(context.programFolder);
    if (!explainer) return fail(context, explainer.error().message);
    LastCondition conditions;
    answerLinesOf(
        path,
        [&](const simdjson::dom::element& line, std::string& answers) {
            return explainLine(*explainer.value(), conditions, line, answers);
        },
        context);
}

}  // namespace

void addExplainCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("explain", "Name the comparisons that hold for recorded readings");
    auto options = std::make_shared<ExplainOptions>();
    auto* condition = command->add_option("CONDITION", options->condition, "The condition, as one argument");
    auto* file = command->add_option("FILE", options->feed.path,
                                     "JSON lines or CSV with a header; - or nothing: standard input");
    auto* json = command->add_flag("--json", options->json, "One JSON object for each notification");
    auto* batch = command->add_flag("--batch", options->batch,
                                    "Each line brings its own condition and readings; takes FILE alone");
    addFeedOptions(*command, options->feed);
    batch->excludes(json);
    command->footer(
        "Asks the monitor's own module, once a notification. It cuts the condition's text at the keys of "
        "the\n"
        "readings, so parentheses, and keys inside other keys or texts, can break an explanation off.\n"
        "The status is 0 when the condition held at least once, 1 when it never did, 2 when nothing could "
        "be\n"
        "read; with --batch 0, or 2 when a line could not be read. docs/formats/explain.md tells the forms.\n"
        "Examples:\n"
        "  vigil explain 'windChill.unitValue < 10 OR windSpeed.unitValue > 25' readings.jsonl\n"
        "  vigil explain --json 'windSpeed.unitValue > 25' --units us hourly.csv");
    command->callback([options, condition, file, &context] {
        if (options->batch) {
            if (file->count() > 0) throw CLI::ExtrasError("explain", {options->feed.path});
            return explainBatch(condition->count() > 0 ? options->condition : "-", context);
        }
        if (condition->count() == 0) throw CLI::RequiredError("CONDITION");
        explainNotifications(*options, context);
    });
}

}  // namespace vigil
