#include "window/FindCommands.h"

#include "archive/Names.h"
#include "platform/Folders.h"
#include "platform/TextFile.h"
#include "window/LongWork.h"
#include "window/SaveLines.h"

namespace korvel {
namespace {

// The search's progress on PB1, with Cancel, held in `work` once the search
// says how many entries it reads. With nothing to read the bar keeps the
// range it had.
SearchProgress ProgressOn(Desktop& desktop, std::optional<LongWork>& work) {
    return {[&desktop, &work](std::size_t entries) {
                desktop.SetProgress(0);
                if (entries != 0) {
                    work.emplace(desktop, entries);
                }
            },
            [&work](std::size_t done) {
                if (work) {
                    work->step(done);
                }
            },
            [&work] { return work && work->cancelled(); }};
}

// The result list keeps this many rows; a search that finds more says how
// many it left out. Many dictionary records pointing at one dictionary of
// 65 535 textures would otherwise make billions of rows.
constexpr std::size_t FoundRowsKept = 100'000;

// The unread entries the message names one by one; the rest are counted.
constexpr std::size_t UnreadNamed = 20;

// A file search as the window runs it: busy pointer and the remembered text
// first; normal pointer and progress back to 0 at the end; then, when the
// list is not the whole answer, a message saying what is missing from it.
template <class Search>
std::vector<FoundInFile> RunFileSearch(Editor& editor, const std::string& text, Search search) {
    Desktop& desktop = editor.desktop();
    desktop.SetBusy(true);
    editor.settings().WriteSetting(text, "lastFileSearch");
    std::vector<FoundInFile> found;
    std::string unread;
    std::size_t named = 0;
    const FileSearchOutput output{[&](FoundInFile f) {
                                      if (found.size() < FoundRowsKept) {
                                          // The table does not change while
                                          // the search reads it.
                                          f.entry = editor.table().refOf(f.row - 1);
                                          found.push_back(std::move(f));
                                      }
                                  },
                                  [&](const UnreadEntry& entry) {
                                      if (named++ < UnreadNamed) {
                                          unread += "\n" + Cp1252ToUtf8(entry.entryName) + ": " +
                                                    entry.why;
                                      }
                                  }};
    std::optional<LongWork> work;
    const FileSearchCounts counts = search(output, ProgressOn(desktop, work));
    desktop.SetBusy(false);
    desktop.SetProgress(0);
    if (work) {
        work.reset(); // hides the bar
    } else {
        desktop.HideProgress();
    }
    if (counts.stopped) {
        desktop.SetStatus(editor.text("searchCancelled"));
    }
    if (counts.found > found.size()) {
        desktop.ShowMessage(editor.text("fif1") + " " + std::to_string(counts.found - found.size()),
                            editor.text("fif0"), MessageIcon::Information);
    }
    if (counts.unread != 0) {
        if (counts.unread > UnreadNamed) {
            unread += "\n... +" + std::to_string(counts.unread - UnreadNamed);
        }
        desktop.ShowMessage(editor.text("fif2") + unread, editor.text("fif0"),
                            MessageIcon::Exclamation);
    }
    return found;
}

// Before the first search the list has no rows at all; after a search that
// found nothing it holds the placeholder row, which is not saved either.
void SaveResultLines(Editor& editor, bool searched, const std::vector<std::string>& lines,
                     bool askBeforeReplacing) {
    Desktop& desktop = editor.desktop();
    if (!searched) {
        desktop.ShowMessage(editor.text("sd3"), editor.text("sd4"), MessageIcon::Information);
        return;
    }
    if (lines.empty()) {
        desktop.ShowMessage(editor.text("sd3"), "", MessageIcon::None);
        return;
    }
    // Saving ends quietly on failure, as the result windows show no errors.
    (void)SaveLinesAskingPath(
        editor, {editor.text("sd0"), editor.text("cdFiles3"), {}, {}, false}, askBeforeReplacing,
        [&](const std::filesystem::path& path) { return WriteLines(path, lines); });
}

} // namespace

std::string FoundCountText(const Editor& editor, std::size_t count) {
    return editor.settings().LookupCountText("found", count);
}

std::vector<FoundEntry> SearchArchive(Editor& editor, const std::string& text,
                                      std::optional<EntryKind> kind) {
    editor.settings().WriteSetting(text, "lastSearch");
    if (!editor.table().empty()) {
        editor.table().setSelected(0, false);
    }
    return FindEntries(editor.table(), text, kind);
}

std::vector<FoundInFile> SearchTextures(Editor& editor, const std::string& text) {
    return RunFileSearch(editor, text,
                         [&](const FileSearchOutput& output, const SearchProgress& progress) {
                             return FindTextures(editor.archive(), text, output, progress);
                         });
}

std::vector<FoundInFile> SearchCollisionModels(Editor& editor, const std::string& text) {
    return RunFileSearch(
        editor, text, [&](const FileSearchOutput& output, const SearchProgress& progress) {
            return FindCollisionModels(editor.archive(), TempsFolder(), text, output, progress);
        });
}

std::optional<std::size_t> SelectResultEntries(Editor& editor,
                                               const std::vector<EntryRef>& entries) {
    const FoundSelection selection = SelectFoundEntries(editor.table(), entries);
    if (selection.stale) {
        editor.desktop().ShowMessage(editor.text("resStale"), "", MessageIcon::Information);
    } else if (selection.gone != 0) {
        editor.desktop().ShowMessage(editor.text("resGone") + " " + std::to_string(selection.gone),
                                     "", MessageIcon::Information);
    }
    return selection.last;
}

void SaveFoundEntries(Editor& editor, const std::optional<std::vector<FoundEntry>>& found) {
    SaveResultLines(editor, found.has_value(),
                    found ? FoundEntryLines(*found) : std::vector<std::string>{}, false);
}

void SaveFoundInFiles(Editor& editor, const std::optional<std::vector<FoundInFile>>& found) {
    SaveResultLines(editor, found.has_value(),
                    found ? FoundInFileLines(*found) : std::vector<std::string>{}, true);
}

} // namespace korvel
