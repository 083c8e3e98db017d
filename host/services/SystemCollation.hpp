#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/Collation.hpp"

struct UCollator;

namespace vigil {

/// The language whose order counts, as the environment names it: LC_ALL, else LC_COLLATE, else LANG, without
/// its encoding ("de_DE"). Empty, the order common to all languages, where none of them says one or where it
/// is "C" or "POSIX".
std::string collationLocale();

/// The order of a language, from the system's tables. Where these are missing, plain ASCII order without
/// regard to case. The tables are opened by the first comparison. Any thread.
class SystemCollation : public Collation {
  public:
    explicit SystemCollation(std::string locale = collationLocale());
    ~SystemCollation() override;

    int compareIgnoringCase(std::string_view first, std::string_view second) const override;

  private:
    struct Close {
        void operator()(UCollator* collator) const;
    };

    const UCollator* collator() const;

    const std::string m_locale;
    mutable std::once_flag m_opened;
    mutable std::unique_ptr<UCollator, Close> m_collator;
};

}  // namespace vigil
