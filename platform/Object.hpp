#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/Export.hpp"

namespace vigil {

class KeyedDecoder;
class KeyedEncoder;

/// Root of everything that is archived, compared or described.
class VIGIL_KIT Object {
  public:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
    virtual ~Object();

    /// The name under which archives record the class; it never changes.
    virtual std::string className() const = 0;

    /// Whether the other object counts as the same; nothing is never equal. Identity unless overridden.
    virtual bool isEqual(const Object* other) const;
    /// From the object's identity, whatever `isEqual` compares.
    std::size_t hash() const;
    /// "<Class: 0xADDRESS>" unless overridden.
    virtual std::string description() const;

    /// Fills a fresh object from an archive. False means that no object comes of it.
    virtual bool initWithCoder(KeyedDecoder& coder);
    virtual void encodeWithCoder(KeyedEncoder& coder) const;
};

/// "<Class: 0xADDRESS>", what `Object::description` gives.
VIGIL_KIT std::string defaultDescription(const Object& object);

/// How an absent object, text or date reads inside a text.
inline constexpr const char* kAbsentText = "(null)";

}  // namespace vigil
