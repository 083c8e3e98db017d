#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/kit/KeyedArchive.hpp"
#include "platform/Value.hpp"

namespace vigil {

/// An archive's text while it grows, with the path of what is being written, the limits, and the first thing
/// that went wrong. Main thread.
class ArchiveOutput {
  public:
    explicit ArchiveOutput(const ArchiveLimits& limits) : m_limits(limits) {}

    /// Where the writing stands; whoever extends it shortens it again.
    std::string path;
    std::string text;

    const std::optional<Error>& error() const { return m_error; }
    bool failed() const { return m_error.has_value(); }
    /// The first failure counts; answers false.
    bool fail(const std::string& reason);
    bool failAt(std::string_view key, const std::string& reason);

    /// Counts JSON values, as a reader will.
    void count(std::size_t values);
    void countObject(std::size_t objects);
    void checkLength();
    /// Whether so many levels may be inside each other.
    bool mayNest(std::size_t levels);

    void newLine(std::size_t level);
    /// The separator, the line break, the name and the colon of an entry.
    void beginEntry(std::string_view key, bool first, std::size_t level);
    /// Anything that is no list, dictionary or object. Answers how many levels of JSON objects it opened.
    std::size_t writeScalar(const Value& value);
    void extendPath(std::string_view key);

  private:
    std::size_t writeReal(double value);
    std::size_t writeText(const std::string& content);

    const ArchiveLimits& m_limits;
    std::optional<Error> m_error;
    std::size_t m_values = 0;
};

}  // namespace vigil
