#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/JsonText.hpp"
#include "host/command/Progress.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/SiteRunner.hpp"
#include "host/site/SiteCheck.hpp"
#include "host/site/SiteCopy.hpp"
#include "host/site/SiteFiles.hpp"
#include "host/site/SiteLock.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

struct SiteOptions {
    std::string site;
    std::string file;
    bool json = false;
    bool force = false;
};

void fail(CommandContext& context, ExitStatus status, const std::string& text) {
    context.output.error(text);
    context.status = status;
}

/// A name that was typed wrong is no failure of the machine.
ExitStatus statusOf(const SiteError& error) {
    const bool typed = error.kind == SiteError::Kind::NotThere || error.kind == SiteError::Kind::NotASite;
    return typed ? ExitStatus::BadInput : ExitStatus::Environment;
}

bool isThere(const std::string& file) {
    std::error_code unknown;
    return fs::exists(file, unknown);
}

/// What was typed names a file that would be lost.
bool wouldReplace(const std::string& file, bool force, CommandContext& context) {
    if (force || !isThere(file)) return false;
    fail(context, ExitStatus::BadInput, file + ": is there already; --force replaces it");
    return true;
}

void create(const std::string& site, const SiteOptions&, CommandContext& context) {
    if (isThere(site))
        return fail(context, ExitStatus::BadInput, site + ": is there already, and was left as it is");
    if (const auto made = SiteFile::create(site); !made)
        return fail(context, ExitStatus::Environment, made.error().message);
    context.output.print("Made the site {}. `vigil station create --help` shows how to give it a station.\n",
                         site);
    if (const std::string hint = monitorsFromBefore(site); !hint.empty()) context.output.error(hint);
}

void check(const std::string& site, const SiteOptions&, CommandContext& context) {
    Progress progress(context.output);
    const auto findings = checkSite(site, progress.teller());
    progress.end();
    if (!findings) return fail(context, statusOf(findings.error()), findings.error().message);
    for (const std::string& finding : findings.value())
        context.output.print("{}\n", finding);
    if (findings.value().empty())
        context.output.print("{} holds together.\n", site);
    else
        context.status = ExitStatus::No;
}

Result<Done> exportLines(const std::string& site, const SiteOptions& options, Output& output,
                         const SiteProgress& progress) {
    if (options.file == "-")
        return exportSiteLines(
            site,
            [&](std::string_view line) {
                output.write(line);
                return true;  // the stream tells at the end
            },
            progress);
    const FreshFile fresh(options.file);
    if (auto made = fresh.make(); !made) return made;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(fresh.path().c_str(), "wb"),
                                                               std::fclose);
    if (!file) return Error{options.file + ": could not be written"};
    const auto written = exportSiteLines(
        site,
        [&](std::string_view line) {
            return std::fwrite(line.data(), 1, line.size(), file.get()) == line.size();
        },
        progress);
    if (!written) return written;
    if (std::fflush(file.get()) != 0) return Error{options.file + ": could not be written"};
    return fresh.takePlace(/*ofAnother=*/options.force);
}

void exportTo(const std::string& site, const SiteOptions& options, CommandContext& context) {
    const bool toOutput = options.json && options.file == "-";
    if (options.file == "-" && !options.json)
        return fail(context, ExitStatus::BadInput,
                    "standard output takes lines, not a database: - needs --json");
    if (!toOutput && wouldReplace(options.file, options.force, context)) return;
    Progress progress(context.output);
    const auto done = options.json ? exportLines(site, options, context.output, progress.teller())
                                   : exportSite(site, options.file, options.force, progress.teller());
    progress.end();
    if (!done) return fail(context, ExitStatus::Environment, done.error().message);
    if (!toOutput) context.output.print("Copied {} to {}.\n", site, options.file);
}

void importFrom(const std::string& site, const SiteOptions& options, CommandContext& context) {
    Progress progress(context.output);
    const auto imported = importSite(options.file, site, options.force, progress.teller());
    progress.end();
    if (!imported) {
        // What a file says is the user's; the one thing that is not is where the site stands.
        const bool ofSite = imported.error().message.starts_with(site + ": ");
        const bool onlyInTheWay =
            ofSite && !options.force && imported.error().message == site + ": " + std::string(kIsThere);
        return fail(context, ofSite && !onlyInTheWay ? ExitStatus::Environment : ExitStatus::BadInput,
                    imported.error().message + (onlyInTheWay ? "; --force replaces it" : ""));
    }
    const bool added = imported.value().form == Imported::Form::Monitors;
    context.output.print("{} {} from {}: {} {}stations, {} monitors.\n", added ? "Added to" : "Made", site,
                         options.file, imported.value().stations, added ? "new " : "",
                         imported.value().plugIns);
    if (added && imported.value().stations > 0)
        context.output.write(
            "A new station has no feed yet; `vigil station edit --help` shows how to give it one.\n");
}

