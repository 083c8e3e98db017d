#pragma once

#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <functional>
#include <memory>

#include "host/desktop/ChartCard.hpp"
#include "host/desktop/InterfaceView.hpp"
#include "host/run/SiteStatus.hpp"

namespace vigil {

/// A monitor of a site, whole: its title, how it is, and its view. Main thread.
class MonitorPane : public QWidget {
  public:
    MonitorPane(SiteSession& session, RecordId plugIn, QWidget* parent);
    ~MonitorPane() override;

    RecordId id() const { return m_id; }
    /// The object that is shown; the site may come to have another one for the same row.
    const std::shared_ptr<QRVPlugIn>& plugIn() const { return m_plugIn; }
    void refresh(const MonitorStatus& status, const std::shared_ptr<const Readings>& readings, Date now);
    /// Nothing where the plug-in's view cannot be shown.
    InterfaceView* view() const { return m_view; }
    ChartCard* chart() const { return m_chart; }

    std::function<void()> onRename, onDelete, onUndock;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    QWidget* makeHeader();
    void fitHeader();
    void makeChart(QWidget& page, QLayout& column);
    void refreshChart(Date now);

    SiteSession& m_session;
    const RecordId m_id;
    std::shared_ptr<QRVPlugIn> m_plugIn;
    InterfaceView* m_view = nullptr;
    ChartCard* m_chart = nullptr;
    QWidget* m_header = nullptr;
    QString m_titleWords, m_stateWords;
    QLabel* m_title;
    QLabel* m_state;
    QToolButton *m_undo, *m_redo;
};

}  // namespace vigil
