#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simdjson::dom {
class element;
}

namespace vigil {

/// A value that stands directly in a message's object, whether it was sent as what it is or as a text.
struct JsonValue {
    enum Kind { Scalar, Other };
    Kind kind = Scalar;              ///< Other: an object or a list
    bool missing = false;            ///< null, or a text that stands for no value
    std::optional<double> number{};  ///< of a number, or of a text that is one
    std::string text{};              ///< as it was written; a number as numberText prints it
};

/// `value` of one parsed line. Any thread.
JsonValue jsonValue(const simdjson::dom::element& value);
JsonValue textValue(std::string_view text);

}  // namespace vigil
