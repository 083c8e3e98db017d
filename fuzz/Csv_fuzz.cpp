// A CSV file, read as it comes by default and as its less usual options have it.

#include <string>
#include <utility>

#include "fuzz/Recorded.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const auto with = [](const CsvOptions& options) {
        return [options](std::unique_ptr<Bytes> bytes, ProblemTeller tell) {
            return openCsv(std::move(bytes), "input", options, std::move(tell));
        };
    };
    const auto text = fuzz::textOf(data, size);
    fuzz::requireSameInAnyPieces(text, true, with({}));
    fuzz::requireSameInAnyPieces(text, true,
                                 with({.separator = ';', .units = UnitSystem::Us, .orderWindow = 2}));
    fuzz::requireSameInAnyPieces(text, false, with({.separator = '\t', .station = "a", .orderWindow = 0}));
    return 0;
}
