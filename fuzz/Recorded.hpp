#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "conditions/ConditionPredicate.hpp"
#include "fuzz/Law.hpp"
#include "host/feeds/Bytes.hpp"
#include "host/feeds/OpenRecorded_Bytes.hpp"

// The laws of every reader of recorded data.

namespace vigil::fuzz {

/// Gives a text in pieces of so many bytes.
class Pieces final : public Bytes {
  public:
    Pieces(std::string_view text, std::size_t piece) : m_rest(text), m_piece(piece) {}
    Result<std::size_t> read(char* to, std::size_t most) override {
        const std::size_t count = std::min({most, m_piece, m_rest.size()});
        m_rest.copy(to, count);
        m_rest.remove_prefix(count);
        return count;
    }

  private:
    std::string_view m_rest;
    std::size_t m_piece;
};

using OpenBytes = std::function<Opened(std::unique_ptr<Bytes>, ProblemTeller)>;

/// Everything that a source says, as text; the laws of each notification hold.
inline std::string eventsOf(std::string_view text, std::size_t piece, bool ordered, const OpenBytes& open) {
    std::string events;
    auto opened = open(std::make_unique<Pieces>(text, piece), [&events](const FeedProblem& problem) {
        require(problem.line > 0 && !problem.message.empty(), "a problem has a line and a message");
        (events += std::to_string(problem.line) += ' ') += problem.message + '\n';
    });
    if (!opened) {
        require(!opened.error().message.empty(), "a refusal says why");
        return events + opened.error().message;
    }
    std::map<std::string, Date> last;
    for (;;) {
        const auto next = opened.value()->next();
        require(static_cast<bool>(next), "bytes in memory never fail");
        if (!next.value()) return events;
        const RecordedNotification& one = *next.value();
        require(one.readings && one.line > 0, "a notification has readings and a line");
        require(one.readings->table()->size() <= kMostKeysOfStation, "a station's keys are bounded");
        const auto [before, first] = last.try_emplace(one.station, one.time);
        require(first || !ordered || !(one.time < before->second), "times of a station never go back");
        before->second = one.time;
        for (const AgentProperty& reading : one.readings->entries())
            require(static_cast<bool>(
                        ConditionPredicate::predicateWithFormat(reading.propertyName() + ".unitValue < 1")),
                    "every key is one of the condition language");
        (events += std::to_string(one.line) += ' ') += one.station;
        (events += ' ') += one.time.isoText(3);
        (events += ' ') += one.readings->description() + '\n';
    }
}

inline void requireSameInAnyPieces(std::string_view text, bool ordered, const OpenBytes& open) {
    const std::string whole = eventsOf(text, text.size() + 1, ordered, open);
    require(eventsOf(text, 1, ordered, open) == whole, "it makes no difference in which pieces bytes come");
}

}  // namespace vigil::fuzz
