#include "host/command/EvalBatch.hpp"

#include <simdjson.h>

#include "host/command/BatchLines.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/feeds/ReadingJson.hpp"

namespace vigil {
namespace {

class Judge {
  public:
    Result<Done> answer(const simdjson::dom::element& line, std::string& answers) {
        std::string_view text;
        if (line["condition"].get(text) != simdjson::SUCCESS) return Error{"condition: expected a text"};
        simdjson::dom::element given;
        if (line["readings"].get(given) != simdjson::SUCCESS)
            return Error{"readings: expected an object from key to reading"};
        const auto readings = readingsFromJsonObject(given, std::nullopt, "readings");
        if (!readings) return readings.error();
        const Condition& condition = m_conditions.of(text);
        std::optional<bool> holds;
        if (condition) holds = condition.value()->evaluateWithObject(readings.value()->view());
        appendAnswer(answers, condition, holds);
        return Done{};
    }

  private:
    LastCondition m_conditions;
};

}  // namespace

void evalBatch(const std::string& path, CommandContext& context) {
    Judge judge;
    answerLinesOf(
        path,
        [&judge](const simdjson::dom::element& line, std::string& answers) {
            return judge.answer(line, answers);
        },
        context);
}

}  // namespace vigil
