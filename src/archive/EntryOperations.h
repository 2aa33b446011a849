// The operations on entries: extracting, replacing, adding, deleting and
// moving, renaming and name case, rebuilding. Each takes what it works on as
// arguments (the archive, these rows, this file, this folder) and returns a
// Status with the text of what failed; none asks the person anything, shows a
// message or reads korvel.ini. Where adding must ask about a duplicate, the
// caller's answer comes in as a function. Every one keeps the table, the
// directory file and the data file in agreement when it fails. Rows are
// 0-based.
#pragma once

#include "archive/Archive.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// Asked by long work at each point where it can stop and leave the archive
// whole (between files, before a rebuild's renames): true stops it there. An
// empty one never stops.
using StopCheck = std::function<bool()>;
inline bool StopAsked(const StopCheck& stop) {
    return stop && stop();
}

// --- extracting --------------------------------------------------------------
struct ExtractResult {
    Status status = Status::Ok();
    // The file written (or tried); nothing when the entry's name is unsafe.
    std::optional<std::filesystem::path> target;
    // What stands at the target may not be written (a link, a FIFO, a
    // folder, one of the archive's own files): status says so, naming it.
    bool refused = false;
    // Written, but this many bytes of the entry lie past the end of the data
    // file and are not in the file; MissingBytesText says so.
    std::uint64_t missingBytes = 0;
    // A file stood at the target and the overwrite decision kept it: nothing
    // was written (Skip), or nothing more should be (Stop).
    bool skipped = false;
    bool stopped = false;
};
// What extracting does when a file already stands where an entry would go.
enum class OverwriteChoice { Overwrite, Skip, Stop };
// Asked with the path of the file that exists, before anything is written.
using DecideOverwrite = std::function<OverwriteChoice(const std::filesystem::path& existing)>;
// Writes the row's bytes to the file its name gives inside `folder`. When
// something already stands there, `decide` says whether to write over it;
// without a decision the file is written over (the temps copies for View).
ExtractResult ExtractEntryTo(const Archive& archive, std::size_t row,
                             const std::filesystem::path& folder,
                             const DecideOverwrite& decide = {});

// --- replacing ---------------------------------------------------------------
struct ReplaceResult {
    Status status = Status::Ok();
    // The data was placed but the directory file could not be written; the
    // row says again what the old directory file says.
    bool directoryNotWritten = false;
};
// Puts the file's data in place of the row's: in place when it fits, else
// appended behind the entry that lies last. Writes the directory file.
ReplaceResult ReplaceEntry(Archive& archive, std::size_t row, const std::string& path);

// What is said of a replacement whose directory file could not be written.
inline constexpr std::string_view DirectoryNotWrittenText =
    "the directory file could not be written";

// --- adding ------------------------------------------------------------------
// What adding does with a file whose name a row already holds.
enum class DuplicateAnswer { Replace, RenameOld, RenameNew, Skip, AddBeside };
// The word korvel.ini and the command line use for an answer, and back
// (AddBeside has none: it is what a word we do not know means).
std::string_view DuplicateAnswerWord(DuplicateAnswer answer);
DuplicateAnswer DuplicateAnswerFromWord(std::string_view word);

struct DuplicateDecision {
    DuplicateAnswer answer = DuplicateAnswer::AddBeside;
    // RenameNew: the raw name to add under, or why there is none.
    std::string newName;
    Status problem = Status::Ok();
};
// Asked for each row whose name equals the file's ignoring case. For
// RenameOld the caller has renamed that row itself before returning.
using DecideDuplicate =
    std::function<DuplicateDecision(const std::string& rawName, std::size_t row)>;

enum class AddResult { Added, Skipped, Replaced, Failed };
struct AddOutcome {
    AddResult result = AddResult::Added;
    Status status = Status::Ok();
    // Failed while copying the data (not while deciding or replacing): the
    // directory file was then written from the rows as they stand, and this
    // says how that went.
    Status directoryAfterFailure = Status::Ok();
    // Replaced, but the directory file could not be written (status says why).
    bool directoryNotWritten = false;
    std::size_t row = 0; // Added or Replaced: the row
    // The name as given when it was longer than a record holds (the name
    // passed in then holds the shortened one); empty otherwise.
    std::string shortenedFrom;
};

// Adds files one by one and writes the directory file once at the end. The
// data of each goes behind the one before, so a big archive costs no pass
// over its rows per file.
class AddBatch {
public:
    // `scan`: look for rows of the same name and ask `decide` about each.
    AddBatch(Archive& archive, bool scan, DecideDuplicate decide);
    ~AddBatch();
    AddBatch(const AddBatch&) = delete;
    AddBatch& operator=(const AddBatch&) = delete;

    // Adds one file under `name` (raw Windows-1252; RenameNew changes it,
    // and a name longer than a record holds comes back shortened). A name
    // EntryNameProblem refuses fails before anything is written. Does not
    // write the directory file.
    AddOutcome Add(const std::string& path, std::string& name);
    // Writes the directory file. When that fails the table follows the file
    // on disk again and the appended data is unused space.
    Status Finish();

private:
    class NameIndex;
    AddOutcome DataFailure(std::string error);
    AddOutcome AddUnderStoredName(const std::string& path, std::string& name,
                                  std::string& longName);

    Archive& archive_;
    bool scan_;
    DecideDuplicate decide_;
    std::unique_ptr<NameIndex> index_;
    std::optional<std::uint64_t> appendAt_;
};

// One file on its own (no batch); does not write the directory file.
AddOutcome AddFile(Archive& archive, const std::string& path, std::string& name, bool scan,
                   const DecideDuplicate& decide);

// Texture dictionaries are added last in a batch, so models come first.
bool IsTextureDictionary(std::string_view fileName);

// --- deleting and moving -----------------------------------------------------
// Removes the rows and writes the directory file; on failure the rows are
// back as they were.
Status DeleteRows(Archive& archive, const std::vector<std::size_t>& rows);
// Appends copies of the rows (unselected) and removes the originals.
Status MoveRowsToEnd(Archive& archive, const std::vector<std::size_t>& rows);

// --- renaming and name case --------------------------------------------------
// Gives the row the raw name and writes the directory file; on failure (or
// a name EntryNameProblem refuses) the row keeps its old name.
Status RenameEntry(Archive& archive, std::size_t row, const std::string& rawName);

enum class NameCase { Whole, BeforeExtension, Extension };
struct LowerCaseResult {
    Status status = Status::Ok();
    std::size_t count = 0; // rows whose names changed
};
LowerCaseResult LowerCaseNames(Archive& archive, const std::vector<std::size_t>& rows,
                               NameCase which);

// --- rebuilding --------------------------------------------------------------
struct RebuildProgress {
    std::function<void(std::size_t row)> copying; // before each row's data
    std::function<void()> writingDirectory;
    // Asked while the data is copied and once more before the journal; a
    // stop removes the new files and leaves the old archive untouched.
    StopCheck stop;
};
struct RebuildResult {
    Status status = Status::Ok();
    // The journal was written: the archive must be opened again (which
    // completes the renames should they have stopped).
    bool reopen = false;
    // Rows whose records reached past the end of the data file: each was cut
    // to the sectors that exist, and MissingBytesStatus says how much went.
    std::vector<Status> cut;
    // Stopped on request before anything of the old archive changed.
    bool stopped = false;
};
// Writes a compact copy of the archive in row order and puts it in the old
// pair's place.
RebuildResult RebuildArchive(const Archive& archive, const RebuildProgress& progress);

} // namespace korvel
