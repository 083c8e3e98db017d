#include <QDir>
#include <QProcess>
#include <QPushButton>

#include "host/desktop/RuleView.hpp"
#include "host/settings/SettingsFile.hpp"
#include "tests/desktop/Windowed.hpp"

// What the window really does: actions tried by hand, and what its settings say.

namespace vigil::test {
namespace {

TEST_F(Windowed, ARowThatIsTestedShowsWhatReallyCameOfIt) {
    openFirst();
    QDir().mkpath(stage.path("scripts"));
    QFile script(stage.path("scripts") + "/fails.sh");
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\necho oh no >&2\nexit 3\n");
    script.close();
    ASSERT_TRUE(view().actions()->editor()->addRow(nullptr));
    retype(*view().actions()->rowAt(1)->findChild<QLineEdit*>(), "fails.sh roof");
    press(*view().actions()->rowAt(1), "testRow");
    QLabel* result = nullptr;
    EXPECT_TRUE(waitUntil(
        [&] {
            for (QLabel* words : view().actions()->rowAt(1)->findChildren<QLabel*>())
                if (words->text().startsWith("failed")) result = words;
            return result != nullptr;
        },
        20'000));
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->text().contains("exit code 3")) << utf8(result->text());
}

TEST_F(Windowed, ATestOfSoundsAndSpeechTellsEachRowWhatCameOfIt) {
    openFirst();
    ASSERT_TRUE(view().actions()->editor()->addRow(nullptr));
    view().findChild<QPushButton*>("testButton")->click();
    auto* sound = child<QLabel>(*view().actions()->rowAt(0), "result");
    const auto ended = [&] {
        const QString words = sound->accessibleName();
        return !words.isEmpty() && words != say("under way") && words != say("nothing came of it");
    };
    ASSERT_TRUE(waitUntil(ended, 30'000)) << utf8(sound->accessibleName());
    // With a sound device it is heard, without one the ledger says why not; the row says the same.
    std::optional<EffectRecord> newest;
    stage.session().readLedger({}, [&](const auto& effects) {
        if (effects)
            for (const EffectRecord& effect : effects.value())
                if (effect.fire == 0) newest = effect;
    });
    ASSERT_TRUE(waitUntil([&] { return newest.has_value(); }));
    EXPECT_EQ(newest->kind, EffectRecord::Sound);
    EXPECT_TRUE(sound->accessibleName().startsWith(qt(newest->result))) << utf8(sound->accessibleName());
    EXPECT_EQ(sound->property("role").toString() == "error", newest->result != "succeeded");
    EXPECT_TRUE(child<QLabel>(*view().actions()->rowAt(1), "result")->text().isEmpty())
        << "a script is not heard";
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "and no dialog is in the way";
}

TEST_F(Windowed, TheScriptsOfTheSettingsAreTheOnesThatRun) {
    stage.settings.run.scripts = utf8(stage.path("elsewhere"));
    openFirst();
    QDir().mkpath(stage.path("elsewhere"));
    QFile script(stage.path("elsewhere") + "/seven.sh");
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nexit 7\n");
    script.close();
    ASSERT_TRUE(view().actions()->editor()->addRow(nullptr));
    retype(*view().actions()->rowAt(1)->findChild<QLineEdit*>(), "seven.sh");
    press(*view().actions()->rowAt(1), "testRow");
    auto* result = child<QLabel>(*view().actions()->rowAt(1), "result");
    EXPECT_TRUE(waitUntil([&] { return result->text().contains("exit code 7"); }, 20'000))
        << utf8(result->text());
}

TEST_F(Windowed, TheProgramOpensTheSiteOfTheSettings) {
    const QString site = stage.path("set.vigilsite");
    QDir().mkpath(stage.path("config/vigil"));
    QFile file(QString::fromStdString(defaultSettingsFile()));
    ASSERT_TRUE(file.fileName().startsWith(stage.path(""))) << utf8(file.fileName());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(("[site]\nfile = \"" + site + "\"\n").toUtf8());
    file.close();
    QProcess program;
    program.start(VIGIL_BINARY_DIR "/bin/vigil-window", QStringList());
    ASSERT_TRUE(program.waitForStarted());
    EXPECT_TRUE(waitUntil(
        [&] {
            const auto told = SiteSocket::ask(utf8(site), "status");
            return told && told.value().find("Simulated station") != std::string::npos;
        },
        20'000));
    program.terminate();
    EXPECT_TRUE(program.waitForFinished());
}

}  // namespace
}  // namespace vigil::test
