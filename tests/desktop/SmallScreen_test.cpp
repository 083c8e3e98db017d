#include "tests/desktop/Windowed.hpp"

// A screen of half the usual size, or the usual one scaled to 200 %.

namespace vigil::test {
namespace {

constexpr QSize kSmall(960, 540);

class SmallScreen : public Windowed {
  protected:
    void openSmall(const char* name) {
        stage.open(name, /*first=*/true, kSmall);
        ASSERT_TRUE(waitUntil([&] { return pane() && pane()->view(); }));
    }
    void expectToFit(const char* when) {
        turn(200);
        EXPECT_LE(stage.window().width(), kSmall.width()) << when;
        EXPECT_LE(stage.window().height(), kSmall.height()) << when;
    }
};

TEST_F(SmallScreen, TheWindowStaysOnItWithEveryPane) {
    openSmall("home");
    EXPECT_FALSE(stage.window().dock("readings")->isVisible()) << "the monitor has the room at first";
    expectToFit("at first");
    for (const char* name : {"ledger", "log", "inspector"}) {
        stage.window().dock(name)->show();
        expectToFit(name);
    }
    stage.window().dock("inspector")->hide();
    stage.window().dock("readings")->show();
    expectToFit("readings");
}

TEST_F(SmallScreen, HowThePanesWereLeftIsHowTheyAreFound) {
    openSmall("home");
    stage.window().dock("readings")->show();
    stage.window().close();
    ASSERT_TRUE(waitUntil([&] { return !stage.window().isVisible(); }));
    turn(100);
    stage.open("home", /*first=*/false, kSmall);
    EXPECT_TRUE(waitUntil([&] { return stage.window().dock("readings")->isVisible(); }));
}

TEST_F(Windowed, AMonitorIsAddedWhereTheMonitorsAreAndWhereThereIsNone) {
    openFirst();
    const auto named = [&](const char* name) -> QAbstractButton* {
        for (QAbstractButton* button : stage.window().findChildren<QAbstractButton*>())
            if (button->isVisible() && (button->accessibleName() == say(name) || button->text() == say(name)))
                return button;
        return nullptr;
    };
    QAbstractButton* plus = named("Add a monitor for the chosen station");
    ASSERT_NE(plus, nullptr);
    plus->click();
    ASSERT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
    for (int left = 2; left > 0; --left) {
        const RecordId gone = stage.window().monitor();
        pane()->onDelete();
        ASSERT_TRUE(waitUntil([&] { return stage.session().site().plugIn(gone) == nullptr; }));
        waitUntil([&] { return stage.window().monitor() != gone; });
    }
    ASSERT_TRUE(waitUntil([&] { return named("Add a monitor") != nullptr; }));
    named("Add a monitor")->click();
    EXPECT_TRUE(waitUntil([&] { return chosenTitle() == "Vigil"; }));
}

}  // namespace
}  // namespace vigil::test
