#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/RuleView.hpp"
#include "tests/desktop/Windowed.hpp"

namespace vigil::test {
namespace {

TEST_F(Windowed, AFirstSiteIsLiveAtOnceAndItsMonitorFires) {
    openFirst();
    auto* readings = stage.window().findChild<ReadingsTable*>();
    ASSERT_TRUE(waitUntil([&] { return readings->model()->rowCount() > 10; }));
    EXPECT_TRUE(waitUntil([&] { return status("Cold or windy").fired > 0; }, 60'000));
    EXPECT_TRUE(waitUntil([&] {
        return pane()->findChild<QLabel*>("monitorState")->text().startsWith(say("FIRED at %1").left(8));
    }));
}

TEST_F(Windowed, EachPressInTheToolbarMakesAMonitorOfItsOwnTitleAndSelectsIt) {
    openFirst();
    pressVigil();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
    pressVigil();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil 2"; }));
    EXPECT_EQ(view().condition()->text().field().toPlainText(),
              "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    EXPECT_EQ(status("Vigil 2").state, "not active");
}

TEST_F(Windowed, TheSwitchIsTurnedByStopSetStart) {
    openFirst();
    QCheckBox* activate = view().activate();
    ASSERT_TRUE(activate->isChecked());
    EXPECT_NE(status("Cold or windy").state, "not active");
    QTest::mouseClick(activate, Qt::LeftButton, {}, QPoint(8, activate->height() / 2));
    EXPECT_FALSE(activate->isChecked());
    EXPECT_EQ(status("Cold or windy").state, "not active");
    const auto counted = [&] { return status("Cold or windy").missed + status("Cold or windy").waiting; };
    EXPECT_TRUE(waitUntil([&] {
        const auto file = SiteFile::open(utf8(stage.path("home.vigilsite")), Access::Read);
        return file &&
               file.value()->plugInTitled("Cold or windy").value()->archive.find("\"evaluating\": false") !=
                   std::string::npos;
    })) << "the switch is written down at once";
    const auto before = counted();
    turn(2500);
    EXPECT_EQ(counted(), before) << "one that rests hears of no readings";
    activate->setFocus();
    QTest::keyClick(activate, Qt::Key_Space);
    EXPECT_TRUE(activate->isChecked());
    EXPECT_TRUE(waitUntil([&] {
        const auto file = SiteFile::open(utf8(stage.path("home.vigilsite")), Access::Read);
        return file &&
               file.value()->plugInTitled("Cold or windy").value()->archive.find("\"evaluating\": true") !=
                   std::string::npos;
    }));
    EXPECT_TRUE(waitUntil([&] { return counted() > before; })) << "and one that is switched on hears of them";
}

TEST_F(Windowed, WhatIsEditedIsThereAfterAnEndWithoutAWord) {
    openFirst();
    retype(*child<QLineEdit>(*view().condition()->rowAt(1), "value"), "-7");
    auto* interval = view().findChild<QDoubleSpinBox*>();
    interval->setValue(2.5);
    view().findChild<QCheckBox*>("onlyOnChange")->setChecked(true);
    ASSERT_TRUE(view().actions()->editor()->addRow(nullptr));
    const std::string path = utf8(stage.path("home.vigilsite"));
    const auto archived = [&]() -> std::string {
        const auto file = SiteFile::open(path, Access::Read);
        if (!file) return "";
        const auto record = file.value()->plugInTitled("Cold or windy");
        return record && record.value() ? record.value()->archive : "";
    };
    // Not closed: the file holds it by itself.
    EXPECT_TRUE(waitUntil([&] {
        const std::string archive = archived();
        return archive.find("windChill.unitValue < -7") != std::string::npos &&
               archive.find("\"retriggerInterval\": 2.5") != std::string::npos &&
               archive.find("\"triggerOnlyOnChange\": true") != std::string::npos &&
               archive.find("RunScriptCriterion") != std::string::npos;
    })) << archived();
    stage.close();
    stage.open("home", false);
    ASSERT_TRUE(waitUntil([&] { return pane() && pane()->view(); }));
    EXPECT_EQ(child<QLineEdit>(*view().condition()->rowAt(1), "value")->text(), "-7");
    EXPECT_EQ(view().findChild<QDoubleSpinBox*>()->value(), 2.5);
    EXPECT_EQ(view().actions()->editor()->numberOfRows(), 2);
}

TEST_F(Windowed, ADeletedMonitorComesBackAsItWas) {
    openFirst();
    pressVigil();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
    retype(*child<QLineEdit>(*view().condition()->rowAt(1), "value"), "3");
    const RecordId gone = stage.window().monitor();
    pane()->onDelete();
    ASSERT_TRUE(waitUntil([&] { return stage.session().site().plugIn(gone) == nullptr; }));
    for (QAction* action : stage.window().findChildren<QAction*>())
        if (action->text().contains("\"Vigil\"")) action->trigger();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
    EXPECT_EQ(view().condition()->text().field().toPlainText(),
              "windChill.unitValue < 3 OR windSpeed.unitValue > 25");
}

TEST_F(Windowed, ARenamedMonitorKeepsRunningAndATakenTitleIsRefused) {
    openFirst();
    const RecordId id = stage.window().monitor();
    const QRVPlugIn* before = stage.session().site().plugIn(id)->plugIn().get();
    ASSERT_TRUE(stage.session().site().setTitle(id, "Storm"));
    EXPECT_EQ(stage.session().site().plugIn(id)->plugIn().get(), before);
    pressVigil();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
    EXPECT_FALSE(stage.session().site().setTitle(id, "Vigil"));
    EXPECT_FALSE(stage.session().site().setTitle(id, ""));
    EXPECT_TRUE(waitUntil([&] {
        const auto file = SiteFile::open(utf8(stage.path("home.vigilsite")), Access::Read);
        return file && file.value()->plugInTitled("Storm").value().has_value();
    }));
}

TEST_F(Windowed, ASecondOpeningSaysWhoRunsTheSite) {
    openFirst();
    const auto second = SiteFile::open(utf8(stage.path("home.vigilsite")), Access::Write);
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().kind, SiteError::Kind::Locked);
    SiteWindow other({.programFolder = VIGIL_BINARY_DIR "/bin"});
    other.show();
    other.openSite(stage.path("home.vigilsite"));
    EXPECT_EQ(other.session(), nullptr);
    bool said = false;
    for (QLabel* words : other.findChildren<QLabel*>())
        said = said || words->text().contains("runs this site");
    EXPECT_TRUE(said);
}

TEST_F(Windowed, ExplainTellsInTheStatus) {
    openFirst();
    ASSERT_TRUE(
        waitUntil([&] { return status("Cold or windy").missed + status("Cold or windy").fired > 0; }));
    retype(*child<QLineEdit>(*view().condition()->rowAt(1), "value"), "99");
    view().findChild<QPushButton*>("explainButton")->click();
    auto* shown = view().findChild<QPlainTextEdit*>("status");
    EXPECT_TRUE(waitUntil([&] { return shown->toPlainText().startsWith("Alert was caused by Wind Chill"); }))
        << utf8(shown->toPlainText());
}

TEST_F(Windowed, NothingScrollsSidewaysWithGroupsInGroupsAndLongNames) {
    openFirst();
    const RecordId id = stage.window().monitor();
    const QString title("Frost on the upper terrace behind the greenhouse, or a storm from the north-west");
    ASSERT_TRUE(stage.session().site().setTitle(id, utf8(title)));
    view().condition()->text().field().setFocus();
    view().condition()->text().field().setPlainText(
        "windChill.unitValue < 10 AND (windSpeed.unitValue > 25 OR (barometerSeaLevel.unitValue < 990 AND "
        "aReadingOfALongNameThatIsNotThere.unitValue > 1))");
    ASSERT_TRUE(waitUntil([&] { return view().condition()->rowAt(6) != nullptr; }));
    ASSERT_EQ(view().condition()->rowAt(6)->row().depth, 3u);
    ASSERT_TRUE(view().actions()->editor()->addRow(nullptr));
    view().actions()->rowAt(0)->setResult(QString("failed: it was too long ").repeated(20), /*failed=*/true);
    for (const int width : {1440, 1200, 1440}) {
        stage.window().resize(width, 900);
        turn(300);
        EXPECT_EQ(stage.window().width(), width) << "its contents make it no wider";
        auto* scroll = pane()->findChild<QScrollArea*>();
        EXPECT_EQ(scroll->horizontalScrollBar()->maximum(), 0) << "at " << width;
        EXPECT_GT(scroll->viewport()->width(), 300);
        EXPECT_EQ(view().condition()->text().field().verticalScrollBar()->maximum(), 0)
            << "the text grows instead";
        auto* now = child<QLabel>(*view().condition()->rowAt(1), "now");
        EXPECT_LE(now->fontMetrics().horizontalAdvance(now->text()), now->width());
        EXPECT_GE(child<QComboBox>(*view().condition()->rowAt(6), "reading")->width(), 70);
    }
}

}  // namespace
}  // namespace vigil::test
