#include <memory>
#include <string>

#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"

namespace vigil {
namespace {

struct CheckOptions {
    std::string condition;
    bool json = false;
};

void check(const CheckOptions& options, CommandContext& context) {
    if (!options.json) {
        if (const auto condition = conditionFromUser(options.condition, context))
            context.output.write(condition->printed() + "\n");
        return;
    }
    const auto condition = ConditionPredicate::predicateWithFormat(options.condition);
    std::string answer;
    appendAnswer(answer, condition, std::nullopt);
    context.output.write(answer);
    if (!condition) context.status = ExitStatus::BadInput;
}

}  // namespace

void addCheckCommand(CLI::App& app, CommandContext& context) {
    auto* command =
        app.add_subcommand("check", "Print a condition in its canonical form, or say what is wrong");
    auto options = std::make_shared<CheckOptions>();
    command->add_option("CONDITION", options->condition, "The condition, as one argument")->required();
    command->add_flag("--json", options->json, "Answer with one JSON object");
    command->footer(
        "Examples:\n"
        "  vigil check 'windChill.unitValue < 10 OR windSpeed.unitValue > 25'\n"
        "  vigil check --json 'sky.stringValue == \"Rain\"'");
    command->callback([options, &context] { check(*options, context); });
}

}  // namespace vigil
