#include <QSettings>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/Theme.hpp"
#include "tests/desktop/Windowed.hpp"

// Another appearance is chosen while the window is open.

namespace vigil::test {
namespace {

/// The middle lightness of what a picture covers, from 0 to 255; -1 where it covers nothing.
double lightnessOf(const QPixmap& picture) {
    const QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    double sum = 0, count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) < 200) continue;
            sum += image.pixelColor(x, y).lightnessF() * 255;
            ++count;
        }
    return count > 0 ? sum / count : -1;
}

void take(SiteWindow& window, const QString& words) {
    for (QAction* action : window.findChildren<QAction*>())
        if (action->text() == words) return action->trigger();
    FAIL() << "no menu offers " << utf8(words);
}

/// Of the window's own line pictures; those of plug-ins have colours of their own.
std::vector<double> pictures(SiteWindow& window) {
    std::vector<double> found;
    for (const QToolButton* button : window.findChildren<QToolButton*>()) {
        const bool ofPlugIn = button->defaultAction() && button->defaultAction()->property("plugIn").toBool();
        if (button->icon().isNull() || !button->isEnabled() || !button->isVisible() || ofPlugIn) continue;
        found.push_back(lightnessOf(button->icon().pixmap(QSize(32, 32))));
    }
    return found;
}

TEST_F(Windowed, AnotherAppearanceReachesEveryPictureAtOnce) {
    openFirst();
    auto* verdict = child<QLabel>(*view().condition()->rowAt(1), "verdict");
    ASSERT_TRUE(waitUntil([&] { return !verdict->pixmap(Qt::ReturnByValue).isNull(); }));
    for (const auto& [words, isDark] : {std::pair{"&Dark", true}, std::pair{"&Light", false}}) {
        const auto signBefore = verdict->pixmap(Qt::ReturnByValue).cacheKey();
        take(stage.window(), say(words));
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "nothing is asked";
        const auto seen = pictures(stage.window());
        EXPECT_GT(seen.size(), 12u);
        for (const double one : seen) {
            ASSERT_GE(one, 0) << "an empty picture";
            EXPECT_EQ(one > 128, isDark) << words << ": " << one;
        }
        const double ground = lightnessOf(stage.window().findChild<QToolBar*>("tools")->grab());
        EXPECT_EQ(ground < 128, isDark) << ground;
        EXPECT_TRUE(waitUntil([&] { return verdict->pixmap(Qt::ReturnByValue).cacheKey() != signBefore; }))
            << "the signs of comparisons too";
    }
    EXPECT_EQ(QSettings().value(kAppearanceKey).toString(), "light") << "and it is kept";
}

}  // namespace
}  // namespace vigil::test
