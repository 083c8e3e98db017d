#include <gmock/gmock.h>

#include "conditions/editor/PredicateEditor.hpp"
#include "host/services/SystemFiles.hpp"
#include "platform/RuleEditor.hpp"
#include "tests/view/ShownMonitor.hpp"

// A monitor that is read, shown, edited and written again: what a person leaves alone stays as it was.

namespace vigil {
namespace {

using test::ShownMonitor;
using testing::ElementsAre;

std::string golden(const std::string& name) {
    SystemFiles files;
    const auto text = files.readUtf8(VIGIL_SOURCE_DIR "/tests/golden/" + name);
    EXPECT_TRUE(text) << text.error().message;
    return text ? text.value() : std::string();
}

/// "text:Speak Text" and so on, with all that a control holds.
std::string told(const DisplayValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return "text:" + *text;
    if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value))
        return "field:" + (*field)->stringValue();
    if (const auto* popUp = std::get_if<std::shared_ptr<PopUpButton>>(&value)) {
        std::string items;
        for (const std::string& title : (*popUp)->itemTitles())
            items += (items.empty() ? "" : ",") + title;
        return "popup:" + items + "=" + (*popUp)->titleOfSelectedItem().value_or("(null)");
    }
    return std::holds_alternative<std::monostate>(value) ? "nothing" : "separator";
}

/// A row as its nodes' classes, then its display values.
std::vector<std::string> row(const RuleEditor& editor, std::int64_t index) {
    std::vector<std::string> all;
    for (const auto& node : editor.criteriaForRow(index))
        all.push_back(node->className());
    for (const DisplayValue& value : editor.displayValuesForRow(index))
        all.push_back(told(value));
    return all;
}

class MonitorRows : public testing::Test {
  protected:
    void readAndShow(const std::string& archive) {
        m_monitor.read(archive);
        m_monitor.show();
        m_editor = m_monitor.control<RuleEditor>();
    }

    template <class T>
    std::shared_ptr<T> control(std::int64_t index) const {
        return std::get<std::shared_ptr<T>>(m_editor->displayValuesForRow(index).at(1));
    }

    void expectStoredRows() const {
        EXPECT_THAT(row(*m_editor, 0), ElementsAre("SpeakTextCriterion", "TextFieldCriterion",
                                                   "text:Speak Text", "field:Frost, %@ \"now\""));
        EXPECT_THAT(row(*m_editor, 1), ElementsAre("PlaySoundCriterion", "PopUpCriterion", "text:Play Sound",
                                                   "popup:old.wav,gong.mp3=gong.mp3"));
        EXPECT_THAT(row(*m_editor, 2), ElementsAre("SayCurrentConditionsCriterion", "Criterion",
                                                   "text:Speak Conditions", "text:No"));
        EXPECT_THAT(row(*m_editor, 3), ElementsAre("SendEmailCriterion", "TextFieldCriterion",
                                                   "text:Send an email to", "field:warden@example.org"));
        EXPECT_THAT(row(*m_editor, 4), ElementsAre("SeparatorCriterion", "separator"));
        EXPECT_THAT(row(*m_editor, 5), ElementsAre("PlaySoundCriterion", "PopUpCriterion", "text:Play Sound",
                                                   "popup:old.wav=(null)"));
    }

    /// A row added, a text typed in it and in a stored one, a title chosen, a condition's value changed.
    void edit() {
        ASSERT_TRUE(m_editor->addRow(nullptr));
        control<TextField>(6)->setStringValue("notify.sh roof");
        control<TextField>(0)->setStringValue("Black ice");
        control<PopUpButton>(1)->selectItemWithTitle("old.wav");
        ASSERT_TRUE(m_monitor.control<PredicateEditor>()->setValueText(1, "-5"));
    }

    ShownMonitor m_monitor;
    std::shared_ptr<RuleEditor> m_editor;
};

TEST_F(MonitorRows, WhatIsReadIsShownWithEveryControlAsItWasSaved) {
    readAndShow(golden("rows-stored.json"));
    ASSERT_EQ(m_editor->numberOfRows(), 6);
    expectStoredRows();
    EXPECT_EQ(m_monitor.condition(), "windChill.unitValue < 10 AND sky.stringValue == \"Fog\"");
}

TEST_F(MonitorRows, ReadShownAndLeftAloneAnArchiveIsWrittenAgainByteForByte) {
    const std::string text = golden("rows-stored.json");
    m_monitor.read(text);
    EXPECT_EQ(m_monitor.archive(), text);
    m_monitor.show();
    EXPECT_EQ(m_monitor.archive(), text) << "also after it was shown";
}

TEST_F(MonitorRows, EditsAddWhatIsNewAndKeepEveryOtherRowControlAndText) {
    readAndShow(golden("rows-stored.json"));
    edit();
    EXPECT_EQ(m_monitor.archive(), golden("rows-edited.json"));
}

TEST_F(MonitorRows, TheEditedArchiveBringsAllOfItBack) {
    readAndShow(golden("rows-edited.json"));
    ASSERT_EQ(m_editor->numberOfRows(), 7);
    EXPECT_EQ(told(m_editor->displayValuesForRow(0).at(1)), "field:Black ice");
    EXPECT_EQ(told(m_editor->displayValuesForRow(1).at(1)), "popup:old.wav,gong.mp3=old.wav");
    EXPECT_THAT(row(*m_editor, 6), ElementsAre("RunScriptCriterion", "TextFieldCriterion", "text:Run script",
                                               "field:notify.sh roof"));
    control<TextField>(0)->setStringValue("Frost, %@ \"now\"");
    control<PopUpButton>(1)->selectItemWithTitle("gong.mp3");
    expectStoredRows();
    EXPECT_EQ(m_monitor.condition(), "windChill.unitValue < -5 AND sky.stringValue == \"Fog\"");
}

TEST_F(MonitorRows, AChosenRootGetsNewControlsAndASavedPopUpKeepsItsOwnItems) {
    readAndShow(golden("rows-stored.json"));
    ASSERT_TRUE(m_editor->choose({.row = 0, .column = 0}, 1));
    EXPECT_EQ(told(m_editor->displayValuesForRow(0).at(1)), "popup:horn.mp3,bell.wav=horn.mp3")
        << "the sounds that the bundle has today";
    EXPECT_EQ(told(m_editor->displayValuesForRow(1).at(1)), "popup:old.wav,gong.mp3=gong.mp3")
        << "those that were saved";
    EXPECT_FALSE(m_editor->choose({.row = 1, .column = 0}, 1)) << "Play Sound is chosen there already";
}

TEST_F(MonitorRows, DisplayValuesForFewerRowsThanThereAreFailTheLoad) {
    std::string text = golden("rows-stored.json");
    const auto key = text.find("\"ruleEdStoredDisplayValues\": [");
    ASSERT_NE(key, std::string::npos);
    text.insert(text.find('[', key) + 1, "], \"unknown\": [");
    m_monitor.read(text);
    EXPECT_THROW(m_monitor.show(), std::out_of_range);
}

}  // namespace
}  // namespace vigil
