#include "tests/crash/Reported.hpp"

#include <cstdlib>
#include <sstream>

namespace vigil {

void Reported::find(const std::string& what, RecordId id) {
    m_findings.push_back(what + " " + std::to_string(id));
}

void Reported::take(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        std::istringstream words(line);
        std::string step;
        RecordId id = 0, plugIn = 0;
        long number = 0;
        words >> step >> id >> plugIn >> number;
        if (step == "intent") {
            if (!m_fires.emplace(id, false).second) find("two fires bear the number", id);
        } else if (step == "over") {
            m_fires[id] = true;
            m_archives[plugIn] = number;
        } else if (step == "queued") {
            if (!m_effects.emplace(id, EffectRecord::Queued).second) find("two effects bear the number", id);
        } else if (step == "started") {
            m_effects[id] = EffectRecord::Started;
        } else if (step == "act") {
            if (!m_acts.insert(id).second) find("acted twice:", id);
        } else if (step == "ended") {
            m_effects[id] = EffectRecord::Ended;
        } else {
            m_findings.push_back(line);
        }
    }
}

void Reported::compare(const SiteFile& site) {
    const auto kept = site.effects({.limit = 1'000'000});
    const auto plugIns = site.plugIns();
    if (!kept || !plugIns) {
        m_findings.push_back(kept ? plugIns.error().message : kept.error().message);
        return;
    }
    std::map<RecordId, EffectRecord> effects;
    for (const EffectRecord& effect : kept.value())
        effects[effect.id] = effect;
    for (const auto& [id, state] : m_effects) {
        const auto found = effects.find(id);
        if (found == effects.end()) {
            find("lost: effect", id);
            continue;
        }
        if (found->second.state < state) find("less far than it was: effect", id);
        if (state == EffectRecord::Ended && found->second.result != "succeeded")
            find("another end: effect", id);
    }
    for (const RecordId id : m_acts)
        if (const auto found = effects.find(id); found == effects.end() || !found->second.started)
            find("acted without a trace: effect", id);
    for (const auto& [id, over] : m_fires) {
        const auto fire = site.fire(id);
        if (!fire || !fire.value()) {
            find("lost: fire", id);
        } else if (over && !fire.value()->completed) {
            find("open again: fire", id);
        }
    }
    for (const PlugInRecord& plugIn : plugIns.value())
        if (std::strtol(plugIn.archive.c_str(), nullptr, 10) < m_archives[plugIn.id])
            find("an older archive: plug-in", plugIn.id);
}

}  // namespace vigil
