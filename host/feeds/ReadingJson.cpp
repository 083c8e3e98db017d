#include "host/feeds/ReadingJson.hpp"

#include <limits>
#include <utility>
#include <vector>

#include <simdjson.h>

namespace vigil {
namespace {

using simdjson::dom::element;
using Type = simdjson::dom::element_type;

/// The rest of an error's sentence, from the path of the reading on.
Error refused(std::string_view member, std::string_view reason) {
    std::string text;
    if (!member.empty()) (text += '.') += member;
    return {(text += ": ") += reason};
}

Error at(std::string_view path, const Error& rest) {
    return {std::string(path) + rest.message};
}

std::optional<std::string_view> textOf(const element& given) {
    std::string_view text;
    if (given.get(text) != simdjson::SUCCESS) return std::nullopt;
    return text;
}

std::optional<double> numberOf(const element& given) {
    double number = 0;
    if (given.get(number) == simdjson::SUCCESS) return number;
    const auto text = textOf(given);
    if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
    if (text == "Infinity") return std::numeric_limits<double>::infinity();
    if (text == "-Infinity") return -std::numeric_limits<double>::infinity();
    return std::nullopt;
}

/// The long form as it was given.
struct LongForm {
    std::optional<double> value, unitValue;
    std::optional<Date> date, time;
    std::optional<std::string_view> propertyName, name, unit, stringValue, unitString;
    std::optional<FourCharCode> type;
    std::optional<bool> visible;
    bool nullValue = false;  // one of the members that carry a value is null

    bool hasValue() const { return value || unitValue || stringValue || date; }
};

std::optional<Error> take(std::optional<double>& place, std::string_view member, const element& given) {
    place = numberOf(given);
    if (place) return std::nullopt;
    return refused(member, "expected a number");
}

std::optional<Error> take(std::optional<std::string_view>& place, std::string_view member,
                          const element& given) {
    place = textOf(given);
    if (place) return std::nullopt;
    return refused(member, "expected a text");
}

std::optional<Error> take(std::optional<Date>& place, std::string_view member, const element& given) {
    const auto text = textOf(given);
    if (!text) return refused(member, "expected a time as a text");
    const auto date = parseDate(*text);
    if (!date) return refused(member, date.error().message);
    place = date.value();
    return std::nullopt;
}

std::optional<Error> take(std::optional<FourCharCode>& place, std::string_view member, const element& given) {
    const auto text = textOf(given);
    if (!text || text->size() != 4) return refused(member, "expected a text of four characters");
    place = fourCharCode(*text);
    return std::nullopt;
}

std::optional<Error> take(std::optional<bool>& place, std::string_view member, const element& given) {
    bool flag = false;
    if (given.get(flag) != simdjson::SUCCESS) return refused(member, "expected true or false");
    place = flag;
    return std::nullopt;
}

std::optional<Error> takeMember(LongForm& form, std::string_view member, const element& given) {
    const bool carriesValue =
        member == "value" || member == "unitValue" || member == "stringValue" || member == "date";
    if (given.is_null()) {
        form.nullValue = form.nullValue || carriesValue;
        return std::nullopt;
    }
    if (member == "value") return take(form.value, member, given);
    if (member == "unitValue") return take(form.unitValue, member, given);
    if (member == "stringValue") return take(form.stringValue, member, given);
    if (member == "date") return take(form.date, member, given);
    if (member == "time") return take(form.time, member, given);
    if (member == "propertyName") return take(form.propertyName, member, given);
    if (member == "name") return take(form.name, member, given);
    if (member == "unit") return take(form.unit, member, given);
    if (member == "unitStringValueWithUnitShort") return take(form.unitString, member, given);
    if (member == "type") return take(form.type, member, given);
    if (member == "visible") return take(form.visible, member, given);
    return refused(member, "a reading has no such member");
}

FourCharCode typeOf(const LongForm& form) {
    if (form.type) return *form.type;
    if (form.date) return kDateType;
    return form.stringValue && !form.value && !form.unitValue ? kTextType : kNumericType;
}

std::shared_ptr<const AgentPropertyLabel> labelFor(const ReadingDefaults& defaults, const LongForm& form) {
    const std::string_view name = form.name.value_or(defaults.name.empty() ? defaults.key : defaults.name);
    const std::string_view unit = form.unit.value_or("");
    const FourCharCode type = typeOf(form);
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

AgentProperty built(const ReadingDefaults& defaults, const LongForm& form) {
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
    LongForm form;
    switch (given.type()) {
        case Type::NULL_VALUE:
            return std::optional<AgentProperty>();
        case Type::STRING:
            form.stringValue = textOf(given);
            return std::optional(built(defaults, form));
        case Type::INT64:
        case Type::UINT64:
        case Type::DOUBLE:
            form.value = numberOf(given);
            return std::optional(built(defaults, form));
        case Type::OBJECT:
            break;
        case Type::ARRAY:
        case Type::BOOL:
            return refused({}, "expected a number, a text, an object or null");
    }
    for (const auto [member, value] : simdjson::dom::object(given))
        if (auto error = takeMember(form, member, value)) return *std::move(error);
    // A feed that had to rename a key gives the key as it was written as the display name.
    if (form.propertyName && *form.propertyName != defaults.key && *form.propertyName != defaults.name)
        return refused("propertyName",
                       "expected \"" + std::string(defaults.key) + "\", the key it stands under");
    if (!form.hasValue() && form.nullValue) return std::optional<AgentProperty>();
    if (!form.hasValue() && !form.type && !form.unitString)
        return refused({}, "expected a value, a unitValue, a stringValue or a date");
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
