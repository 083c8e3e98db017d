#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/core.h>

namespace vigil {

/// Where a command writes: results buffered to one stream, errors at once to another. Streams are the
/// caller's. One thread at a time.
class Output {
  public:
    Output(std::FILE* results, std::FILE* errors) : m_results(results), m_errors(errors) {}

    void write(std::string_view text);

    /// `output.print("{} of {}\n", done, all);`
    template <class... Arguments>
    void print(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        write(fmt::format(format, std::forward<Arguments>(arguments)...));
    }

    /// "vigil: TEXT" and a line's end, after all results so far.
    void error(std::string_view text);

    /// Error texts as they are, for a caret under a condition.
    void errorText(std::string_view text);

    /// Sends everything on its way. False when some of the results could not be written (a full disk), now or
    /// before.
    bool flush();

    /// Whether results go to a terminal.
    bool isTerminal() const;
    bool errorsGoToTerminal() const;

  private:
    std::FILE* m_results;
    std::FILE* m_errors;
    bool m_failed = false;
};

}  // namespace vigil
