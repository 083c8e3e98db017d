#include <QCommandLineParser>
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
#include "tests/desktop/Longer.hpp"
#include "tests/desktop/Stage.hpp"

// Makes the pictures of the manual.

namespace vigil::test {
namespace {

class Shots {
  public:
    /// Without `only` all of them; the window is of that size, and the chart shows so many milliseconds.
    Shots(QString folder, QString only, QSize size, int patience)
        : m_folder(std::move(folder)), m_only(std::move(only)), m_size(size), m_patience(patience) {}

    QSize size() const { return m_size; }
    int patience() const { return m_patience; }

    void take(QWidget& widget, const char* name) {
        if (!m_only.isEmpty() && m_only != QLatin1String(name)) return;
        turn(250);
        const QString file = m_folder + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png");
        if (!widget.grab().save(file)) std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
    }

  private:
    const QString m_folder, m_only;
    const QSize m_size;
    const int m_patience;
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
    SiteWindow& window = stage.open("home", /*first=*/true, shots.size());
    waitUntil([&] { return isShown(stage); });
    actByScript(stage);
    turn(5000);
    shots.take(window, "first-start");
    turn(shots.patience());
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
    other.resize(shots.size());
    other.show();
    other.openSite("home.vigilsite");
    shots.take(other, "runs-elsewhere");
    StationDialog dialog({}, ".", &window);
    dialog.show();
    turn(2500);
    shots.take(dialog, "add-station");
}

void empty(Stage& stage, Shots& shots) {
    SiteWindow& window = stage.open("new", /*first=*/true, shots.size());
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
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("FOLDER", "Where the pictures go");
    parser.addPositionalArgument("NAME", "The only one to be made", "[NAME]");
    const QCommandLineOption look("appearance", "light or dark", "NAME", "light");
    const QCommandLineOption longer("longer", "Words that are longer by two fifths");
    const QCommandLineOption size("size", "Of the window, in points", "WIDTHxHEIGHT", "1440x900");
    const QCommandLineOption seconds("seconds", "Weather that the chart shows", "COUNT", "120");
    const QCommandLineOption letters("letters", "Their size", "POINTS");
    parser.addOptions({look, longer, size, seconds, letters});
    parser.process(application);
    const QStringList given = parser.positionalArguments();
    const QStringList sides = parser.value(size).split('x');
    if (given.isEmpty() || sides.size() != 2) parser.showHelp(2);
    const QDir folder(given[0]);
    folder.mkpath(".");
    test::Shots shots(folder.absolutePath(), given.value(1), {sides[0].toInt(), sides[1].toInt()},
                      parser.value(seconds).toInt() * 1000);
    test::Longer longerWords;
    if (parser.isSet(longer)) QCoreApplication::installTranslator(&longerWords);
    applyTheme(application, appearanceNamed(parser.value(look)));
    if (parser.isSet(letters)) {
        QFont font = application.font();
        font.setPointSizeF(parser.value(letters).toDouble());
        application.setFont(font);
    }
    test::Stage stage;
    // A path in a picture is the file's name alone.
    QDir::setCurrent(stage.path(""));
    test::monitor(stage, shots);
    test::empty(stage, shots);
    QDir::setCurrent("/");
    return 0;
}
