#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "host/feeds/CsvColumns.hpp"
#include "host/feeds/TimeForms.hpp"
#include "host/readings/KeyNames.hpp"
#include "host/readings/KnownReadings.hpp"
#include "host/readings/Units.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

constexpr std::array<std::string_view, 5> kTimeNames = {"time", "date", "datetime", "dateTime", "timestamp"};

using Names = std::vector<std::string>;

std::optional<std::size_t> find(const Names& names, std::string_view name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) return std::nullopt;
    return static_cast<std::size_t>(found - names.begin());
}

Error noSuchColumn(const std::string& name, const Names& names) {
    std::string text = "there is no column \"" + name + "\"; there are";
    for (std::size_t i = 0; i < std::min<std::size_t>(names.size(), 20); ++i)
        text += (i == 0 ? " \"" : ", \"") + names[i] + "\"";
    return {text + (names.size() > 20 ? ", …" : "")};
}

Names namesOf(const CsvRow& header, const ProblemTeller& tell) {
    Names names;
    for (std::size_t i = 0; i < header.size(); ++i) {
        if (!isValidUtf8(header.cell(i)) && tell)
            tell({header.lineOf(i),
                  "column " + std::to_string(i + 1) +
                      ": the name is not UTF-8; what cannot be read is shown as \xEF\xBF\xBD"});
        names.push_back(repairedUtf8(header.cell(i)));
    }
    // Rows that end with a separator make a last column without a name, which holds nothing.
    while (names.size() > 1 && names.back().empty())
        names.pop_back();
    return names;
}

std::size_t defaultTimeColumn(const Names& names) {
    for (const std::string_view name : kTimeNames)
        if (const auto found = find(names, name)) return *found;
    return 0;
}

/// "windSpeed [km/h]" is the reading windSpeed, in a unit of its own; brackets around anything else belong to
/// the name.
struct Named {
    std::string_view reading;
    std::string_view unit;
};

Named withoutUnit(std::string_view name) {
    const std::size_t open = name.rfind(" [");
    if (open == std::string_view::npos || open == 0 || !name.ends_with(']')) return {name, {}};
    const auto unit = unitFromText(name.substr(open + 2, name.size() - open - 3));
    return unit ? Named{name.substr(0, open), unitText(*unit)} : Named{name, {}};
}

std::shared_ptr<const AgentPropertyLabel> labelOf(const Named& name, std::string key, UnitSystem units) {
    AgentPropertyLabel label;
    label.name = name.reading;
    label.unit = name.unit;
    if (const KnownReading* known = knownReading(key); known && key == name.reading) {
        label.name = known->name;
        if (name.unit.empty()) label.unit = known->unit(units);
        label.type = known->kind;
    }
    label.propertyName = std::move(key);
    return std::make_shared<const AgentPropertyLabel>(std::move(label));
}

/// What another separator would have told apart, in a header that is one cell.
std::optional<Error> wrongSeparator(const Names& names, char separator) {
    if (names.size() != 1) return std::nullopt;
    for (const auto& [other, word] : {std::pair{',', "a comma"}, std::pair{';', "a semicolon"},
                                      std::pair{'\t', "a tab"}, std::pair{'|', "a bar"}})
        if (other != separator && names.front().find(other) != std::string::npos)
            return Error{std::string("the first row is one cell; is the separator ") + word + "?"};
    return std::nullopt;
}

}  // namespace

Result<CsvColumns> CsvColumns::fromHeader(const CsvRow& header, const CsvOptions& options,
                                          const ProblemTeller& tell) {
    const Names names = namesOf(header, tell);
    if (auto wrong = wrongSeparator(names, options.separator)) return *std::move(wrong);
    CsvColumns columns;
    columns.m_time = defaultTimeColumn(names);
    if (options.timeColumn) {
        const auto found = find(names, *options.timeColumn);
        if (!found) return noSuchColumn(*options.timeColumn, names);
        columns.m_time = *found;
    }
    if (recordedTime(names[columns.m_time]))
        return Error{"the first row holds values; expected the names of the columns"};
    columns.m_station = find(names, options.stationColumn.value_or("station"));
    if (options.stationColumn && !columns.m_station) return noSuchColumn(*options.stationColumn, names);

    KeyNames keys;
    std::vector<std::string> table;
    for (std::size_t i = 0; i < names.size(); ++i) {
        Column column{.name = names[i].empty() ? "column " + std::to_string(i + 1) : names[i]};
        const bool reading = i != columns.m_time && i != columns.m_station;
        std::string why;
        if (reading && column.name.size() > kLongestName)
            why = "the name has more than " + std::to_string(kLongestName) + " bytes";
        else if (reading && table.size() == kMostKeysOfStation)
            why = "a station has at most " + std::to_string(kMostKeysOfStation) + " readings";
        if (!why.empty() && tell)
            tell({header.line(), "column " + std::to_string(i + 1) + ": " + why + "; left out"});
        if (reading && why.empty()) {
            const Named name = withoutUnit(column.name);
            table.push_back(keys.keyFor(std::string(name.reading)));
            column.label = labelOf(name, table.back(), options.units);
            const bool settled = column.label->type != kNumericType;
            column.role = settled ? Role::Reading : Role::Undecided;
        }
        columns.m_columns.push_back(std::move(column));
    }
    columns.m_table = KeyTable::make(std::move(table));
    return columns;
}

}  // namespace vigil
