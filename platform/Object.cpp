#include "platform/Object.hpp"

#include <cstdio>
#include <functional>

namespace vigil {

Object::~Object() = default;

bool Object::isEqual(const Object* other) const {
    return other == this;
}

std::size_t Object::hash() const {
    return std::hash<const void*>{}(this);
}

std::string Object::description() const {
    return defaultDescription(*this);
}

bool Object::initWithCoder(KeyedDecoder&) {
    return true;
}

void Object::encodeWithCoder(KeyedEncoder&) const {}

std::string defaultDescription(const Object& object) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(&object));
    return "<" + object.className() + ": " + address + ">";
}

}  // namespace vigil
