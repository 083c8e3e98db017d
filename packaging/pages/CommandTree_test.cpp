#include "packaging/pages/CommandTree.hpp"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A program with one of everything.
class CommandTreeTest : public testing::Test {
  protected:
    CommandTreeTest() {
        m_app.name("vigil");
        m_app.footer(
            "Exit status: 0 done.\n  a table\n\nExamples:\n  vigil look 'a < b'\n    vigil look\nAnd more.");
        auto* look = m_app.add_subcommand("look", "Look at a file");
        look->add_option("FILE", m_text, "What to look at")->required();
        look->add_option("WORD", m_words, "Words");
        look->add_option("-f,--form", m_text, "How")
            ->type_name("FORM")
            ->check(CLI::IsMember({"text", "json"}));
        look->add_option("--port", m_port, "Where")->type_name("PORT")->check(CLI::Range(1, 65535));
        look->add_flag("--all", m_flag, "All of it");
        look->add_option("--secret", m_text, "Nobody's")->group("");
        look->add_option_group("more")->add_flag("--deep", m_flag, "Deeper");
        auto* site = m_app.add_subcommand("site", "Sites");
        site->require_subcommand(1);
        site->add_subcommand("check", "Check one");
        m_app.add_subcommand("hidden", "Not for people")->group("");
    }

    CLI::App m_app;
    std::string m_text;
    std::vector<std::string> m_words;
    int m_port = 0;
    bool m_flag = false;
};

std::vector<std::string> pathsOf(const CommandNote& program) {
    std::vector<std::string> paths;
    for (const CommandNote* command : allOf(program))
        paths.push_back(command->path);
    return paths;
}

TEST_F(CommandTreeTest, HoldsEveryCommandThatHelpShowsInItsOrder) {
    const CommandNote program = commandTree(m_app);
    EXPECT_THAT(pathsOf(program), ElementsAre("vigil", "vigil look", "vigil site", "vigil site check"));
    EXPECT_EQ(allOf(program)[3]->name(), "check");
    EXPECT_FALSE(program.needsCommand);
    EXPECT_TRUE(program.commands[1].needsCommand);
}

TEST_F(CommandTreeTest, KnowsWhatAnOptionTakes) {
    const CommandNote look = commandTree(m_app).commands[0];
    ASSERT_EQ(look.options.size(), 5u) << "--help, --form, --port, --all and that of the group";
    EXPECT_THAT(look.options[0].names, ElementsAre("-h", "--help"));
    EXPECT_EQ(look.options[0].argument.name, "");
    EXPECT_THAT(look.options[1].names, ElementsAre("-f", "--form"));
    EXPECT_EQ(look.options[1].argument.name, "FORM");
    EXPECT_THAT(look.options[1].argument.choices, testing::UnorderedElementsAre("text", "json"));
    EXPECT_EQ(look.options[2].argument.name, "PORT");
    EXPECT_EQ(look.options[2].argument.least, "1");
    EXPECT_EQ(look.options[2].argument.most, "65535");
    EXPECT_THAT(look.options[2].argument.choices, IsEmpty());
    EXPECT_THAT(look.options[3].names, ElementsAre("--all"));
    EXPECT_EQ(look.options[3].argument.name, "");
    EXPECT_THAT(look.options[4].names, ElementsAre("--deep"));
}

TEST_F(CommandTreeTest, KnowsWhatStandsByPosition) {
    const CommandNote look = commandTree(m_app).commands[0];
    ASSERT_EQ(look.positions.size(), 2u);
    EXPECT_TRUE(look.positions[0].argument.isFile());
    EXPECT_TRUE(look.positions[0].required);
    EXPECT_FALSE(look.positions[0].argument.repeats);
    EXPECT_EQ(look.positions[1].argument.name, "WORD");
    EXPECT_FALSE(look.positions[1].required);
    EXPECT_TRUE(look.positions[1].argument.repeats);
}

TEST_F(CommandTreeTest, TellsExamplesFromRemarks) {
    const FooterNote footer = commandTree(m_app).footer;
    EXPECT_THAT(footer.remarks, ElementsAre("Exit status: 0 done.", "  a table", "And more."));
    EXPECT_THAT(footer.examples, ElementsAre("vigil look 'a < b'", "vigil look"));
}

}  // namespace
}  // namespace vigil
