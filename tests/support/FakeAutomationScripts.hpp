#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/AutomationScripts.hpp"
#include "tests/support/EffectJournal.hpp"

namespace vigil {

/// Automation scripts that are written down. Journal: "automate" for each. Main thread.
class FakeAutomationScripts : public AutomationScripts {
  public:
    explicit FakeAutomationScripts(EffectJournal& journal) : m_journal(journal) {}

    std::vector<std::string> sources;
    std::optional<Error> failure;  ///< what every run answers, where it is set

    Result<Done> run(const std::string& source) override;

  private:
    EffectJournal& m_journal;
};

}  // namespace vigil
