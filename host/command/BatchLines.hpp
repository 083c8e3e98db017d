#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/command/CommandContext.hpp"
#include "host/feeds/Bytes.hpp"
#include "platform/Result.hpp"

namespace simdjson::dom {
class element;
}

namespace vigil {

/// The longest condition with each of its bytes written as an escape, and as much again of readings.
inline constexpr std::size_t kLongestBatchLine = std::size_t{16} << 20;

/// Appends the answer to a line, with a line's end; or says why the line is none.
using AnswerLine = std::function<Result<Done>(const simdjson::dom::element& line, std::string& answers)>;

/// JSON lines in, one answer a line out, in the same order; lines of blanks are passed over. A line that is
/// none is told on the error stream with its number, answered {"ok":false,"line":N,"error":…}, and makes the
/// status BadInput in the end. `name` is what the errors call the source.
void answerLines(std::unique_ptr<Bytes> from, const std::string& name, const AnswerLine& answer,
                 CommandContext& context);

/// The same for a file, or "-" for the standard input; one that cannot be opened is told.
void answerLinesOf(const std::string& path, const AnswerLine& answer, CommandContext& context);

}  // namespace vigil
