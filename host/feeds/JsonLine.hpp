#pragma once

#include <memory>
#include <string_view>

#include "platform/Result.hpp"

namespace simdjson::dom {
class element;
class parser;
}  // namespace simdjson::dom

namespace vigil {

/// Parses one line of JSON after another. One thread at a time.
class JsonLine {
  public:
    /// Objects and lists stand inside each other at most so deep. Stops a line of nothing but brackets.
    static constexpr std::size_t kDeepest = 64;

    JsonLine();
    ~JsonLine();

    /// The element is valid until the next call. Behind `text`, `TextLines::kPadding` bytes must be
    /// readable, as they are behind what TextLines gives. Numbers that no double holds, invalid UTF-8 and
    /// anything behind the value are errors.
    Result<simdjson::dom::element> parse(std::string_view text);

  private:
    std::unique_ptr<simdjson::dom::parser> m_parser;
};

}  // namespace vigil
