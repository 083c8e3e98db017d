#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "conditions/editor/PredicateEditor.hpp"
#include "tests/support/EditorBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class Observing : public testing::Test, public EditorBench {};

TEST_F(Observing, EditsAreHeardBeforeViewsAndEachSeesTheWholeChange) {
    std::vector<std::string> heard;
    const auto view = editor->observe([&] { heard.push_back("view " + says()); });
    const auto monitor = editor->observeEdits([&] { heard.push_back("edit " + says()); });
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_THAT(heard, ElementsAre("edit windChill.unitValue == 0", "view windChill.unitValue == 0"));
}

TEST_F(Observing, AnObserverMayEditAndAllEndWithTheLaterState) {
    std::vector<std::string> heard;
    bool first = true;
    const auto hasty = editor->observeEdits([&] {
        if (std::exchange(first, false)) {
            EXPECT_TRUE(editor->setValueText(1, "7"));
        }
    });
    const auto monitor = editor->observeEdits([&] { heard.push_back(says()); });
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_THAT(heard, ElementsAre("windChill.unitValue == 7", "windChill.unitValue == 7"));
}

TEST_F(Observing, AnObserverMayRemoveTheRowThatWasEdited) {
    show("windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    bool first = true;
    const auto hasty = editor->observeEdits([&] {
        if (std::exchange(first, false)) {
            EXPECT_TRUE(editor->removeRow(1));
        }
    });
    ASSERT_TRUE(editor->choose(1, 1, 2));
    EXPECT_EQ(says(), "windSpeed.unitValue > 25");
}

TEST_F(Observing, AnObserverMayShowAnotherCondition) {
    const auto strict = editor->observeEdits([&] { show("sky.stringValue == \"Rain\""); });
    ASSERT_TRUE(editor->addGroup(0, 0));
    EXPECT_EQ(says(), "sky.stringValue == \"Rain\"");
    EXPECT_EQ(editor->numberOfRows(), 2u);
}

TEST_F(Observing, AnObserverMayPutOtherTemplatesIn) {
    const auto strict = editor->observeEdits([&] { editor->setRowTemplates({}); });
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_EQ(says(), "windChill.unitValue == 0");
    EXPECT_TRUE(editor->choices(1, 0).empty());
}

TEST_F(Observing, AnObserverMayDropTheEditor) {
    PredicateEditor* last = editor.get();
    const auto tired = editor->observe([&] { editor.reset(); });
    EXPECT_TRUE(last->addRow(0, 0));
    EXPECT_EQ(editor, nullptr);
}

TEST_F(Observing, AnObserverThatIsGoneHearsNothing) {
    int heard = 0;
    auto token = editor->observeEdits([&] { ++heard; });
    ASSERT_TRUE(editor->addRow(0, 0));
    token.reset();
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace vigil
