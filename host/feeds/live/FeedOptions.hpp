#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "host/feeds/FeedUrl.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What stands behind "?" in a feed's URL, read as what it should be. Errors name the option and say what was
/// expected.
class FeedOptions {
  public:
    explicit FeedOptions(const FeedUrl& url) : m_url(url) {}

    /// The first of that name, or nothing.
    std::optional<std::string> text(std::string_view name) const;
    Result<double> number(std::string_view name, double unlessSaid, double least, double most) const;
    /// One of `words`, the first of them where nothing is said.
    Result<std::string> word(std::string_view name, std::initializer_list<const char*> words) const;

  private:
    const FeedUrl& m_url;
};

}  // namespace vigil
