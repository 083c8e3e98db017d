#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"

// The tables of docs/conditions.md, filled by judging. Where one differs, the test prints the one that is
// right.

namespace vigil {
namespace {

using Cases = std::vector<std::pair<std::string, std::vector<AgentProperty>>>;

AgentProperty number(double value) {
    return AgentProperty::number("r", value, std::nullopt);
}
AgentProperty text(const std::string& value) {
    return AgentProperty::text("r", value, std::nullopt);
}
AgentProperty date(double seconds) {
    return AgentProperty::date("r", Date(seconds), std::nullopt);
}

Cases casesFor(const std::string& member) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    Cases cases = {{"absent", {}}, {"NaN", {number(none)}}};
    const auto add = [&cases](const std::string& name, AgentProperty reading) {
        cases.push_back({name, {std::move(reading)}});
    };
    if (member == "r.unitValue") {
        add("the number 9.9", number(9.9));
        add("the number 10", number(10));
        add("the number 10.1", number(10.1));
        add("the text \"10\"", text("10"));
        add("the date 2024-01-01 12:00:00", date(725803200));
    } else if (member == "r.stringValue") {
        add("the number 10", number(10));
        add("the text \"Rain\"", text("Rain"));
        add("the text \"rain\"", text("rain"));
        add("the text \"Rain today\"", text("Rain today"));
        add("the text \"\"", text(""));
        add("the date 2024-01-01 12:00:00", date(725803200));
    } else {
        add("the number 10", number(10));
        add("the text \"2024\"", text("2024"));
        add("the date 2024-01-01 11:59:59", date(725803199));
        add("the date 2024-01-01 12:00:00", date(725803200));
        add("the date 2024-01-01 12:00:01", date(725803201));
    }
    return cases;
}

std::string table(const std::string& member, const std::string& literal) {
    static const char* const kOperators[] = {"==", "!=", "<", "<=", ">", ">="};
    std::string lines = "| The reading is";
    std::string rule = "|---";
    for (const char* op : kOperators) {
        lines += " | `" + std::string(op) + "`";
        rule += "|---";
    }
    lines += " |\n" + rule + "|\n";
    for (const auto& [name, readings] : casesFor(member)) {
        lines += "| " + name;
        const EvaluationDictionary judged(Readings::make(readings));
        for (const char* op : kOperators) {
            const auto condition = ConditionPredicate::predicateWithFormat(member + " " + op + " " + literal);
            lines += condition.value()->evaluateWithObject(judged) ? " | holds" : " | no";
        }
        lines += " |\n";
    }
    return lines;
}

TEST(DocumentedTables, SayWhatComparisonsSay) {
    std::ifstream file(VIGIL_SOURCE_DIR "/docs/conditions.md");
    const std::string manual{std::istreambuf_iterator<char>(file), {}};
    static const std::string kBegin = "<!-- table: ", kBeginEnd = " -->\n", kEnd = "<!-- end -->";
    int tables = 0;
    for (auto at = manual.find(kBegin); at != std::string::npos; at = manual.find(kBegin, at + 1)) {
        const auto said = at + kBegin.size();
        const auto begins = manual.find(kBeginEnd, said);
        const auto ends = manual.find(kEnd, at);
        ASSERT_TRUE(begins != std::string::npos && ends != std::string::npos);
        const std::string title = manual.substr(said, begins - said);
        const auto blank = title.find(' ');
        EXPECT_EQ(manual.substr(begins + kBeginEnd.size(), ends - begins - kBeginEnd.size()),
                  table(title.substr(0, blank), title.substr(blank + 1)))
            << title;
        ++tables;
    }
    EXPECT_EQ(tables, 3);
}

}  // namespace
}  // namespace vigil
