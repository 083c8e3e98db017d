#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <memory>

#include "host/desktop/ReadingTrails.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// The readings of a station: name, value with unit, a small picture, age. Main thread.
class ReadingsModel : public QAbstractTableModel {
  public:
    enum Column { Name, Now, Trend, Age, Columns };
    static constexpr int kPoints = Qt::UserRole + 1;  ///< a pointer to the trail's points

    /// `trails` is the caller's and outlives the model, or is replaced before.
    void show(std::shared_ptr<const Readings> readings, const ReadingTrails* trails, Date now);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// The reading's key.
    std::string keyAt(int row) const;

  private:
    const AgentProperty& readingAt(int row) const;
    QString ageAt(int row) const;

    std::shared_ptr<const Readings> m_readings = Readings::make({});
    const ReadingTrails* m_trails = nullptr;
    Date m_now;
};

class ReadingsTable : public QTableView {
  public:
    explicit ReadingsTable(QWidget* parent = nullptr);
    ReadingsModel& readings() { return m_model; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    ReadingsModel m_model;
};

}  // namespace vigil
