#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "host/feeds/Recorded.hpp"

namespace vigil {

/// Cuts what comes in pieces into lines at LF; a CR before it goes too, and so do lines of nothing. One
/// thread at a time.
class LineCutter {
  public:
    /// Gives whether the next line may follow now.
    using Line = std::function<bool(std::string_view line)>;
    using TooLong = std::function<void()>;

    /// A line of more bytes than `longest` is told once, when it has become too long, and nothing of it is
    /// kept: a program that never ends its line costs no memory.
    LineCutter(Line line, TooLong tooLong, std::size_t longest = kLongestRow)
        : m_line(std::move(line)), m_tooLong(std::move(tooLong)), m_longest(longest) {}

    /// Gives whether all has been cut. Else the rest is kept, and nothing may be given before `goOn` has cut
    /// it.
    bool take(std::string_view bytes);
    /// Cuts what was kept; the same answer.
    bool goOn();
    /// What stands there is a line, though nothing ends it.
    void finish();
    /// What stands there, and what comes until a line ends, is part of a line whose beginning nobody saw.
    void skipRest();
    void clear();

  private:
    bool give(std::string_view whole);
    bool giveBegun();

    const Line m_line;
    const TooLong m_tooLong;
    const std::size_t m_longest;
    std::string m_begun;  // a line without its end
    std::string m_kept;   // not yet cut
    bool m_skipping = false;
};

}  // namespace vigil
