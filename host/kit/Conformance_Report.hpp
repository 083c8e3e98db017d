#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/kit/Conformance.hpp"

namespace vigil {

/// Collects findings about one subject.
class ConformanceReport {
  public:
    ConformanceReport(std::vector<ConformanceFinding>& findings, std::string subject)
        : m_findings(findings), m_subject(std::move(subject)) {}

    /// `judge` gives the reason why the rule is broken, or an empty text; what it throws is a reason, too.
    void check(std::string rule, const std::function<std::string()>& judge);
    void skip(std::string rule, std::string reason);
    const std::string& subject() const { return m_subject; }

  private:
    std::vector<ConformanceFinding>& m_findings;
    const std::string m_subject;
};

}  // namespace vigil
