#include "host/command/AbsentReadings.hpp"

#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/command/KeyNote.hpp"

namespace vigil {
namespace {

/// Names that are listed; a station with hundreds of readings needs no page of them.
constexpr std::size_t kMostListed = 30;

}  // namespace

AbsentReadings::AbsentReadings(const ConditionNode& condition) : m_asked(keysOf(condition)) {}

void AbsentReadings::note(const Readings& readings) {
    const KeyTable& table = *readings.table();
    if (table.id() == m_last) return;
    m_last = table.id();
    m_there.insert(table.keys().begin(), table.keys().end());
}

void AbsentReadings::tell(Output& output) const {
    std::vector<std::string> absent;
    for (const std::string& key : m_asked)
        if (!m_there.contains(key)) absent.push_back(key);
    if (absent.empty() || m_there.empty()) return;
    std::vector<std::string> listed(m_there.begin(), m_there.end());
    const bool isLong = listed.size() > kMostListed;
    if (isLong) listed.resize(kMostListed);
    output.error(fmt::format("no notification held the reading{} {}; there are: {}{}",
                             absent.size() == 1 ? "" : "s", fmt::join(absent, ", "), fmt::join(listed, ", "),
                             isLong ? ", …" : ""));
}

}  // namespace vigil
