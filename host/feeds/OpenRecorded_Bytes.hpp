#pragma once

#include <memory>
#include <string>

#include "host/feeds/Bytes.hpp"
#include "host/feeds/OpenRecorded.hpp"

namespace vigil {

/// What all other ways to open come down to.
Opened openCsv(std::unique_ptr<Bytes> bytes, const std::string& name, CsvOptions options, ProblemTeller tell);
Opened openJsonLines(std::unique_ptr<Bytes> bytes, const std::string& name, JsonLinesOptions options,
                     ProblemTeller tell);

}  // namespace vigil
