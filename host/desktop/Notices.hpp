#pragma once

#include <QAction>
#include <QSystemTrayIcon>
#include <functional>
#include <map>
#include <optional>

#include "host/run/SiteStatus.hpp"

namespace vigil {

/// Tells of fires outside the window: the last one at the tray's icon, and each as a notification of the
/// desktop where the user wants that. Main thread; waits for nobody.
class Notices {
  public:
    explicit Notices(QObject* parent);

    /// Tells what has fired since the last call; of what fired before the site was opened, the tray alone.
    void look(const SiteStatus& status);
    bool isOn() const { return m_on; }
    void setOn(bool on);
    /// A press on the icon.
    std::function<void()> onPressed;

  private:
    void makeTray(QObject* parent);
    void tellTray(const QString& words, Date when);
    void notify(const QString& title, const QString& words);

    QSystemTrayIcon* m_tray = nullptr;  // absent where the desktop has none
    std::map<RecordId, Date> m_known;
    std::optional<Date> m_last;  // the fire that the tray tells, in these words
    QString m_words;
    bool m_on = true;
};

}  // namespace vigil
