#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "benchmarks/ConditionWorkload.hpp"
#include "host_contract/QRVLog.hpp"
#include "platform/Date.hpp"

namespace vigil::bench {

/// A reading as a program holds it that was written for one purpose: all its texts are there.
struct PlainReading {
    std::string key;
    std::string name;
    std::string text;
    std::string unit;
    double value = 0;
    double unitValue = 0;
    Date time;
};

/// The frames of the workload in that form.
std::vector<std::vector<PlainReading>> plainFrames(const Workload& work);

/// The monitor that a decent programmer writes in an afternoon: a dictionary of pointers by name, the line
/// with snprintf, the snapshot assigned into a map, so that its strings keep their memory; the condition is
/// compiled in. It keeps no status text. One thread.
class DecentMonitor {
  public:
    /// Without a wait after a fire, so that every cycle judges.
    DecentMonitor(QRVLog& log, bool onlyOnChange) : m_log(log), m_onlyOnChange(onlyOnChange) {}

    /// One cycle. Whether the condition held.
    bool cycle(const std::vector<PlainReading>& readings);

    const std::unordered_map<std::string, PlainReading>& snapshot() const { return m_snapshot; }

  private:
    using Dictionary = std::unordered_map<std::string_view, const PlainReading*>;
    bool counts(const PlainReading& reading) const;
    void writeLine(const Dictionary& dictionary);

    QRVLog& m_log;
    const bool m_onlyOnChange;
    Date m_next = Date::distantPast();
    std::unordered_map<std::string, PlainReading> m_snapshot;
    std::string m_line;
};

}  // namespace vigil::bench
