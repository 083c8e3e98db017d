#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QPixmap>
#include <QSettings>
#include <clocale>
#include <cstdio>
#include <string>

#include "host/desktop/FirstSite.hpp"
#include "host/desktop/Icons.hpp"
#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"
#include "host/run/SiteSocket.hpp"
#include "host/settings/SettingsFile.hpp"
#include "host/setup/EffectiveSettings.hpp"
#include "host/site/SiteLock.hpp"

namespace vigil {
namespace {

/// A second start on the same site shows the window that is there.
bool isShownElsewhere(const std::string& path) {
    if (SiteLock::holder(path) == 0) return false;
    const auto shown = SiteSocket::ask(path, "show");
    return shown && shown.value().find("\"shown\":true") != std::string::npos;
}

/// A mistake in them is no reason to show no window; it stands in its log, and all are defaults.
void readSettingsInto(SiteSession::Options& options) {
    const std::string file = defaultSettingsFile();
    auto reading = readSettings(file);
    if (!reading) {
        options.mistakes.push_back(reading.error().message);
        return;
    }
    for (const SettingsProblem& problem : reading.value().problems)
        options.mistakes.push_back(problemText(file, problem));
    if (options.mistakes.empty()) options.settings = std::move(reading).value().settings;
}

int run(QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(say("The window of a site."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("SITE"), say("The site's file"));
    const QCommandLineOption site(QStringLiteral("site"), say("The site's file"), QStringLiteral("FILE"));
    const QCommandLineOption look(QStringLiteral("appearance"), say("auto, light or dark"),
                                  QStringLiteral("NAME"));
    const QCommandLineOption noHistory(QStringLiteral("no-history"), say("Keep no history of readings"));
    const QCommandLineOption scripts(QStringLiteral("scripts"), say("The folder of the scripts"),
                                     QStringLiteral("FOLDER"));
    parser.addOptions({site, look, noHistory, scripts});
    parser.process(application);
    const QStringList given = parser.positionalArguments();
    SiteSession::Options options{.programFolder = utf8(QCoreApplication::applicationDirPath()),
                                 .scriptsFolder = utf8(parser.value(scripts)),
                                 .version = VIGIL_VERSION,
                                 .history = !parser.isSet(noHistory)};
    readSettingsInto(options);
    const std::string path = parser.isSet(site) ? utf8(parser.value(site))
                             : !given.isEmpty() ? utf8(given[0])
                                                : effective(options.settings).site.file;
    if (isShownElsewhere(path)) {
        std::fprintf(stderr, "vigil-window: %s is open already; its window is shown\n", path.c_str());
        return 0;
    }
    auto made = makeFirstSiteMeanwhile(path);
    const QString appearance =
        parser.isSet(look)
            ? parser.value(look)
            : QSettings().value(QLatin1String(kAppearanceKey), QStringLiteral("auto")).toString();
    applyTheme(application, appearanceNamed(appearance));
    application.setWindowIcon(icon(QStringLiteral("vigil")));
    SiteWindow window(std::move(options));
    window.show();
    window.openFirstSite(qt(path), made.get());
    return application.exec();
}

}  // namespace
}  // namespace vigil

int main(int count, char** words) {
    QApplication application(count, words);
    // Numbers of conditions and feeds are read as the language writes them, whatever the user's locale.
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setOrganizationName(QStringLiteral("vigil"));
    QCoreApplication::setApplicationName(QStringLiteral("vigil-window"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VIGIL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("vigil"));
    QApplication::setQuitOnLastWindowClosed(false);
    return vigil::run(application);
}
