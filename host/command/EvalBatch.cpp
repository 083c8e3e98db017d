#include "host/command/EvalBatch.hpp"

#include <string>
#include <utility>

#include <simdjson.h>

#include "host/command/ConditionAnswer.hpp"
#include "host/command/JsonText.hpp"
#include "host/feeds/JsonLine.hpp"
#include "host/feeds/ReadingJson.hpp"
#include "host/feeds/TextLines.hpp"

namespace vigil {
namespace {

// The longest condition with each of its bytes written as an escape, and as much again of readings.
constexpr std::size_t kLongestBatchLine = std::size_t{16} << 20;

class Batch {
  public:
    Batch(std::unique_ptr<Bytes> from, std::string name, CommandContext& context)
        : m_lines(std::move(from), kLongestBatchLine), m_name(std::move(name)), m_context(context) {}

    void run() {
        for (;;) {
            const TextLines::Found found = m_lines.next();
            if (found == TextLines::Found::End) break;
            if (found == TextLines::Found::TooLong)
                refuse("more than " + std::to_string(kLongestBatchLine) + " bytes");
            else if (m_lines.text().find_first_not_of(" \t\r") != std::string_view::npos)
                takeLine();
            constexpr std::size_t kChunk = 65536;
            if (m_answers.size() >= kChunk) flush();
        }
        flush();
        if (!m_lines.failure()) return;
        m_context.output.error(m_lines.failure()->message);
        m_context.status = ExitStatus::Environment;
    }

  private:
    void takeLine() {
        const auto parsed = m_json.parse(m_lines.text());
        if (!parsed) return refuse(parsed.error().message);
        std::string_view text;
        if (parsed.value()["condition"].get(text) != simdjson::SUCCESS)
            return refuse("condition: expected a text");
        simdjson::dom::element given;
        if (parsed.value()["readings"].get(given) != simdjson::SUCCESS)
            return refuse("readings: expected an object from key to reading");
        const auto readings = readingsFromJsonObject(given, std::nullopt, "readings");
        if (!readings) return refuse(readings.error().message);
        answer(text, *readings.value());
    }

    void answer(std::string_view text, const Readings& readings) {
        // Batches often ask about one condition many times over.
        if (!m_condition || m_conditionText != text) {
            m_conditionText = text;
            m_condition = ConditionPredicate::predicateWithFormat(text);
        }
        std::optional<bool> holds;
        if (*m_condition) holds = m_condition->value()->evaluateWithObject(readings.view());
        appendAnswer(m_answers, *m_condition, holds);
    }

    void refuse(const std::string& reason) {
        flush();
        m_context.output.error(m_name + ":" + std::to_string(m_lines.line()) + ": " + reason);
        m_answers += R"({"ok":false,"line":)" + std::to_string(m_lines.line()) + R"(,"error":)";
        appendJsonText(m_answers, reason);
        m_answers += "}\n";
        m_context.status = ExitStatus::BadInput;
    }

    void flush() {
        m_context.output.write(m_answers);
        m_answers.clear();
    }

    TextLines m_lines;
    std::string m_name;
    CommandContext& m_context;
    JsonLine m_json;
    std::string m_conditionText;
    std::optional<Condition> m_condition;
    std::string m_answers;
};

}  // namespace

void evalBatch(std::unique_ptr<Bytes> from, const std::string& name, CommandContext& context) {
    Batch(std::move(from), name, context).run();
}

}  // namespace vigil
