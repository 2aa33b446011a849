#include "archive/Format.h"
#include "archive/Names.h"
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"

#include <cstdio>

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

int New(const Arguments& args) {
    Session session;
    const std::string& path = args.operands[0];
    const bool force = args.has("--force");
    const std::string target = NewArchiveDataPath(path);
    // The directory file found may be another archive's: --force confirms
    // exactly the files named here.
    const std::vector<std::string> emptied = FilesNewArchiveWouldEmpty(target);
    if (!emptied.empty() && !force) {
        const bool one = emptied.size() == 1;
        return Fail((one ? emptied[0] + " already exists"
                         : emptied[0] + " and " + emptied[1] + " already exist") +
                    "; give --force to replace " + (one ? "it" : "them") +
                    " with an empty archive");
    }
    std::string openPath;
    if (const Status created =
            CreateEmptyArchive(target, force ? emptied : std::vector<std::string>{}, openPath);
        !created.ok()) {
        return Fail(created.error());
    }
    return session.open(openPath) ? 0 : ExitFailure;
}

} // namespace

void AddArchiveVerbs(VerbTable& verbs) {
    verbs["list"] = {"list ARCHIVE.img [--sort name]",
                     "print one line per entry: name, TAB, offset, TAB, size",
                     {{"--sort", true}},
                     1,
                     1,
                     List};
    verbs["new"] = {"new ARCHIVE.img [--force]",
                    "create an empty archive (--force replaces an existing one)",
                    {{"--force", false}},
                    1,
                    1,
                    New};
}

} // namespace korvel::cli
