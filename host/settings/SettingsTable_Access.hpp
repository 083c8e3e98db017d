#pragma once

#include <type_traits>

#include "host/settings/SettingsTable.hpp"

// How a row of the table reaches the member of `Settings` that it stands for.

namespace vigil {

inline const std::vector<std::string_view>& choicesOf(MailMethod) {
    static const std::vector<std::string_view> names = {"none", "smtp", "sendmail"};
    return names;
}
inline const std::vector<std::string_view>& choicesOf(MailSecurity) {
    static const std::vector<std::string_view> names = {"none", "starttls", "tls"};
    return names;
}
inline const std::vector<std::string_view>& choicesOf(SmsMethod) {
    static const std::vector<std::string_view> names = {"none", "gammu", "mmcli", "command"};
    return names;
}
inline const std::vector<std::string_view>& choicesOf(LogFormat) {
    static const std::vector<std::string_view> names = {"auto", "text", "journal", "json"};
    return names;
}

/// From a member's type to the table's and back.
template <class T>
struct SettingForm {
    static SettingValue out(const T& member) { return member; }
    static void in(T& member, const SettingValue& value) { member = std::get<T>(value); }
};
template <>
struct SettingForm<int> {
    static SettingValue out(int member) { return static_cast<long>(member); }
    static void in(int& member, const SettingValue& value) {
        member = static_cast<int>(std::get<long>(value));
    }
};
template <>
struct SettingForm<std::optional<int>> {
    static SettingValue out(const std::optional<int>& member) {
        return member ? SettingValue(static_cast<long>(*member)) : SettingValue();
    }
    static void in(std::optional<int>& member, const SettingValue& value) {
        member = static_cast<int>(std::get<long>(value));
    }
};
template <class T>
requires std::is_enum_v<T>
struct SettingForm<T> {
    static SettingValue out(T member) {
        return std::string(choicesOf(member)[static_cast<std::size_t>(member)]);
    }
    static void in(T& member, const SettingValue& value) {
        const auto& names = choicesOf(member);
        for (std::size_t i = 0; i < names.size(); ++i)
            if (names[i] == std::get<std::string>(value)) member = static_cast<T>(i);
    }
};

/// The row with the access to a member of a section; an enumeration brings its choices.
template <auto Section, auto Member>
SettingRow rowFor(SettingRow row) {
    using Type = std::remove_cvref_t<decltype(std::declval<Settings&>().*Section.*Member)>;
    row.get = [](const Settings& settings) { return SettingForm<Type>::out(settings.*Section.*Member); };
    row.set = [](Settings& settings, const SettingValue& value) {
        SettingForm<Type>::in(settings.*Section.*Member, value);
    };
    if constexpr (std::is_enum_v<Type>) row.choices = choicesOf(Type{});
    return row;
}

}  // namespace vigil
