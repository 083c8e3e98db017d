// JSON lines, read as they come by default, one station alone, and without putting them in order.

#include <string>
#include <utility>

#include "fuzz/Recorded.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const auto with = [](const JsonLinesOptions& options) {
        return [options](std::unique_ptr<Bytes> bytes, ProblemTeller tell) {
            return openJsonLines(std::move(bytes), "input", options, std::move(tell));
        };
    };
    const auto text = fuzz::textOf(data, size);
    fuzz::requireSameInAnyPieces(text, true, with({}));
    fuzz::requireSameInAnyPieces(text, true, with({.station = "a", .orderWindow = 2}));
    fuzz::requireSameInAnyPieces(text, false, with({.orderWindow = 0}));
    return 0;
}
