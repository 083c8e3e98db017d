#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/feeds/Recorded.hpp"

namespace vigil {

/// Cuts what comes in pieces into lines at LF; a CR before it goes too, and so do lines of nothing. One
/// thread at a time.
class LineCutter {
  public:
    using Line = std::function<void(std::string_view line)>;
    using TooLong = std::function<void()>;

    /// A line of more bytes is told once, when it has become too long, and nothing of it is kept: a program
    /// that never ends its line costs no memory.
    explicit LineCutter(std::size_t longest = kLongestRow) : m_longest(longest) {}

    void take(std::string_view bytes, const Line& line, const TooLong& tooLong);
    /// What stands there is a line, though nothing ends it.
    void finish(const Line& line);
    /// What stands there, and what comes until a line ends, is part of a line whose beginning nobody saw.
    void skipRest();
    void clear();

  private:
    void give(std::string_view whole, const Line& line);

    std::size_t m_longest;
    std::string m_begun;
    bool m_skipping = false;
};

}  // namespace vigil
