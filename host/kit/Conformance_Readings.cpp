#include <limits>

#include "host/kit/Conformance_Life.hpp"

namespace vigil {
namespace {

AgentProperty number(const std::string& key, double value, Date time) {
    return AgentProperty::number(key, value, time);
}

}  // namespace

std::vector<std::shared_ptr<const Readings>> oddBatches(Date time) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    std::vector<AgentProperty> many;
    for (int i = 0; i < 500; ++i)
        many.push_back(number("reading" + std::to_string(i), i, time));
    return {
        Readings::make(std::vector<AgentProperty>{}),
        Readings::make({number("windChill", 5, time), number("windSpeed", 40, time)}),
        Readings::make({number("windChill", kNaN, time), number("windSpeed", kInfinity, time)}),
        Readings::make({number("windChill", -kInfinity, time), number("windChill", -0.0, time)}),
        Readings::make(
            {AgentProperty::text("sky", "Rain\n\\\"\0 and more", time), number("windChill", 99, time)}),
        Readings::make({number(std::string(300, 'k'), 1, Date::distantPast())}),
        Readings::make(std::move(many)),
    };
}

}  // namespace vigil
