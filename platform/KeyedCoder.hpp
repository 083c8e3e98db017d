#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Date.hpp"
#include "platform/Export.hpp"
#include "platform/Number.hpp"
#include "platform/Object.hpp"
#include "platform/Value.hpp"

namespace vigil {

/// Takes the entries of one object while it is archived. Entries keep the order in which they are written; an
/// absent value writes no entry. Main thread.
class VIGIL_KIT KeyedEncoder {
  public:
    virtual ~KeyedEncoder();
    virtual void encode(std::string_view key, Value value) = 0;

    void encodeFlag(std::string_view key, bool flag) { encode(key, Value(flag)); }
    void encodeObject(std::string_view key, std::shared_ptr<Object> object);
    void encodeText(std::string_view key, const std::optional<std::string>& text);
    void encodeNumber(std::string_view key, const std::optional<Number>& number);
    void encodeDate(std::string_view key, const std::optional<Date>& date);
};

/// Gives the entries of one archived object. A key that is missing answers nothing. An entry of another kind
/// than the one asked for answers nothing too, and is noted with its path by the reader behind, which then
/// refuses the whole archive; so a class decodes without checks of its own. Main thread.
class VIGIL_KIT KeyedDecoder {
  public:
    virtual ~KeyedDecoder();
    virtual bool contains(std::string_view key) const = 0;
    /// The entry as it is; objects inside it are complete.
    virtual Value decode(std::string_view key) = 0;
    /// Notes that the entry under `key` is not what it has to be, in words for people ("not a condition: …").
    virtual void refuse(std::string_view key, std::string reason) = 0;

    bool decodeFlag(std::string_view key);
    std::optional<std::string> decodeText(std::string_view key);
    std::optional<Number> decodeNumber(std::string_view key);
    std::optional<Date> decodeDate(std::string_view key);
    std::optional<ValueList> decodeList(std::string_view key);
    std::optional<ValueDictionary> decodeDictionary(std::string_view key);

    /// The object under `key`, or nothing; an object of another class than T is refused.
    template <class T>
    std::shared_ptr<T> decodeObject(std::string_view key) {
        auto object = decodeAnyObject(key);
        if (!object) return nullptr;
        auto wanted = std::dynamic_pointer_cast<T>(object);
        if (!wanted) refuse(key, "an object of class " + object->className() + " cannot stand here");
        return wanted;
    }

  private:
    std::shared_ptr<Object> decodeAnyObject(std::string_view key);
};

}  // namespace vigil
