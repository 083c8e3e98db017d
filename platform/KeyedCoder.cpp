#include "platform/KeyedCoder.hpp"

#include <utility>

namespace vigil {

KeyedEncoder::~KeyedEncoder() = default;
KeyedDecoder::~KeyedDecoder() = default;

void KeyedEncoder::encodeObject(std::string_view key, std::shared_ptr<Object> object) {
    if (object) encode(key, Value(std::move(object)));
}

void KeyedEncoder::encodeText(std::string_view key, const std::optional<std::string>& text) {
    if (text) encode(key, Value(*text));
}

void KeyedEncoder::encodeNumber(std::string_view key, const std::optional<Number>& number) {
    if (number) encode(key, Value(*number));
}

void KeyedEncoder::encodeDate(std::string_view key, const std::optional<Date>& date) {
    if (date) encode(key, Value(*date));
}

namespace {

template <class T>
std::optional<T> decodeKind(KeyedDecoder& coder, std::string_view key, const char* kind) {
    Value value = coder.decode(key);
    if (value.isNothing()) return std::nullopt;
    if (const T* held = value.as<T>()) return *held;
    coder.refuse(key, std::string("expected ") + kind);
    return std::nullopt;
}

}  // namespace

bool KeyedDecoder::decodeFlag(std::string_view key) {
    return decodeKind<bool>(*this, key, "true or false").value_or(false);
}

std::optional<std::string> KeyedDecoder::decodeText(std::string_view key) {
    return decodeKind<std::string>(*this, key, "a text");
}

std::optional<Number> KeyedDecoder::decodeNumber(std::string_view key) {
    const Value value = decode(key);
    if (value.isNothing()) return std::nullopt;
    if (const auto* integer = value.as<std::int64_t>()) return Number(*integer);
    if (const auto* real = value.as<double>()) return Number(*real);
    refuse(key, "expected a number");
    return std::nullopt;
}

std::optional<Date> KeyedDecoder::decodeDate(std::string_view key) {
    return decodeKind<Date>(*this, key, "a date");
}

std::optional<ValueList> KeyedDecoder::decodeList(std::string_view key) {
    return decodeKind<ValueList>(*this, key, "a list");
}

std::optional<ValueDictionary> KeyedDecoder::decodeDictionary(std::string_view key) {
    return decodeKind<ValueDictionary>(*this, key, "a dictionary");
}

std::shared_ptr<Object> KeyedDecoder::decodeAnyObject(std::string_view key) {
    return decodeKind<std::shared_ptr<Object>>(*this, key, "an object").value_or(nullptr);
}

}  // namespace vigil
