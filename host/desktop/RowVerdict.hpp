#pragma once

#include <QString>
#include <string>

#include "host_contract/Readings.hpp"

namespace vigil {

/// How a comparison stands to the present readings.
struct RowVerdict {
    enum Kind { Holds, DoesNotHold, NoValue };
    Kind kind = NoValue;
    QString reading{};  ///< "8.2 °C", or empty
    QString age{};      ///< "3 s", or empty
};

/// Judges "windChill.unitValue < 10". Main thread.
RowVerdict verdictOf(const std::string& comparison, const Readings& readings, Date now);
/// "windChill" of it.
std::string keyOf(const std::string& comparison);
/// "holds", "does not hold", "no value", for people.
QString verdictWords(RowVerdict::Kind kind);
const char* verdictIcon(RowVerdict::Kind kind);

}  // namespace vigil
