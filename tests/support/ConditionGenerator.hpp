#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include "host_contract/EvaluationDictionary.hpp"
#include "tests/support/NaiveCondition.hpp"

namespace vigil::test {

/// Readings in both forms: as the code under test and as the naive judge see them.
struct GeneratedReadings {
    EvaluationDictionary readings;
    NaiveReadings naive;

    /// Without a text of its own the reading's text is its raw value, printed.
    void addNumber(const std::string& key, double value, double unitValue,
                   const std::optional<std::string>& text = std::nullopt);
    void addText(const std::string& key, const std::string& text);
    void addDate(const std::string& key, double seconds, const std::string& text);
};

/// Makes conditions and readings up. The same seed gives the same sequence.
class ConditionGenerator {
  public:
    explicit ConditionGenerator(std::uint32_t seed) : m_random(seed) {}

    /// A condition's text with odd layout, spellings and literals, out of at most `comparisons`.
    std::string text(int comparisons);
    /// Some of the keys that the texts name, with values at and round the literals.
    GeneratedReadings readings();
    /// The text with one byte taken out, put in or replaced.
    std::string damaged(std::string text);
    /// Any bytes, mostly those of which conditions are made.
    std::string bytes(std::size_t most);

    int below(int limit) { return static_cast<int>(m_random() % static_cast<std::uint32_t>(limit)); }

  private:
    std::string blanks(bool atLeastOne);
    std::string comparison();
    std::string number();
    std::string quoted();
    char anyByte();

    std::mt19937 m_random;
};

/// How much more than usual tests shall do that draw at random: 1, and with VIGIL_LONG set in the environment
/// its number, or 10 where that is none above 1.
int longFactor();

}  // namespace vigil::test
