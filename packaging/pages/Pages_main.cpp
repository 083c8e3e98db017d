#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "host/command/CommandLine.hpp"
#include "packaging/pages/Completions.hpp"
#include "packaging/pages/ManPage.hpp"

// vigil-pages FOLDER DATE: writes man1/*.1, bash/vigil, zsh/_vigil and fish/vigil.fish into the folder, after
// clearing those away that an earlier build has left there.

namespace vigil {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
}

void writeAll(const fs::path& folder, const PageEdges& edges) {
    Output output(stdout, stderr);
    CommandContext context{output, {}};
    CLI::App app;
    describeCommands(app, allCommands(), context);
    const CommandNote program = commandTree(app);
    for (const char* part : {"man1", "bash", "zsh", "fish"})
        fs::remove_all(folder / part);
    write(folder / "man1" / (pageName(program) + ".1"), programPage(program, edges));
    for (const CommandNote& command : program.commands)
        write(folder / "man1" / (pageName(command) + ".1"), commandPage(command, program, edges));
    write(folder / "bash/vigil", bashCompletion(program));
    write(folder / "zsh/_vigil", zshCompletion(program));
    write(folder / "fish/vigil.fish", fishCompletion(program));
}

}  // namespace
}  // namespace vigil

int main(int count, char** words) {
    if (count != 3) {
        std::fputs("vigil-pages FOLDER DATE\n", stderr);
        return 2;
    }
    // The pages are for every user, so a default below the home folder has to read as one.
    for (const char* name :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        unsetenv(name);
    setenv("HOME", "~", 1);
    try {
        vigil::writeAll(words[1], {vigil::versionText(), words[2]});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "vigil-pages: %s\n", failure.what());
        return 3;
    }
    return 0;
}
