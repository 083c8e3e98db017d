#include "platform/Controls.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

TEST(TextField, HoldsATextAndKeepsItInAnArchive) {
    const auto field = std::make_shared<TextField>("Gale, %d");
    EXPECT_EQ(field->stringValue(), "Gale, %d");
    MemoryArchive archive(field);
    EXPECT_EQ(archive.rootKeys(), std::vector<std::string>{"stringValue"});
    EXPECT_EQ(archive.readAs<TextField>(nullptr)->stringValue(), "Gale, %d");
    archive.removeRootEntry("stringValue");
    EXPECT_EQ(archive.readAs<TextField>(nullptr)->stringValue(), "");
}

TEST(PopUpButton, TheFirstItemAddedIsSelectedAndTitlesAreUnique) {
    PopUpButton button;
    EXPECT_EQ(button.titleOfSelectedItem(), std::nullopt);
    for (const char* title : {"bell", "horn", "bell"})
        button.addItemWithTitle(title);
    EXPECT_EQ(button.itemTitles(), (std::vector<std::string>{"horn", "bell"}));
    EXPECT_EQ(button.titleOfSelectedItem(), "bell");
}

TEST(PopUpButton, SelectingAnUnknownTitleSelectsNothing) {
    PopUpButton button;
    button.addItemWithTitle("bell");
    button.addItemWithTitle("horn");
    button.selectItemWithTitle("horn");
    EXPECT_EQ(button.titleOfSelectedItem(), "horn");
    button.selectItemWithTitle("gong");
    EXPECT_EQ(button.titleOfSelectedItem(), std::nullopt);
}

TEST(PopUpButton, AnArchiveKeepsItemsInTheirOrderAndTheSelection) {
    const auto button = std::make_shared<PopUpButton>();
    button->addItemWithTitle("horn");
    button->addItemWithTitle("bell");
    button->selectItemWithTitle("bell");
    MemoryArchive archive(button);
    const auto read = archive.readAs<PopUpButton>(nullptr);
    EXPECT_EQ(read->itemTitles(), (std::vector<std::string>{"horn", "bell"}));
    EXPECT_EQ(read->titleOfSelectedItem(), "bell");
    archive.setRootEntry("items", ValueList{Value("horn"), Value(3)});
    archive.read(nullptr);
    EXPECT_EQ(archive.refusals(), std::vector<std::string>{"PopUpButton.items: expected a list of texts"});
}

TEST(DisplayValue, AnswersForItsKindAndNothingForAnyOther) {
    const auto field = std::make_shared<TextField>("typed");
    const auto button = std::make_shared<PopUpButton>();
    button->addItemWithTitle("bell");
    const DisplayValue nothing, text{"name"}, typed{field}, chosen{button}, line{MenuItem::separatorItem()};
    EXPECT_EQ(stringValue(text), "name");
    EXPECT_EQ(stringValue(typed), "typed");
    for (const auto& value : {nothing, chosen, line})
        EXPECT_EQ(stringValue(value), std::nullopt);
    EXPECT_EQ(titleOfSelectedItem(chosen), "bell");
    for (const auto& value : {nothing, text, typed, line})
        EXPECT_EQ(titleOfSelectedItem(value), std::nullopt);
    EXPECT_EQ(description(nothing), "(null)");
    EXPECT_EQ(description(text), "name");
    EXPECT_EQ(description(typed), defaultDescription(*field));
}

TEST(DisplayValue, CopiesShareTheLiveControl) {
    const auto field = std::make_shared<TextField>("before");
    const DisplayValue original{field};
    const DisplayValue copy = original;
    field->setStringValue("after");
    EXPECT_EQ(stringValue(copy), "after");
}

TEST(DisplayValue, GoesThroughAnArchiveValueAndBackAsTheSameControl) {
    const auto field = std::make_shared<TextField>();
    for (const DisplayValue& value :
         {DisplayValue{}, DisplayValue{"name"}, DisplayValue{field},
          DisplayValue{std::make_shared<PopUpButton>()}, DisplayValue{MenuItem::separatorItem()}}) {
        const auto back = displayValueFrom(archiveValue(value));
        ASSERT_TRUE(back);
        EXPECT_EQ(*back, value);
    }
    EXPECT_FALSE(displayValueFrom(Value(3)));
    EXPECT_FALSE(displayValueFrom(Value(ValueList{})));
}

}  // namespace
}  // namespace vigil
