#pragma once

#include <string>
#include <string_view>

#include "conditions/ConditionNode.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A literal as people read and type it: a number in the fewest digits that say it, a text as it is without
/// quotes, a date as "2024-01-01T12:00:00Z", or as its seconds since 2001 where no calendar date says the
/// same. `literalFromText` of it gives the same literal, to the bit. Any thread.
VIGIL_KIT std::string literalText(const ComparisonLiteral& literal);

/// What a text means where a literal for `member` is wanted. Numbers as the language writes them; texts stand
/// for themselves; dates as `parseDate` reads them, or as a number of seconds since 2001-01-01 00:00:00 UTC.
VIGIL_KIT Result<ComparisonLiteral> literalFromText(ComparisonMember member, std::string_view text);

/// What a comparison with that member starts with: 0, the empty text, 2001-01-01 00:00:00 UTC.
VIGIL_KIT ComparisonLiteral initialLiteral(ComparisonMember member);

/// Whether such a literal may stand behind the member.
VIGIL_KIT bool literalFits(ComparisonMember member, const ComparisonLiteral& literal);

}  // namespace vigil
