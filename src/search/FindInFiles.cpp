#include "search/FindInFiles.h"

#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "platform/FileCopy.h"
#include "search/ByteSource.h"
#include "search/CollisionFile.h"
#include "search/TextureDictionary.h"

#include <optional>
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

void Step(const SearchProgress& progress, std::size_t done) {
    if (progress.step) {
        progress.step(done);
    }
}

// The models of the copy of a collision entry; nothing when there is no
// copy to read.
void ReadCollisionCopy(const fs::path& copy, const Entry& entry, std::size_t row,
                       std::vector<NameRow>& names) {
    FileSource file;
    const auto length = FileLength(copy);
    if (!length || !file.open(copy)) {
        return;
    }
    for (std::string& model : ReadCollisionNames(file, 0, *length)) {
        names.push_back({std::move(model), entry.name, row});
    }
}

} // namespace

std::vector<NameRow> ReadTextureDictionaryNames(const Archive& archive,
                                                const SearchProgress& progress,
                                                std::uint64_t* bytesRead) {
    const EntryTable& table = archive.table();
    Begin(progress, CountOfKind(table, EntryKind::Texture));
    std::vector<NameRow> names;
    FileSource data;
    data.open(archive.dataPath());
    std::size_t step = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const Entry& entry = table[i];
        if (!IsOfKind(entry, EntryKind::Texture)) {
            continue;
        }
        Step(progress, ++step);
        if (SkippedDictionary(entry.name) || !data.isOpen()) {
            continue;
        }
        for (TextureName& texture : ReadTextureNames(data, entry.byteOffset(), entry.byteCount())) {
            names.push_back({std::move(texture.name), std::move(texture.mask), i + 1});
        }
    }
    if (bytesRead) {
        *bytesRead = data.bytesRead();
    }
    return names;
}

std::vector<FoundInFile> FindTextures(const Archive& archive, std::string_view text,
                                      const SearchProgress& progress) {
    const std::vector<NameRow> names = ReadTextureDictionaryNames(archive, progress);
    std::vector<FoundInFile> found;
    if (const auto wanted = Utf8ToCp1252(text)) {
        for (const NameRow& n : names) {
            if (n.name.find(*wanted) != std::string::npos) {
                found.push_back({n.name, archive.table()[n.row - 1].name, n.row});
            }
        }
    }
    return found;
}

std::vector<FoundInFile> FindCollisionModels(const Archive& archive, const fs::path& copiesFolder,
                                             std::string_view text,
                                             const SearchProgress& progress) {
    const EntryTable& table = archive.table();
    Begin(progress, CountOfKind(table, EntryKind::Collision));
    struct Copy {
        std::size_t row;
        std::optional<fs::path> path; // nothing when the name cannot be a file name
    };
    std::vector<Copy> copies;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!IsOfKind(table[i], EntryKind::Collision)) {
            continue;
        }
        Copy copy{i + 1, EntryFileIn(copiesFolder, table[i].name)};
        if (copy.path) {
            std::error_code ec;
            fs::create_directories(copiesFolder, ec);
            // A copy that fails is read for what it holds, as it always was.
            (void)CopyEntryToFile(archive, table[i], *copy.path);
        }
        copies.push_back(std::move(copy));
        Step(progress, copies.size());
    }
    Step(progress, 0);
    std::vector<NameRow> names;
    std::size_t step = 0;
    for (const Copy& copy : copies) {
        Step(progress, ++step);
        if (copy.path) {
            ReadCollisionCopy(*copy.path, table[copy.row - 1], copy.row, names);
        }
    }
    std::vector<FoundInFile> found;
    if (const auto wanted = Utf8ToCp1252(text)) {
        const std::string needle = ToLowerCp1252(*wanted);
        for (NameRow& n : names) {
            if (ToLowerCp1252(n.name).find(needle) != std::string::npos) {
                found.push_back({std::move(n.name), std::move(n.second), n.row});
            }
        }
    }
    return found;
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
