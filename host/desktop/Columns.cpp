#include "host/desktop/Columns.hpp"

#include <algorithm>
#include <limits>

namespace vigil {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Columns::Columns(std::vector<std::string> keys, const std::vector<std::string>& texts) {
    for (std::string& key : keys) {
        Column column;
        column.name = key;
        column.hasTexts = std::find(texts.begin(), texts.end(), key) != texts.end();
        column.key = std::move(key);
        m_columns.push_back(std::move(column));
    }
}

const Columns::Column* Columns::column(const std::string& key) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const Column& column) { return column.key == key; });
    return found == m_columns.end() ? nullptr : &*found;
}

void Columns::append(Date when, const Readings& readings) {
    // The host's clock may have been set back; a column's time does not fall.
    const double time = when.secondsSinceReference();
    m_times.push_back(m_times.empty() ? time : std::max(time, m_times.back()));
    for (Column& column : m_columns) {
        const AgentProperty* reading = readings.objectForKey(column.key);
        column.there.push_back(reading ? 1 : 0);
        column.unitValue.push_back(reading ? reading->unitValue() : kNone);
        column.value.push_back(reading ? reading->value() : kNone);
        column.time.push_back(reading && reading->time() ? reading->time()->secondsSinceReference() : kNone);
        if (column.hasTexts) appendText(column, reading);
        if (!reading) continue;
        if (!reading->name().empty()) column.name = reading->name();
        column.unit = reading->unit();
    }
}

void Columns::appendText(Column& column, const AgentProperty* reading) {
    if (!reading) return column.text.push_back(-1);
    const auto [place, fresh] =
        column.places.try_emplace(reading->stringValue(), static_cast<std::int32_t>(column.texts.size()));
    if (fresh) column.texts.push_back(place->first);
    column.text.push_back(place->second);
}

void Columns::append(const Columns& more) {
    for (const double time : more.m_times)
        m_times.push_back(m_times.empty() ? time : std::max(time, m_times.back()));
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        Column& to = m_columns[i];
        const Column& from = more.m_columns.at(i);
        to.name = from.name;
        to.unit = from.unit;
        to.there.insert(to.there.end(), from.there.begin(), from.there.end());
        to.unitValue.insert(to.unitValue.end(), from.unitValue.begin(), from.unitValue.end());
        to.value.insert(to.value.end(), from.value.begin(), from.value.end());
        to.time.insert(to.time.end(), from.time.begin(), from.time.end());
        for (const std::int32_t text : from.text) {
            if (text < 0) {
                to.text.push_back(-1);
                continue;
            }
            const auto& words = from.texts[static_cast<std::size_t>(text)];
            const auto [place, fresh] =
                to.places.try_emplace(words, static_cast<std::int32_t>(to.texts.size()));
            if (fresh) to.texts.push_back(words);
            to.text.push_back(place->second);
        }
    }
}

}  // namespace vigil
