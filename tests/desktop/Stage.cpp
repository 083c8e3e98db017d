#include "tests/desktop/Stage.hpp"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QSettings>
#include <QTimer>

#include "host/desktop/FirstSite.hpp"
#include "host/desktop/Words.hpp"

namespace vigil::test {

Stage::Stage() {
    // Nothing of the user's own is read or written.
    qputenv("HOME", m_folder.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (m_folder.path() + QStringLiteral("/config")).toUtf8());
    qputenv("XDG_DATA_HOME", (m_folder.path() + QStringLiteral("/data")).toUtf8());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.path());
    QSettings().clear();
}

Stage::~Stage() {
    close();
}

SiteWindow& Stage::open(const std::string& name, bool first, QSize size) {
    close();
    m_window = std::make_unique<SiteWindow>(SiteSession::Options{
        .programFolder = VIGIL_BINARY_DIR "/bin",
        .scriptsFolder = settings.run.scripts.empty() ? utf8(path("scripts")) : std::string(),
        .version = "1",
        .settings = settings});
    m_window->resize(size);
    m_window->show();
    const QString site = file(name);
    if (first)
        m_window->openFirstSite(site, makeFirstSite(utf8(site)));
    else
        m_window->openSite(site);
    return *m_window;
}

void Stage::close() {
    m_window.reset();
}

bool waitUntil(const std::function<bool()>& holds, int milliseconds) {
    QElapsedTimer since;
    since.start();
    while (!holds()) {
        if (since.elapsed() > milliseconds) return false;
        turn(10);
    }
    return true;
}

void turn(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace vigil::test
