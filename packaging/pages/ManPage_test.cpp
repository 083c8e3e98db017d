#include "packaging/pages/ManPage.hpp"

#include <gmock/gmock.h>

#include "packaging/pages/Roff.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;

TEST(Roff, KeepsWhatPeopleTypeAsItIsOnTheKeyboard) {
    EXPECT_EQ(roffTyped("vigil check 'a-b' \"~^`\\\""),
              "vigil check \\(aqa\\-b\\(aq \\(dq\\(ti\\(ha\\(ga\\e\\(dq");
    EXPECT_EQ(roffTyped("12 °C, 5 €, 𝄞"), "12 \\[u00B0]C, 5 \\[u20AC], \\[u1D11E]");
}

TEST(Roff, NoTextIsTakenForARequest) {
    EXPECT_EQ(roffTyped(".so /etc/passwd"), "\\&.so /etc/passwd");
    EXPECT_EQ(roffText("'quoted'"), "\\(aqquoted\\(aq");
}

TEST(Roff, TellsAHyphenInAWordFromTheMinusOfAnOption) {
    EXPECT_EQ(roffText("a re-trigger of --retrigger -1"), "a re-trigger of \\-\\-retrigger \\-1");
}

TEST(Roff, BreaksALongLineAtABlankButNeverBeforeAFullStop) {
    const std::string word(76, 'w');
    EXPECT_EQ(roffText(word + " and more"), word + "\nand more");
    EXPECT_EQ(roffText(word + " .so it goes"), word + " .so\nit goes");
    EXPECT_EQ(roffText(std::string(90, 'w') + " x"), std::string(90, 'w') + "\nx");
    EXPECT_EQ(roffText(std::string(90, 'w')), std::string(90, 'w'));
}

TEST(Roff, SetsWhatStandsBetweenBackticksInBold) {
    EXPECT_EQ(roffText("call `vigil re-run` or `not"), "call \\fBvigil re\\-run\\fR or \\(ganot");
}

CommandNote command(const std::string& path, const std::string& description) {
    CommandNote note;
    note.path = path;
    note.description = description;
    return note;
}

OptionNote option(std::vector<std::string> names, const std::string& argument,
                  const std::string& description) {
    OptionNote note;
    note.names = std::move(names);
    note.argument.name = argument;
    note.description = description;
    return note;
}

CommandNote program() {
    CommandNote create = command("vigil site create", "A new site");
    create.options = {option({"--site"}, "FILE", "The file")};
    create.options[0].required = true;
    create.positions = {option({}, "NAME", "Its names")};
    create.positions[0].argument.repeats = true;
    CommandNote site = command("vigil site", "Sites: all of them");
    site.footer.remarks = {"Exit status: 7 moon.", "  a   table"};
    site.footer.examples = {"vigil site create 'a'"};
    site.needsCommand = true;
    site.commands = {create};
    CommandNote whole = command("vigil", "It watches: all\nday.");
    whole.footer.remarks = {"Exit status: 0 yes, 1 no.", "Ask `vigil COMMAND --help`."};
    whole.options = {option({"-h", "--help"}, "", "Help")};
    whole.commands = {site};
    return whole;
}

TEST(ManPage, OfACommandHoldsTheCommandsBelowIt) {
    const CommandNote whole = program();
    EXPECT_EQ(
        commandPage(whole.commands[0], whole, {"1.2.3", "2026-11-21"}),
        ".TH VIGIL-SITE 1 2026-11-21 \"Vigil 1.2.3\" \"Vigil\"\n"
        ".SH NAME\nvigil-site \\- Sites\n"
        ".SH SYNOPSIS\n"
        "\\fBvigil site create\\fR \\fB\\-\\-site\\fR \\fIFILE\\fR [\\fIOPTION\\fR ...] [\\fINAME\\fR ...]\n"
        ".SH DESCRIPTION\nSites: all of them.\n"
        ".PP\nExit status: 7 moon.\n.PP\n.EX\n  a   table\n.EE\n"
        ".SH OPTIONS\n"
        ".SH COMMANDS\n.SS \"vigil site create\"\nA new site.\n"
        ".TP\n\\fINAME\\fR ...\nIts names.\n"
        ".TP\n\\fB\\-\\-site\\fR \\fIFILE\\fR\nThe file.\n"
        ".SH EXAMPLES\n.EX\nvigil site create \\(aqa\\(aq\n.EE\n"
        ".SH \"EXIT STATUS\"\n0 yes, 1 no.\n"
        ".SH \"SEE ALSO\"\n.BR vigil (1)\n");
}

TEST(ManPage, OfTheProgramListsItsCommandsAndSaysTheStatusOnce) {
    const std::string page = programPage(program(), {"1.2.3", "2026-11-21"});
    EXPECT_THAT(page, HasSubstr(".SH NAME\nvigil \\- It watches\n"));
    EXPECT_THAT(page, HasSubstr("\\fBvigil\\fR [\\fICOMMAND\\fR ...]\n"));
    EXPECT_THAT(page, HasSubstr(".PP\nAsk \\fBvigil COMMAND \\-\\-help\\fR.\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n.BR vigil\\-site (1)\nSites: all of them.\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n\\fB\\-h\\fR, \\fB\\-\\-help\\fR\nHelp.\n"));
    EXPECT_EQ(page.find("Exit status"), std::string::npos);
    EXPECT_THAT(page, HasSubstr(".SH \"EXIT STATUS\"\n0 yes, 1 no.\n"));
}

}  // namespace
}  // namespace vigil
