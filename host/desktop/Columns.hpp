#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Notifications of a station as columns, of a few keys alone: what a picture of a condition is made of, and
/// what it is judged over again and again. A value. One thread at a time.
class Columns {
  public:
    struct Column {
        std::string key;
        std::string name;                 ///< for people
        std::string unit;                 ///< of `unitValue`
        std::vector<std::uint8_t> there;  ///< whether the notification had the reading
        std::vector<double> unitValue;    ///< NaN where it was not there
        std::vector<double> value;        ///< the same
        std::vector<double> time;         ///< the reading's own, in seconds since 2001; NaN where it has none
        bool hasTexts = false;            ///< whether the texts of its readings are kept
        std::vector<std::int32_t> text;   ///< its place in `texts`; -1 where it was not there
        std::vector<std::string> texts;   ///< each once
        std::unordered_map<std::string, std::int32_t> places;
    };

    /// Of the keys in `texts` the texts are kept too. To print a number costs more than all the rest, and
    /// each may be another, so that is for those whose texts somebody looks at.
    explicit Columns(std::vector<std::string> keys = {}, const std::vector<std::string>& texts = {});

    /// Of a key that comes twice the last counts.
    void append(Date when, const Readings& readings);
    /// The rows of another one with the same keys.
    void append(const Columns& more);

    std::size_t rows() const { return m_times.size(); }
    /// When the notifications were announced, in seconds since 2001; never falling.
    const std::vector<double>& times() const { return m_times; }
    const std::vector<Column>& columns() const { return m_columns; }
    /// Nothing where the key is none of them.
    const Column* column(const std::string& key) const;

  private:
    static void appendText(Column& column, const AgentProperty* reading);

    std::vector<double> m_times;
    std::vector<Column> m_columns;
};

}  // namespace vigil
