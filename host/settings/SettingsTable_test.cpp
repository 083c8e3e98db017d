#include "host/settings/SettingsTable.hpp"

#include <fstream>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "host/settings/SettingsFile.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string fileText(const std::string& name) {
    std::ifstream file(VIGIL_SOURCE_DIR "/" + name);
    EXPECT_TRUE(file) << name;
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

/// What the manual has of each section: its heading, and right behind a sentence the table of its keys.
std::string manualTable(std::string_view section) {
    std::string text = "| key | what it is | value | default |\n|---|---|---|---|\n";
    for (const SettingRow& row : settingsTable()) {
        if (row.section != section) continue;
        const SettingValue value = row.get(Settings{});
        text += "| `" + std::string(row.key) + "` | " + std::string(row.says) + " | " + settingExpected(row) +
                " | " + (isSet(value) ? "`" + settingText(value) + "`" : std::string(row.otherwise)) + " |\n";
    }
    return text;
}

TEST(SettingsTable, TheManualHasItAsItIs) {
    const std::string manual = fileText("docs/settings.md");
    std::set<std::string_view> sections;
    for (const SettingRow& row : settingsTable())
        if (sections.insert(row.section).second) {
            EXPECT_THAT(manual, HasSubstr(manualTable(row.section) + "\n")) << row.section;
        }
    std::size_t documented = 0;
    for (auto at = manual.find("\n| `"); at != std::string::npos; at = manual.find("\n| `", at + 1))
        ++documented;
    EXPECT_EQ(documented, settingsTable().size()) << "a key that there is not";
    for (const std::string_view section : sections)
        EXPECT_THAT(manual, HasSubstr("\n## [" + std::string(section) + "]\n"));
}

/// The example with every key that stands there as a comment set.
std::string uncommented(const std::string& example) {
    std::stringstream lines(example);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        const bool isKey = line.size() > 1 && line[0] == '#' && line[1] != ' ';
        text += (isKey ? line.substr(1) : line) + "\n";
    }
    return text;
}

TEST(SettingsTable, TheExampleNamesEveryKeyAndIsRightAsItIsAndWithAllOfThemSet) {
    const std::string example = fileText("examples/vigil.toml");
    EXPECT_THAT(parseSettings(example, "/e", "/h").problems, IsEmpty());
    EXPECT_THAT(parseSettings(example, "/e", "/h").places, IsEmpty())
        << "the example changes nothing by itself";
    const SettingsReading whole = parseSettings(uncommented(example), "/e", "/h");
    for (const SettingsProblem& problem : whole.problems)
        ADD_FAILURE() << problemText("examples/vigil.toml", problem);
    for (const SettingRow& row : settingsTable())
        EXPECT_EQ(whole.places.count(settingPath(row)), 1u) << settingPath(row);
}

TEST(SettingsTable, EveryRowTakesAndGivesItsOwnMember) {
    for (const SettingRow& row : settingsTable()) {
        Settings settings;
        SettingValue other;
        switch (row.kind) {
            case SettingRow::Kind::Flag:
                other = !std::get<bool>(row.get(settings));
                break;
            case SettingRow::Kind::Number:
                other = row.get(settings) == SettingValue(row.most) ? row.least : row.most;
                break;
            case SettingRow::Kind::Choice:
                other = std::string(row.choices.back());
                break;
            case SettingRow::Kind::Words:
                other = std::vector<std::string>{"a", "b"};
                break;
            default:
                other = std::string("x");
        }
        row.set(settings, other);
        EXPECT_EQ(row.get(settings), other) << settingPath(row);
        for (const SettingRow& each : settingsTable())
            if (&each != &row) {
                EXPECT_EQ(each.get(settings), each.get(Settings{}))
                    << settingPath(row) << " changes " << settingPath(each);
            }
    }
}

TEST(SettingsTable, EveryChoiceIsTakenAndADefaultIsInItsRange) {
    for (const SettingRow& row : settingsTable()) {
        for (const std::string_view choice : row.choices) {
            Settings settings;
            row.set(settings, std::string(choice));
            EXPECT_EQ(row.get(settings), SettingValue(std::string(choice))) << settingPath(row);
        }
        EXPECT_EQ(row.choices.empty(), row.kind != SettingRow::Kind::Choice) << settingPath(row);
        const SettingValue value = row.get(Settings{});
        if (const long* number = std::get_if<long>(&value)) {
            EXPECT_TRUE(row.least <= *number && *number <= row.most) << settingPath(row);
        }
        EXPECT_EQ(isSet(value), row.otherwise.empty())
            << settingPath(row) << ": either a default, or a word on what holds without one";
    }
}

TEST(SettingText, IsAsOneWritesItInTheFile) {
    EXPECT_EQ(settingText(175L), "175");
    EXPECT_EQ(settingText(true), "true");
    EXPECT_EQ(settingText(std::string("a \"b\" \\ \x1b")), "\"a \\\"b\\\" \\\\ \\u001B\"");
    EXPECT_EQ(settingText(std::vector<std::string>{"a", "b c"}), "[\"a\", \"b c\"]");
    EXPECT_EQ(settingText({}), "");
    EXPECT_FALSE(isSet({}));
    EXPECT_FALSE(isSet(std::string()));
    EXPECT_TRUE(isSet(0L));
    EXPECT_TRUE(isSet(false));
}

}  // namespace
}  // namespace vigil
