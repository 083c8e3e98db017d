#include "host/command/Progress.hpp"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(ProgressLine, writesOverItselfAndGoesAtTheEnd) {
    std::FILE* results = std::tmpfile();
    std::FILE* errors = std::tmpfile();
    Output output(results, errors);
    {
        Progress progress(output, /*shown=*/true);
        const SiteProgress told = progress.teller();
        told("pages", 0, 0);
        told("rows", 1, 200);
        told("rows", 2, 200);
        told("rows", 3, 200);
    }
    std::string told;
    std::rewind(errors);
    for (int c = std::fgetc(errors); c != EOF; c = std::fgetc(errors))
        told += static_cast<char>(c);
    EXPECT_EQ(told, "\r\x1b[Kpages …\r\x1b[Krows 0 %\r\x1b[Krows 1 %\r\x1b[K");
    EXPECT_FALSE(Progress(output, /*shown=*/false).teller());
    std::fclose(results);
    std::fclose(errors);
}

}  // namespace
}  // namespace vigil
