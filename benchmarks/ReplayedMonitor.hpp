#pragma once

#include <memory>
#include <string>
#include <vector>

#include "benchmarks/MemoryLog.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/CycleObserver.hpp"
#include "host_contract/QRVPlugIn.hpp"

namespace vigil::bench {

/// A monitor of the built module in a world of recorded readings, log off, which takes down when it fires.
class ReplayedMonitor {
  public:
    /// The module must be loaded. `minutes` is the wait after a fire.
    ReplayedMonitor(const std::string& condition, double minutes, bool onlyOnChange);
    ~ReplayedMonitor();

    /// Ends the program where the monitor fails.
    void show(Date when, const std::shared_ptr<const Readings>& batch);
    /// In seconds since 2001.
    const std::vector<double>& fires() const;

  private:
    class Fires;

    MemoryLog m_log{false};
    InterfaceFile m_files;
    ReplayWorld m_world{m_log, m_files, ""};
    RecordedScripts m_scripts{m_world};
    std::shared_ptr<Station> m_station = std::make_shared<Station>(m_world, "Roof", m_scripts);
    std::shared_ptr<Fires> m_fires;
    std::shared_ptr<QRVPlugIn> m_monitor;
};

}  // namespace vigil::bench
