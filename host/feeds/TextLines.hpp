#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/feeds/Bytes.hpp"
#include "host/feeds/Recorded.hpp"

namespace vigil {

/// Cuts bytes into lines at LF (a CR before it goes too). A byte order mark in front is skipped. One thread
/// at a time.
class TextLines {
  public:
    TextLines(std::unique_ptr<Bytes> from, std::size_t longest = kLongestRow)
        : m_from(std::move(from)), m_longest(longest) {}

    enum class Found { Line, TooLong, End };
    /// Reads the next line; of one that is too long nothing is kept. As soon as a line is there it is given,
    /// whatever follows.
    Found next();
    /// The line that was found, without its end. Behind it `kPadding` bytes may be read.
    std::string_view text() const { return m_text; }
    /// From 1.
    std::size_t line() const { return m_line; }
    /// Absent unless the environment failed, which reads as an end.
    const std::optional<Error>& failure() const { return m_failure; }

    static constexpr std::size_t kPadding = 64;

  private:
    bool refill();
    Found found(std::string_view text);
    Found foundTooLong();

    std::unique_ptr<Bytes> m_from;
    std::size_t m_longest;
    std::string m_buffer;  // m_at to m_end are bytes not yet given
    std::size_t m_at = 0;
    std::size_t m_end = 0;
    std::string_view m_text;
    std::size_t m_line = 0;
    std::optional<Error> m_failure;
    bool m_ended = false;
};

}  // namespace vigil
