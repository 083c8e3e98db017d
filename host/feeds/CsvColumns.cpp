#include "host/feeds/CsvColumns.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "host/feeds/TimeForms.hpp"
#include "host/readings/KeyNames.hpp"
#include "host/readings/KnownReadings.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

// The one table of marks that stand for "no value".
constexpr std::array<std::string_view, 7> kMissingWords = {"mm", "na", "n/a", "nan", "null", "-", "--"};
constexpr std::array<double, 4> kMissingNumbers = {-9999, -9999.9, 9999, 99999};

enum class NumberForm { Number, OutOfRange, None };

NumberForm readNumber(std::string_view cell, double& number) {
    if (cell.starts_with('+')) cell.remove_prefix(1);
    const char* end = cell.data() + cell.size();
    const auto read = std::from_chars(cell.data(), end, number);
    if (read.ptr != end || read.ec == std::errc::invalid_argument) return NumberForm::None;
    if (read.ec != std::errc()) return NumberForm::OutOfRange;
    return std::isfinite(number) ? NumberForm::Number : NumberForm::None;
}

std::string lowered(std::string_view text) {
    std::string low(text);
    for (char& c : low)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return low;
}

bool isMissingNumber(double number) {
    return std::find(kMissingNumbers.begin(), kMissingNumbers.end(), number) != kMissingNumbers.end();
}

/// "12,5": what other languages write for 12.5.
bool hasDecimalComma(std::string_view cell) {
    const std::size_t comma = cell.find(',');
    if (comma == std::string_view::npos) return false;
    std::string dotted(cell);
    dotted[comma] = '.';
    double number = 0;
    return readNumber(dotted, number) == NumberForm::Number;
}

std::string shown(std::string_view cell) {
    constexpr std::size_t kMost = 40;
    return "\"" + repairedUtf8(cell.substr(0, kMost)) + (cell.size() > kMost ? "…\"" : "\"");
}

}  // namespace

bool isMissingMark(std::string_view cell) {
    constexpr std::size_t kLongestWord = 4;
    if (cell.empty()) return true;
    if (cell.size() <= kLongestWord &&
        std::find(kMissingWords.begin(), kMissingWords.end(), lowered(cell)) != kMissingWords.end())
        return true;
    double number = 0;
    return readNumber(cell, number) == NumberForm::Number && isMissingNumber(number);
}

void CsvColumns::decide(Column& column, FourCharCode type) {
    if (type != column.label->type) {
        auto label = std::make_shared<AgentPropertyLabel>(*column.label);
        label->type = type;
        if (type == kTextType) label->unit.clear();
        column.label = std::move(label);
    }
    column.role = Role::Reading;
}

std::optional<AgentProperty> CsvColumns::reading(Column& column, std::string_view cell, Date time,
                                                 std::string& problem) {
    double number = 0;
    const NumberForm form = readNumber(cell, number);
    // A number is told from its mark at once; only what is no number is compared with the words.
    if (form == NumberForm::Number ? isMissingNumber(number) : isMissingMark(cell)) return std::nullopt;
    if (column.role == Role::Undecided) {
        decide(column, form == NumberForm::None ? kTextType : kNumericType);
        if (hasDecimalComma(cell))
            problem = shown(cell) + " has no decimal point; the column is read as texts";
    }
    const FourCharCode type = column.label->type;
    if (type == kTextType) {
        if (isValidUtf8(cell))
            return AgentProperty(column.label, {.stringValue = std::string(cell), .time = time});
        problem = shown(cell) + " is not UTF-8; the cell is left out";
        return std::nullopt;
    }
    if (type == kDateType) {
        const auto date = recordedTime(cell);
        if (!date) {
            problem = repairedUtf8(date.error().message) + "; the cell is left out";
            return std::nullopt;
        }
        const double seconds = date.value().secondsSinceReference();
        return AgentProperty(column.label, {.value = seconds, .unitValue = seconds, .time = time});
    }
    if (form == NumberForm::Number)
        return AgentProperty(column.label, {.value = number, .unitValue = number, .time = time});
    problem = shown(cell);
    problem += form == NumberForm::OutOfRange ? " is a number too large or too small; the cell is left out"
                                              : " is no number, as the column's first value is; left out";
    return std::nullopt;
}

std::shared_ptr<const Readings> CsvColumns::readings(const CsvRow& row, Date time,
                                                     const ProblemTeller& tell) {
    std::vector<AgentProperty> entries;
    entries.reserve(m_table->size());
    std::string problem;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        Column& column = m_columns[i];
        if (column.role == Role::Skipped) continue;
        auto made = reading(column, row.cell(i), time, problem);
        if (made) entries.push_back(*std::move(made));
        if (problem.empty()) continue;
        if (tell)
            tell({row.lineOf(i), "column " + std::to_string(i + 1) + " (" + column.name + "): " + problem});
        problem.clear();
    }
    return Readings::make(m_table, std::move(entries));
}

}  // namespace vigil
