#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

#include "platform/Export.hpp"

namespace vigil {

/// Why an operation on the environment failed: one sentence for people, with the place in it (file, line,
/// path inside an archive) where there is one.
struct Error {
    std::string message;
};

/// A value, or the reason why there is none. Reading the side that is not there is a broken promise of the
/// caller and asserts.
///
///     Result<std::string> text = files.readUtf8("/etc/motd");
///     if (!text) return text.error();
///     use(text.value());
template <class T, class E = Error>
class [[nodiscard]] Result {
  public:
    Result(T value) : m_held(std::in_place_index<0>, std::move(value)) {}
    Result(E error) : m_held(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return m_held.index() == 0; }

    T& value() & {
        assert(*this);
        return *std::get_if<0>(&m_held);
    }
    const T& value() const& {
        assert(*this);
        return *std::get_if<0>(&m_held);
    }
    T&& value() && { return std::move(value()); }

    const E& error() const& {
        assert(!*this);
        return *std::get_if<1>(&m_held);
    }

  private:
    std::variant<T, E> m_held;
};

/// The outcome of an operation that has no value to give.
struct Done {};

}  // namespace vigil
