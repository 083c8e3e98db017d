#pragma once

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>

#include "host/desktop/SiteWindow.hpp"

namespace vigil::test {

/// A window on a site of its own in a folder that goes with it. Main thread.
class Stage {
  public:
    Stage();
    ~Stage();

    /// Opens `name`.vigilsite of the folder.
    SiteWindow& open(const std::string& name, bool first, QSize size = {1440, 900});
    void close();
    SiteWindow& window() { return *m_window; }
    SiteSession& session() { return *m_window->session(); }
    /// What the next window runs by.
    Settings settings;
    /// Where the site of that name is: in the folder, or under its name alone where the program stands in it.
    QString file(const std::string& name) const {
        const QString named = QString::fromStdString(name + ".vigilsite");
        return QDir::current() == QDir(m_folder.path()) ? named : m_folder.filePath(named);
    }
    QString path(const std::string& name) const { return m_folder.filePath(QString::fromStdString(name)); }

  private:
    QTemporaryDir m_folder;
    std::unique_ptr<SiteWindow> m_window;
};

/// Turns the event loop until that holds; false when it has not within `milliseconds`.
bool waitUntil(const std::function<bool()>& holds, int milliseconds = 10'000);
/// Turns it for so long.
void turn(int milliseconds);

}  // namespace vigil::test
