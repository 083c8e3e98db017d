#include "host/feeds/ReadingJson.hpp"

#include <utility>
#include <vector>

#include <simdjson.h>

#include "host/feeds/ReadingForm.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;

/// The rest of an error's sentence, from the path of the reading on.
Error refused(std::string_view member, std::string_view reason) {
    std::string text;
    if (!member.empty()) (text += '.') += member;
    return {(text += ": ") += reason};
}

Error at(std::string_view path, const Error& rest) {
    return {std::string(path) + rest.message};
}

std::shared_ptr<const AgentPropertyLabel> labelFor(const ReadingDefaults& defaults, const ReadingForm& form) {
    const std::string_view name = form.name.value_or(defaults.name.empty() ? defaults.key : defaults.name);
    const std::string_view unit = form.unit.value_or("");
    const FourCharCode type = form.typeOrDefault();
    const bool visible = form.visible.value_or(true);
    const auto& like = defaults.like;
    if (like && like->propertyName == defaults.key && like->name == name && like->unit == unit &&
        like->type == type && like->visible == visible)
        return like;
    return std::make_shared<const AgentPropertyLabel>(
        AgentPropertyLabel{std::string(defaults.key), std::string(name), std::string(unit), type, visible});
}

std::optional<std::string> owned(const std::optional<std::string_view>& text) {
    if (!text) return std::nullopt;
    return std::string(*text);
}

AgentProperty built(const ReadingDefaults& defaults, const ReadingForm& form) {
    const double seconds = form.date ? form.date->secondsSinceReference() : 0;
    return {labelFor(defaults, form),
            {.value = form.value ? *form.value : form.unitValue.value_or(seconds),
             .unitValue = form.unitValue ? *form.unitValue : form.value.value_or(seconds),
             .stringValue = owned(form.stringValue),
             .time = form.time ? form.time : defaults.time,
             .unitStringValueWithUnitShort = owned(form.unitString)}};
}

/// The error says what stands behind the reading's path.
Result<std::optional<AgentProperty>> reading(const element& given, const ReadingDefaults& defaults) {
    ReadingForm form;
    if (auto error = readReadingForm(given, form)) return *std::move(error);
    // A feed that had to rename a key gives the key as it was written as the display name.
    if (form.propertyName && *form.propertyName != defaults.key && *form.propertyName != defaults.name)
        return refused("propertyName",
                       "expected \"" + std::string(defaults.key) + "\", the key it stands under");
    if (form.absent()) return std::optional<AgentProperty>();
    return std::optional(built(defaults, form));
}

}  // namespace

Result<std::optional<AgentProperty>> readingFromJson(const element& given, const ReadingDefaults& defaults,
                                                     std::string_view path) {
    auto made = reading(given, defaults);
    if (!made) return at(path, made.error());
    return made;
}

Result<std::shared_ptr<const Readings>> readingsFromJsonObject(const element& given, std::optional<Date> time,
                                                               std::string_view path) {
    simdjson::dom::object object;
    if (given.get(object) != simdjson::SUCCESS)
        return at(path, refused({}, "expected an object from key to reading"));
    std::vector<AgentProperty> entries;
    entries.reserve(object.size());
    for (const auto [key, value] : object) {
        auto made = reading(value, {.key = key, .time = time});
        if (!made) return at(std::string(path) + "." + std::string(key), made.error());
        if (made.value()) entries.push_back(*std::move(made).value());
    }
    return Readings::make(std::move(entries));
}

Result<std::shared_ptr<const Readings>> readingsFromJsonList(const element& given, std::optional<Date> time,
                                                             std::string_view path) {
    simdjson::dom::array list;
    if (given.get(list) != simdjson::SUCCESS) return at(path, refused({}, "expected a list of readings"));
    std::vector<AgentProperty> entries;
    entries.reserve(list.size());
    std::size_t index = 0;
    for (const element value : list) {
        const std::string place = std::string(path) + "[" + std::to_string(index++) + "]";
        std::string_view key;
        if (!value.is_object() || value["propertyName"].get(key) != simdjson::SUCCESS)
            return at(place, refused({}, "expected an object with its propertyName"));
        auto made = reading(value, {.key = key, .time = time});
        if (!made) return at(place, made.error());
        if (made.value()) entries.push_back(*std::move(made).value());
    }
    return Readings::make(std::move(entries));
}

}  // namespace vigil
