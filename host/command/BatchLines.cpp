#include "host/command/BatchLines.hpp"

#include <utility>

#include <simdjson.h>

#include "host/command/JsonText.hpp"
#include "host/feeds/JsonLine.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/TextLines.hpp"

namespace vigil {
namespace {

class Batch {
  public:
    Batch(std::unique_ptr<Bytes> from, std::string name, const AnswerLine& answer, CommandContext& context)
        : m_lines(std::move(from), kLongestBatchLine),
          m_name(std::move(name)),
          m_answer(answer),
          m_context(context) {}

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
        const auto answered = m_answer(parsed.value(), m_answers);
        if (!answered) refuse(answered.error().message);
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
    const AnswerLine& m_answer;
    CommandContext& m_context;
    JsonLine m_json;
    std::string m_answers;
};

}  // namespace

void answerLines(std::unique_ptr<Bytes> from, const std::string& name, const AnswerLine& answer,
                 CommandContext& context) {
    Batch(std::move(from), name, answer, context).run();
}

void answerLinesOf(const std::string& path, const AnswerLine& answer, CommandContext& context) {
    auto bytes = openBytes(path);
    if (bytes)
        return answerLines(std::move(bytes).value(), path == "-" ? "standard input" : path, answer, context);
    context.output.error(bytes.error().message);
    context.status = ExitStatus::Environment;
}

}  // namespace vigil
