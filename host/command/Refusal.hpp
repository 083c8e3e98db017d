#pragma once

#include <string>
#include <utility>

#include "host/command/CommandContext.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What went wrong, and how the program is to end.
struct Refusal {
    ExitStatus status;
    std::string text;
};

inline Refusal badInput(std::string text) {
    return {ExitStatus::BadInput, std::move(text)};
}

inline Refusal environment(const Error& error) {
    return {ExitStatus::Environment, error.message};
}

inline void tell(CommandContext& context, const Refusal& refusal) {
    context.output.error(refusal.text);
    context.status = refusal.status;
}

}  // namespace vigil
