#include "host/command/KeyNote.hpp"

#include <algorithm>

#include "host/readings/KnownReadings.hpp"
#include "host/readings/RollingChoice.hpp"
#include "host/words/NearestWord.hpp"

namespace vigil {

std::set<std::string> keysOf(const ConditionNode& condition) {
    std::set<std::string> keys;
    std::vector<const ConditionNode*> open = {&condition};
    while (!open.empty()) {
        const ConditionNode* node = open.back();
        open.pop_back();
        if (const Comparison* comparison = node->comparison()) keys.insert(comparison->key);
        for (const ConditionNode& part : node->parts())
            open.push_back(&part);
    }
    return keys;
}

std::string keyNote(std::string_view key, const std::vector<std::string>& own) {
    if (knownReading(key) || std::find(own.begin(), own.end(), key) != own.end()) return {};
    std::vector<std::string> candidates = own;
    for (const KnownReading& known : knownReadings())
        candidates.emplace_back(known.key);
    const std::string near = nearestWord(key, candidates);
    if (near.empty()) return {};
    return "note: no known reading is called " + std::string(key) + "; did you mean " + near + "?";
}

std::vector<std::string> rollingKeys(const std::vector<std::string>& choices) {
    std::vector<std::string> keys;
    for (const std::string& text : choices)
        if (const auto choice = RollingChoice::parse(text)) keys.push_back(choice.value().key());
    return keys;
}

}  // namespace vigil
