#include "search/FindInFiles.h"

#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "platform/FileCopy.h"
#include "search/ByteSource.h"
#include "search/CollisionFile.h"
#include "search/TextureDictionary.h"

#include <cstdio>
#include <optional>
#include <random>
#include <system_error>

namespace korvel {
namespace {

namespace fs = std::filesystem;

bool IsOfKind(const Entry& entry, EntryKind kind) {
    return KindOfName(entry.name) == kind;
}

std::size_t CountOfKind(const EntryTable& table, EntryKind kind) {
    std::size_t n = 0;
    for (const Entry& entry : table.rows()) {
        n += IsOfKind(entry, kind) ? 1 : 0;
    }
    return n;
}

// Dictionaries the texture search has always passed over.
bool SkippedDictionary(const std::string& name) {
    return ToLowerCp1252(name).starts_with("odie") || name == "Partty_main_lights.txd" ||
           name == "xmode.txd";
}

void Begin(const SearchProgress& progress, std::size_t entries) {
    if (progress.begin) {
        progress.begin(entries);
    }
}

// Steps the progress; false when the search is to end here.
bool Step(const SearchProgress& progress, std::size_t done) {
    if (progress.stop && progress.stop()) {
        return false;
    }
    if (progress.step) {
        progress.step(done);
    }
    return true;
}

// The caller's progress, noting in `stopped` when its stop ended the search.
SearchProgress NotingStop(const SearchProgress& progress, bool& stopped) {
    SearchProgress noting = progress;
    if (progress.stop) {
        noting.stop = [&stopped, stop = progress.stop] { return stopped = stop(); };
    }
    return noting;
}

// Why an entry cannot be read at all from a data file of `dataLength` bytes
// (nothing when the length is unknown or the entry is there to read).
std::string PastTheEnd(const Entry& entry, std::optional<std::uint64_t> dataLength) {
    if (!dataLength || entry.byteCount() == 0 || entry.byteOffset() < *dataLength) {
        return {};
    }
    return "the entry starts at byte " + std::to_string(entry.byteOffset()) +
           ", past the end of the data file (" + std::to_string(*dataLength) + " bytes)";
}

// A folder inside `parent` that this search has just created, so nothing in
// it was put there by anyone else: no planted file or link to read or
// delete. create_directory only reports success for a folder it made.
std::optional<fs::path> CreateOwnFolder(const fs::path& parent, std::string& why) {
    std::error_code ec;
    fs::create_directories(parent, ec);
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        char name[40];
        std::snprintf(name, sizeof name, "korvel-collisions-%08x", random());
        const fs::path folder = parent / name;
        if (fs::create_directory(folder, ec)) {
            return folder;
        }
        if (ec && ec != std::errc::file_exists) {
            why = ec.message();
            return std::nullopt;
        }
    }
    why = "no free folder name in " + parent.string();
    return std::nullopt;
}

// Copies one collision entry to `copy`, hands its models to `model`, and
// removes the copy again. Empty on success, else why it could not be read.
std::string ReadCollisionEntry(const Archive& archive, const Entry& entry, const fs::path& copy,
                               const std::function<void(std::string model)>& model) {
    const Status copied = CopyEntryToFile(archive, entry, copy).status;
    std::string why;
    FileSource file;
    const auto length = FileLength(copy);
    if (!copied.ok()) {
        why = "cannot copy it out: " + copied.error();
    } else if (!length || !file.open(copy)) {
        why = "cannot read its copy";
    } else {
        for (std::string& name : ReadCollisionNames(file, 0, *length)) {
            model(std::move(name));
        }
    }
    std::error_code ec;
    fs::remove(copy, ec);
    return why;
}

// Hands a found row to the output and counts it.
void Found(const FileSearchOutput& output, FileSearchCounts& counts, FoundInFile found) {
    ++counts.found;
    if (output.found) {
        output.found(std::move(found));
    }
}

void Unread(const std::function<void(UnreadEntry)>& unread, UnreadEntry entry) {
    if (unread) {
        unread(std::move(entry));
    }
}

} // namespace

