#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Date.hpp"
#include "platform/Export.hpp"
#include "platform/Number.hpp"

namespace vigil {

class Object;
class Value;

using ValueList = std::vector<Value>;
/// Entries in the order in which they were written; keys are unique.
using ValueDictionary = std::vector<std::pair<std::string, Value>>;

/// What an archive entry or a property of an interface owner can be.
using ValueBase = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date,
                               std::shared_ptr<Object>, ValueList, ValueDictionary>;

class Value : public ValueBase {
  public:
    using ValueBase::ValueBase;
    Value() = default;
    Value(const char* text) : ValueBase(std::string(text)) {}
    Value(int integer) : ValueBase(static_cast<std::int64_t>(integer)) {}
    Value(const Number& number)
        : ValueBase(number.isInteger() ? ValueBase(number.integerValue()) : ValueBase(number.doubleValue())) {
    }

    bool isNothing() const { return index() == 0; }

    /// The held value of kind T, or nothing when another kind is held.
    template <class T>
    const T* as() const {
        return std::get_if<T>(static_cast<const ValueBase*>(this));
    }
};

}  // namespace vigil
