#include "host/feeds/wire/JsonValue.hpp"

#include <simdjson.h>

#include "host/feeds/wire/WireReading.hpp"
#include "host/readings/MissingMarks.hpp"
#include "platform/Number.hpp"

namespace vigil {

JsonValue textValue(std::string_view text) {
    JsonValue value{.text = std::string(text)};
    value.missing = isNoValue(text);
    if (!value.missing) value.number = numberInText(text);
    return value;
}

JsonValue jsonValue(const simdjson::dom::element& value) {
    using Type = simdjson::dom::element_type;
    switch (value.type()) {
        case Type::NULL_VALUE:
            return {.missing = true};
        case Type::STRING:
            return textValue(std::string_view(value));
        case Type::BOOL:
            return {.text = bool(value) ? "true" : "false"};
        case Type::INT64:
        case Type::UINT64:
        case Type::DOUBLE:
            break;
        case Type::OBJECT:
        case Type::ARRAY:
            return {.kind = JsonValue::Other};
    }
    const double number = double(value);
    return {.missing = isMissingNumber(number), .number = number, .text = numberText(number)};
}

}  // namespace vigil