std::uint64_t ReadTextureDictionaryNames(const Archive& archive,
                                         const std::function<void(NameRow)>& name,
                                         const std::function<void(UnreadEntry)>& unread,
                                         const SearchProgress& progress) {
    const EntryTable& table = archive.table();
    Begin(progress, CountOfKind(table, EntryKind::Texture));
    FileSource data;
    data.open(archive.dataPath());
    const auto dataLength = FileLength(archive.dataPath());
    std::size_t step = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const Entry& entry = table[i];
        if (!IsOfKind(entry, EntryKind::Texture)) {
            continue;
        }
        if (!Step(progress, ++step)) {
            break;
        }
        if (SkippedDictionary(entry.name)) {
            continue;
        }
        std::string why = data.isOpen() ? PastTheEnd(entry, dataLength)
                                        : "cannot open the data file " + archive.dataPath();
        if (!why.empty()) {
            Unread(unread, {entry.name, i + 1, std::move(why)});
            continue;
        }
        for (TextureName& texture : ReadTextureNames(data, entry.byteOffset(), entry.byteCount())) {
            name({std::move(texture.name), std::move(texture.mask), i + 1});
        }
    }
    return data.bytesRead();
}

FileSearchCounts FindTextures(const Archive& archive, std::string_view text,
                              const FileSearchOutput& output, const SearchProgress& progress) {
    FileSearchCounts counts;
    const auto wanted = Utf8ToCp1252(text);
    (void)ReadTextureDictionaryNames(
        archive,
        [&](NameRow n) {
            if (wanted && n.name.find(*wanted) != std::string::npos) {
                Found(output, counts, {std::move(n.name), archive.table()[n.row - 1].name, n.row});
            }
        },
        [&](UnreadEntry entry) {
            ++counts.unread;
            Unread(output.unread, std::move(entry));
        },
        NotingStop(progress, counts.stopped));
    return counts;
}

FileSearchCounts FindCollisionModels(const Archive& archive, const fs::path& copiesFolder,
                                     std::string_view text, const FileSearchOutput& output,
                                     const SearchProgress& progress) {
    const EntryTable& table = archive.table();
    const std::size_t collisions = CountOfKind(table, EntryKind::Collision);
    Begin(progress, collisions);
    FileSearchCounts counts;
    const SearchProgress noting = NotingStop(progress, counts.stopped);
    const auto unread = [&](const Entry& entry, std::size_t row, std::string why) {
        ++counts.unread;
        Unread(output.unread, {entry.name, row, std::move(why)});
    };
    std::string folderProblem;
    const std::optional<fs::path> own =
        collisions == 0 ? std::nullopt : CreateOwnFolder(copiesFolder, folderProblem);
    const auto wanted = Utf8ToCp1252(text);
    const std::string needle = wanted ? ToLowerCp1252(*wanted) : std::string();
    const auto dataLength = FileLength(archive.dataPath());
    std::size_t step = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const Entry& entry = table[i];
        if (!IsOfKind(entry, EntryKind::Collision)) {
            continue;
        }
        if (!Step(noting, ++step)) {
            break;
        }
        if (!own) {
            unread(entry, i + 1, "cannot make a folder for the copies: " + folderProblem);
            continue;
        }
        if (std::string why = PastTheEnd(entry, dataLength); !why.empty()) {
            unread(entry, i + 1, std::move(why));
            continue;
        }
        std::string why =
            ReadCollisionEntry(archive, entry, *own / "copy.col", [&](std::string model) {
                if (wanted && ToLowerCp1252(model).find(needle) != std::string::npos) {
                    Found(output, counts, {std::move(model), entry.name, i + 1});
                }
            });
        if (!why.empty()) {
            unread(entry, i + 1, std::move(why));
        }
    }
    if (own) {
        std::error_code ec;
        fs::remove(*own, ec); // empty by now; never anything but our own folder
    }
    return counts;
}

std::vector<std::string> FoundInFileLines(const std::vector<FoundInFile>& found) {
    std::vector<std::string> lines;
    lines.reserve(found.size());
    for (const FoundInFile& f : found) {
        lines.push_back(f.name + "  --  " + f.entryName);
    }
    return lines;
}

} // namespace korvel
