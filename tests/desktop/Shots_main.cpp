#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QScrollArea>
#include <QScrollBar>
#include <cstdio>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/RuleView.hpp"
#include "host/desktop/StationDialog.hpp"
#include "host/desktop/Theme.hpp"
#include "tests/desktop/Stage.hpp"

// Makes the pictures of the manual: window-shots FOLDER [NAME]

namespace vigil::test {
namespace {

class Shots {
  public:
    Shots(QString folder, QString only) : m_folder(std::move(folder)), m_only(std::move(only)) {}

    void take(QWidget& widget, const char* name) {
        if (!m_only.isEmpty() && m_only != QLatin1String(name)) return;
        turn(250);
        const QString file = m_folder + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png");
        if (!widget.grab().save(file)) std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
    }

  private:
    const QString m_folder, m_only;
};

bool isShown(Stage& stage) {
    return stage.window().pane() && stage.window().pane()->view();
}

/// A script in the place of the sound: what is shown has happened, also on a machine that has no loudspeaker.
void actByScript(Stage& stage) {
    QDir().mkpath(stage.path("scripts"));
    QFile script(stage.path("scripts") + QStringLiteral("/notify.sh"));
    if (!script.open(QIODevice::WriteOnly)) return;
    script.write("#!/bin/sh\necho \"It is cold or windy on the $1.\"\n");
    script.close();
    RuleEditor& rows = *stage.window().pane()->view()->actions()->editor();
    const auto offered = rows.choices({.row = 0, .column = 0});
    for (std::size_t i = 0; i < offered.choices.size(); ++i)
        if (stringValue(offered.choices[i].displayValue) == "Run script")
            rows.choose({.row = 0, .column = 0}, static_cast<std::int64_t>(i));
    for (const DisplayValue& value : rows.displayValuesForRow(0))
        if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value))
            (*field)->setStringValue("notify.sh roof");
}

/// A window whose monitor has seen a day of weather go by.
void monitor(Stage& stage, Shots& shots) {
    SiteWindow& window = stage.open("first", /*first=*/true);
    waitUntil([&] { return isShown(stage); });
    actByScript(stage);
    turn(5000);
    shots.take(window, "first-start");
    turn(120'000);
    shots.take(window, "monitor");
    auto* scroll = window.pane()->findChild<QScrollArea*>();
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    shots.take(window, "chart");
    scroll->verticalScrollBar()->setValue(0);
    window.dock(QStringLiteral("ledger"))->show();
    window.dock(QStringLiteral("log"))->show();
    window.dock(QStringLiteral("ledger"))->raise();
    turn(600);
    shots.take(window, "ledger");
    window.dock(QStringLiteral("log"))->raise();
    shots.take(window, "log");
    window.dock(QStringLiteral("ledger"))->hide();
    window.dock(QStringLiteral("log"))->hide();
    window.dock(QStringLiteral("inspector"))->show();
    shots.take(window, "about");
    window.dock(QStringLiteral("inspector"))->hide();
    ConditionView& view = *window.pane()->view()->condition();
    view.text().field().setFocus();
    view.text().field().setPlainText(
        QStringLiteral("windChill.unitValue < 10 AND (windSpeed.unitValue > 25 OR outsideTemp.unitValue < -5 "
                       "OR nowhere.unitValue > 1)"));
    turn(300);
    window.setFocus();
    shots.take(window, "group");
    view.text().field().setFocus();
    view.text().field().setPlainText(QStringLiteral("windChill.unitValue < 10 OR windSpeed.unitValue >"));
    shots.take(window, "mistake");
    SiteWindow other({.programFolder = VIGIL_BINARY_DIR "/bin"});
    other.show();
    other.openSite(stage.path("first.vigilsite"), false);
    shots.take(other, "runs-elsewhere");
    StationDialog dialog({}, ".", &window);
    dialog.show();
    turn(2500);
    shots.take(dialog, "add-station");
}

void empty(Stage& stage, Shots& shots) {
    SiteWindow& window = stage.open("nothing", /*first=*/true);
    waitUntil([&] { return isShown(stage); });
    window.session()->removeStation(window.station());
    waitUntil([&] { return window.station() == 0; });
    shots.take(window, "no-station");
}

}  // namespace
}  // namespace vigil::test

int main(int count, char** words) {
    using namespace vigil;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(count, words);
    const QStringList given = QCoreApplication::arguments();
    if (given.size() < 2) {
        std::fprintf(stderr, "window-shots FOLDER [NAME]\n");
        return 2;
    }
    QDir().mkpath(given[1]);
    test::Shots shots(given[1], given.value(2));
    applyTheme(application, appearanceNamed(qEnvironmentVariable("VIGIL_SHOTS", "light")));
    test::Stage stage;
    test::monitor(stage, shots);
    test::empty(stage, shots);
    return 0;
}
