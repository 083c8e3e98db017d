// Runs the files of folders through a fuzzer's entry point, without a fuzzer: a test of the seeds.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/Law.hpp"

int main(int count, char** arguments) {
    long inputs = 0;
    for (int i = 1; i < count; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            if (!in.is_open() || in.bad()) {
                std::fprintf(stderr, "%s cannot be read\n", entry.path().c_str());
                return 3;
            }
            std::printf("%s\n", entry.path().filename().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
            ++inputs;
        }
    std::printf("%ld inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
