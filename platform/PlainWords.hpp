#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

namespace vigil {

/// A few plain bytes as words, and back: what can be kept in atomic words. For types that are copied byte by
/// byte, and those of them that may be absent.
template <class T>
struct PlainWords {
    static constexpr bool kPossible = std::is_trivially_copyable_v<T>;
    static constexpr std::size_t kCount = (sizeof(T) + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
    using Words = std::array<std::uint64_t, kCount>;

    static Words of(const T& value) {
        Words words{};
        std::memcpy(words.data(), &value, sizeof value);
        return words;
    }
    static T valueOf(const Words& words) {
        std::array<std::byte, sizeof(T)> bytes;
        std::memcpy(bytes.data(), words.data(), sizeof bytes);
        return std::bit_cast<T>(bytes);
    }
};

// What is absent has no bytes that mean anything, so whether it is there is a word of its own.
template <class T>
struct PlainWords<std::optional<T>> {
    static constexpr bool kPossible = PlainWords<T>::kPossible;
    static constexpr std::size_t kCount = PlainWords<T>::kCount + 1;
    using Words = std::array<std::uint64_t, kCount>;

    static Words of(const std::optional<T>& value) {
        Words words{};
        if (!value) return words;
        words[0] = 1;
        const auto held = PlainWords<T>::of(*value);
        std::copy(held.begin(), held.end(), words.begin() + 1);
        return words;
    }
    static std::optional<T> valueOf(const Words& words) {
        if (words[0] == 0) return std::nullopt;
        typename PlainWords<T>::Words held;
        std::copy(words.begin() + 1, words.end(), held.begin());
        return PlainWords<T>::valueOf(held);
    }
};

}  // namespace vigil
