#include "archive/Convert.h"
#include "archive/Format.h"
#include "archive/Names.h"
#include "cli/Interrupt.h"
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"

#include <cstdio>
#include <optional>
#include <string_view>

namespace korvel::cli {
namespace {

int List(const Arguments& args) {
    Session session;
    if (args.has("--sort")) {
        const std::string& order = args.options.at("--sort");
        if (order != "name" && order != "offset") {
            return Fail("--sort takes \"name\" or \"offset\", not \"" + order + "\"");
        }
        if (order == "name") {
            session.archive().table().setOrder(EntryTable::Order::Name);
        }
    }
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string out;
    for (const Entry& entry : session.archive().table().rows()) {
        out += ShownName(entry.name);
        out += '\t';
        out += OffsetText(entry.startSector);
        out += '\t';
        out += SizeText(entry.sizeSectors);
        out += '\n';
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : Fail("cannot write the listing");
}

// The files a new archive at `target` would replace, when --force is not
// given to confirm them: the line that says so, else nothing.
std::optional<std::string> UnconfirmedFiles(const std::vector<std::string>& replaced, bool force,
                                            std::string_view what) {
    if (replaced.empty() || force) {
        return std::nullopt;
    }
    const bool one = replaced.size() == 1;
    return (one ? replaced[0] + " already exists"
                : replaced[0] + " and " + replaced[1] + " already exist") +
           "; give --force to replace " + (one ? "it" : "them") + " with " + std::string(what);
}

int New(const Arguments& args) {
    Session session;
    const std::string& path = args.operands[0];
    const bool force = args.has("--force");
    const ArchiveKind kind = args.has("--one-file") ? ArchiveKind::OneFile : ArchiveKind::TwoFile;
    const std::string target = NewArchiveDataPath(path);
    // The directory file found may be another archive's: --force confirms
    // exactly the files named here.
    const std::vector<std::string> emptied = FilesNewArchiveWouldEmpty(target, kind);
    if (const auto refused = UnconfirmedFiles(emptied, force, "an empty archive")) {
        return Fail(*refused);
    }
    std::string openPath;
    if (const Status created = CreateEmptyArchive(
            target, force ? emptied : std::vector<std::string>{}, openPath, kind);
        !created.ok()) {
        return Fail(created.error());
    }
    return session.open(openPath) ? 0 : ExitFailure;
}

int Convert(const Arguments& args) {
    const bool toOne = args.has("--one-file");
    if (toOne == args.has("--two-file")) {
        return Fail("give exactly one of --one-file and --two-file");
    }
    const ArchiveKind kind = toOne ? ArchiveKind::OneFile : ArchiveKind::TwoFile;
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const std::string target = NewArchiveDataPath(args.operands[1]);
    const std::vector<std::string> replaced = FilesNewArchiveWouldEmpty(target, kind);
    const bool force = args.has("--force");
    if (const auto refused = UnconfirmedFiles(replaced, force, "the converted archive")) {
        return Fail(*refused);
    }
    CatchInterrupt();
    RebuildProgress progress;
    progress.stop = InterruptCheck();
    const ConvertResult result = ConvertArchive(
        session.archive(), target, kind, force ? replaced : std::vector<std::string>{}, progress);
    if (result.stopped) {
        return ReportInterrupted("nothing was written");
    }
    if (!result.status.ok()) {
        return Fail(result.status.error());
    }
    for (const Status& cut : result.cut) {
        PrintError(cut.error() + "; the converted archive keeps the sectors that exist.");
    }
    return result.cut.empty() ? 0 : ExitFailure;
}

} // namespace

void AddArchiveVerbs(VerbTable& verbs) {
    verbs["list"] = {"list ARCHIVE.img [--sort name]",
                     "print one line per entry: name, TAB, offset, TAB, size",
                     {{"--sort", true}},
                     1,
                     1,
                     List};
    verbs["new"] = {"new ARCHIVE.img [--force] [--one-file]",
                    "create an empty archive (--force replaces an existing one; --one-file "
                    "makes a one-file San Andreas archive without a .dir)",
                    {{"--force", false}, {"--one-file", false}},
                    1,
                    1,
                    New};
    verbs["convert"] = {"convert SOURCE.img DEST.img --one-file|--two-file [--force]",
                        "write SOURCE's entries, in order and byte for byte, as a new archive "
                        "of the given kind (--force replaces an existing DEST)",
                        {{"--one-file", false}, {"--two-file", false}, {"--force", false}},
                        2,
                        2,
                        Convert};
}

} // namespace korvel::cli
