#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"

namespace vigil {
namespace {

/// Split at every single blank: two in a row have an empty word between them, and nothing quotes.
std::vector<std::string> words(const std::string& line) {
    std::vector<std::string> found;
    std::size_t begin = 0;
    for (std::size_t end; (end = line.find(' ', begin)) != std::string::npos; begin = end + 1)
        found.push_back(line.substr(begin, end - begin));
    found.push_back(line.substr(begin));
    return found;
}

}  // namespace

void RunScriptCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    const auto line = stringValue(displayValues.at(1));
    HostWorld* host = world();
    if (!line || !host) return;
    std::vector<std::string> arguments = words(*line);
    // The name is used as typed, so one with a "/" reaches into a folder below.
    const auto source = host->files().readUtf8(QRVKit::scriptsFolder(*host) + "/" + arguments.front());
    if (!source) return;
    arguments.erase(arguments.begin());
    std::optional<Error> ignored;
    if (const auto station = agent())
        station->runScript(source.value(), arguments, /*property=*/nullptr, /*folder=*/std::nullopt, kTimeout,
                           ignored);
}

}  // namespace vigil
