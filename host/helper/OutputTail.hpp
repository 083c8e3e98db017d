#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vigil {

/// The end of what a script writes; the rest is counted and forgotten.
class OutputTail {
  public:
    void append(std::string_view bytes);

    std::uint64_t bytes() const { return m_bytes; }
    /// Whether `lastLines` leaves something out.
    bool truncated() const;
    /// The last whole lines that fit `kLastLines` bytes, or the end of the last line where it alone does not.
    /// What is not UTF-8 and control characters other than line ends and tabs read as "?".
    std::string lastLines() const;

  private:
    std::string_view window() const;

    std::string m_tail;
    std::uint64_t m_bytes = 0;
};

}  // namespace vigil
