#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "conditions/ConditionNode.hpp"
#include "host/command/Output.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// Notices the readings that a condition asks for and that no notification held: most often a name that was
/// mistyped, since an absent reading makes its comparison false without a word.
class AbsentReadings {
  public:
    explicit AbsentReadings(const ConditionNode& condition);

    void note(const Readings& readings);
    /// Says on the error stream which never came and which there are. Silent where nothing was noted.
    void tell(Output& output) const;

  private:
    std::set<std::string> m_asked;
    std::set<std::string> m_there;
    std::optional<std::uint64_t> m_last;  // the table that was noted last
};

}  // namespace vigil
