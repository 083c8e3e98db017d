#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/site/SiteFile.hpp"

namespace vigil {

/// What a program that was killed had been told to be on the disk, over all rounds.
class Reported {
  public:
    /// Takes the lines of a round. What must never be, such as an effect that acted twice, is a finding.
    void take(const std::vector<std::string>& lines);

    /// What the file lacks of it; and, once the ledger has been opened, what it left open.
    void compare(const SiteFile& site);

    const std::vector<std::string>& findings() const { return m_findings; }
    std::size_t acts() const { return m_acts.size(); }

  private:
    void find(const std::string& what, RecordId id);

    std::map<RecordId, bool> m_fires;  // whether it is over
    std::map<RecordId, EffectRecord::State> m_effects;
    std::set<RecordId> m_acts;
    std::map<RecordId, long> m_archives;  // by plug-in, the last number in its archive
    std::vector<std::string> m_findings;
};

}  // namespace vigil
