#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "host/desktop/FeedPreview.hpp"
#include "host/desktop/UnitChoices.hpp"
#include "host/site/SiteRecords.hpp"

namespace vigil {

/// Asks for a station: its name, where its readings come from, its units. Main thread.
class StationDialog : public QDialog {
  public:
    /// `folder` is the site's, for feeds that name files.
    StationDialog(StationRecord record, std::string folder, QWidget* parent);
    ~StationDialog() override;
    /// As it was filled in.
    StationRecord record() const;

  private:
    void kindChosen(int index);
    void check();
    void makePreview(QVBoxLayout& column);
    void listen();

    StationRecord m_record;
    QLineEdit* m_name;
    QComboBox* m_kind;
    QLineEdit* m_feed;
    QLabel* m_help;
    QComboBox* m_units;
    QLabel* m_mistake;
    QPushButton* m_take;
    QLabel* m_heard;
    UnitChoices* m_arrives;
    QTimer m_pause;  // while somebody types an address
    std::unique_ptr<FeedPreview> m_preview;
};

}  // namespace vigil
