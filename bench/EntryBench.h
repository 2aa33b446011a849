// The engine as the entry benchmarks drive it: a settings file in the bench's
// folder, an editor over a Desktop that does nothing, and the entry commands.
#pragma once

#include "BenchSupport.h"
#include "ScriptedEntryDialogs.h"
#include "window/EntryCommands.h"

namespace korvel::bench {

struct EntryBench {
    explicit EntryBench(const std::filesystem::path& folder)
        : settings(folder / "korvel.ini", folder / "lang.ini"), editor(desktop, settings, folder),
          dialogs(settings), commands(editor, dialogs) {
        settings.EnsureSettingsFile();
    }

    NullDesktop desktop;
    Settings settings;
    Editor editor;
    test::ScriptedEntryDialogs dialogs;
    EntryCommands commands;
};

// The archive the rebuild and extract figures are quoted for:
// [entries=20000] [archive MiB=1024] [unused %=25] [rounds]
struct ArchiveArgs {
    ArchiveArgs(int argc, char** argv, unsigned long defaultRounds)
        : entries(static_cast<std::uint32_t>(Arg(argc, argv, 1, 20000))),
          archiveMiB(Arg(argc, argv, 2, 1024)),
          unused(static_cast<unsigned>(Arg(argc, argv, 3, 25))),
          rounds(std::max(1ul, Arg(argc, argv, 4, defaultRounds))) {}

    std::uint32_t entries;
    std::uint64_t archiveMiB;
    unsigned unused;
    unsigned long rounds;
};

} // namespace korvel::bench
