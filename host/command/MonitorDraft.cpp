#include "host/command/MonitorDraft.hpp"

#include <cmath>

#include <nlohmann/json.hpp>

#include "platform/Date.hpp"

namespace vigil {
namespace {

using Json = nlohmann::ordered_json;

/// Writes objects of a keyed archive, each with an identity of its own.
class Objects {
  public:
    Json make(const char* className) { return {{"$class", className}, {"$id", ++m_made}}; }
    static Json reference(const Json& object) { return {{"$ref", object.at("$id")}}; }
    static Json station() { return {{"$station", true}}; }

  private:
    int m_made = 0;
};

Json number(double value) {
    if (std::floor(value) == value && std::abs(value) < 1e15) return static_cast<std::int64_t>(value);
    return value;
}

struct Row {
    Json path;
    Json displayValues;
};

Row scriptRow(Objects& objects, const std::string& line) {
    Json root = objects.make("RunScriptCriterion");
    Json field = objects.make("TextFieldCriterion");
    field["agent"] = Objects::station();
    const Json again = Objects::reference(field);
    root["agent"] = Objects::station();
    root["name"] = "Run script";
    root["children"] = Json::array({field});
    Json control = objects.make("TextField");
    control["stringValue"] = line;
    return {Json::array({root, again}), Json::array({"Run script", control})};
}

}  // namespace

std::string archiveText(const MonitorDraft& draft) {
    Objects objects;
    Json monitor = objects.make("QRVVigilPlugIn");
    monitor["agent"] = Objects::station();
    monitor["title"] = draft.title;
    Json paths = Json::array();
    Json values = Json::array();
    for (const std::string& line : draft.scripts) {
        Row row = scriptRow(objects, line);
        paths.push_back(std::move(row.path));
        values.push_back(std::move(row.displayValues));
    }
    monitor["ruleEdStoredCriteria"] = std::move(paths);
    monitor["ruleEdStoredDisplayValues"] = std::move(values);
    monitor["evaluating"] = true;
    monitor["retriggerInterval"] = number(draft.retriggerMinutes);
    monitor["retriggerDate"] = {{"$date", Date::distantPast().secondsSinceReference()}};
    monitor["triggerOnlyOnChange"] = draft.onlyOnChange;
    Json condition = objects.make("ConditionPredicate");
    condition["text"] = draft.condition;
    monitor["predicate"] = std::move(condition);
    Json archive = {{"format", "vigil-archive"}, {"version", 1}};
    archive["root"] = std::move(monitor);
    return archive.dump(2);
}

}  // namespace vigil
