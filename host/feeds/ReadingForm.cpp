#include "host/feeds/ReadingForm.hpp"

#include <limits>
#include <string>

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

std::optional<Error> takeMember(ReadingForm& form, std::string_view member, const element& given) {
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

}  // namespace

FourCharCode ReadingForm::typeOrDefault() const {
    if (type) return *type;
    if (date) return kDateType;
    return stringValue && !value && !unitValue ? kTextType : kNumericType;
}

std::optional<Error> readReadingForm(const element& given, ReadingForm& form) {
    switch (given.type()) {
        case Type::NULL_VALUE:
            form.nullValue = true;
            return std::nullopt;
        case Type::STRING:
            form.stringValue = textOf(given);
            return std::nullopt;
        case Type::INT64:
        case Type::UINT64:
        case Type::DOUBLE:
            form.value = numberOf(given);
            return std::nullopt;
        case Type::OBJECT:
            break;
        case Type::ARRAY:
        case Type::BOOL:
            return refused({}, "expected a number, a text, an object or null");
    }
    for (const auto [member, value] : simdjson::dom::object(given))
        if (auto error = takeMember(form, member, value)) return error;
    if (form.absent() || form.hasValue() || form.type || form.unitString) return std::nullopt;
    return refused({}, "expected a value, a unitValue, a stringValue or a date");
}

}  // namespace vigil