void vacuum(const std::string& site, const SiteOptions&, CommandContext& context) {
    std::error_code unknown;
    const auto before = fs::file_size(site, unknown);
    Progress progress(context.output);
    if (const SiteProgress told = progress.teller()) told("writing it anew", 0, 0);
    const auto done = vacuumSite(site);
    progress.end();
    if (!done) return fail(context, statusOf(done.error()), done.error().message);
    context.output.print("{}: {} KiB before, {} KiB now.\n", site, before / 1024,
                         fs::file_size(site, unknown) / 1024);
}

std::string summaryJson(const SiteFile& site, const SiteSummary& summary, long runner) {
    std::string line = "{\"site\":";
    appendJsonText(line, site.path());
    line += fmt::format(
        ",\"format\":{},\"bytes\":{},\"stations\":{},\"monitors\":{},\"fires\":{},\"openFires\":{},"
        "\"effects\":{},"
        "\"openEffects\":{},\"oldestEffect\":",
        summary.version, summary.bytes, summary.stations, summary.plugIns, summary.fires, summary.openFires,
        summary.effects, summary.openEffects);
    line += summary.oldest ? "\"" + summary.oldest->isoText() + "\"" : "null";
    line += std::string(",\"clean\":") + (summary.clean ? "true" : "false") + ",\"process\":";
    return line + (runner != 0 ? std::to_string(runner) : "null") + "}\n";
}

void show(const std::string& path, const SiteOptions& options, CommandContext& context) {
    const auto site = openSite(path, Access::Read, context);
    if (!site) return;
    const auto counted = site->summary();
    if (!counted) return fail(context, ExitStatus::Environment, counted.error().message);
    const SiteSummary& summary = counted.value();
    const long runner = SiteLock::holder(site->path());
    if (options.json) return context.output.write(summaryJson(*site, summary, runner));
    context.output.print("{} (format {}, {} KiB)\n", site->path(), summary.version,
                         (summary.bytes + 1023) / 1024);
    context.output.print("  stations  {}\n  monitors  {}\n", summary.stations, summary.plugIns);
    context.output.print("  fires     {}, {} of them open\n", summary.fires, summary.openFires);
    context.output.print("  actions   {}, {} of them without an end{}\n", summary.effects,
                         summary.openEffects, summary.oldest ? ", since " + summary.oldest->isoText() : "");
    if (runner != 0)
        context.output.print("  run by    process {}\n", runner);
    else
        context.output.print(
            "  run by    nobody, {}\n",
            summary.clean ? "closed cleanly" : "and not closed cleanly; the next run checks it");
}

}  // namespace

void addSiteCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<SiteOptions>();
    auto* site = app.add_subcommand("site", "Make, check and copy the file that holds stations and monitors");
    site->require_subcommand(1);
    site->footer(
        "Examples:\n"
        "  vigil site create\n"
        "  vigil site export backup.vigilsite\n"
        "  vigil site export --json - | less\n"
        "  vigil site import backup.vigilsite --force");
    const auto add = [&](const char* name, const char* purpose, auto run) {
        auto* command = site->add_subcommand(name, purpose);
        addSiteOption(*command, options->site);
        command->callback([options, run, &context] {
            if (const auto path = siteOf(options->site, context)) run(*path, *options, context);
        });
        return command;
    };
    add("create", "An empty site", create);
    add("check", "Does it hold together? Status 1 where it does not", check);
    auto* exporting = add("export", "One consistent copy, also while the site is run", exportTo);
    exporting->add_option("FILE", options->file, "Where the copy goes; with --json, - for standard output")
        ->required();
    exporting->add_flag("--json", options->json, "As lines of JSON; docs/formats/site.md tells their form");
    exporting->add_flag("--force", options->force, "Replace a file that is there");
    auto* importing =
        add("import", "Make the site what a copy says, or add monitors of an earlier version", importFrom);
    importing->add_option("FILE", options->file, "A copy in either form, or a monitors.json")->required();
    importing->add_flag("--force", options->force, "Replace a site that is there");
    add("vacuum", "Give unused space back to the disk", vacuum);
    add("show", "What is in it, and who runs it", show)
        ->add_flag("--json", options->json, "As one JSON object");
}

}  // namespace vigil
