#pragma once

#include <QTableWidget>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host_contract/Readings.hpp"

namespace vigil {

/// The readings of a station with the unit that each is read in, to be chosen among those that fit. Main
/// thread.
class UnitChoices : public QTableWidget {
  public:
    using Chosen = std::vector<std::pair<std::string, std::string>>;

    explicit UnitChoices(QWidget* parent = nullptr);
    /// What is chosen from the start.
    void setChosen(Chosen chosen) { m_chosen = std::move(chosen); }
    /// What differs from the station's system of units.
    const Chosen& chosen() const { return m_chosen; }
    /// Adds rows for readings that are new, and shows what they are now.
    void show(const Readings& readings);

  private:
    int addRow(const AgentProperty& reading);

    Chosen m_chosen;
    std::vector<std::string> m_keys;
};

}  // namespace vigil
