// An archive entry seen from inside: what the preview shows and the exports
// write, read straight from the data file. Every function takes plain values
// (the data file's path, copies of rows) and returns plain structs, so a
// window can run it off its UI thread; each opens the data file on its own.
#pragma once

#include "archive/Archive.h"
#include "platform/Status.h"
#include "preview/Animation.h"
#include "preview/Collision.h"
#include "preview/Model.h"
#include "preview/ModelExport.h"
#include "preview/Textures.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvel {

enum class PreviewKind { Textures, Model, Collision, Animation, Other };

// The kind of preview an entry gets: by its name's extension.
PreviewKind PreviewKindOf(const std::string& entryName);

struct EntryPreview {
    PreviewKind kind = PreviewKind::Other;
    std::uint64_t size = 0; // bytes of the entry the data file holds
    TextureDictionaryInfo textures;
    ModelInfo model;
    CollisionInfo collision;
    AnimationPackage animation;
    std::string head; // the first bytes (up to HeadBytes), for any other entry
    // Why nothing could be read (the data file cannot be opened); empty else.
    Reason problem;
    // Only the first MaxPreviewBytes were read.
    bool cut = false;
};

inline constexpr std::size_t HeadBytes = 256;

// Where reading an entry stopped, whichever reader read it: `why` is empty
// when the entry was read to its end (and for entries no reader reads).
struct PreviewStop {
    Reason why;
    std::uint64_t at = 0; // from the start of the entry
};
PreviewStop StoppedAt(const EntryPreview& preview);

EntryPreview ReadEntryPreview(const std::filesystem::path& dataPath, const Entry& entry);

// Decodes one level of one texture of the dictionary `entry`.
DecodedImage DecodeEntryTexture(const std::filesystem::path& dataPath, const Entry& entry,
                                const TextureInfo& texture, std::size_t level);

// The textures `names` of the model `modelName`, looked up as a modder
// would: the dictionary of the same base name first, then every dictionary
// in `rows` in order, until each is found. First mip level, decoded.
TextureImages FindModelTextures(const std::filesystem::path& dataPath,
                                const std::vector<Entry>& rows, const std::string& modelName,
                                const std::vector<std::string>& names);

// Writes `bytes` to `path` through the one output rule (OpenOutputFile),
// keeping off the archive's own files.
Status WriteFileBytes(const std::filesystem::path& path, std::string_view bytes,
                      const std::vector<std::filesystem::path>& keepOff);

struct TextureExport {
    std::size_t written = 0;
    // One line per texture not written, naming it and saying why.
    std::vector<std::string> problems;
};

// Writes "<texture name>.png" into `folder` for each texture of the
// dictionary `entry` (or only the one named `only`): RGBA, first mip level.
// A name that cannot be a file name, a texture that cannot be decoded and a
// second texture of the same name are reported, not written.
TextureExport ExportTextures(const Archive& archive, const Entry& entry,
                             const std::filesystem::path& folder,
                             const std::optional<std::string>& only = std::nullopt);

// What exporting a model to `out` writes, `out` first: glTF binary for
// ".glb", else OBJ with its MTL (same name, ".mtl") and the PNGs of the
// textures found, beside it. The export and every question about files it
// would write over go by this one list.
struct ModelExportFiles {
    Status status = Status::Ok(); // failed: there is nothing to write
    // The textures the materials name that no dictionary of the archive holds.
    std::vector<std::string> missing;
    std::vector<std::pair<std::filesystem::path, std::string>> files; // path, bytes

    std::vector<std::filesystem::path> paths() const;
};

ModelExportFiles PrepareModelExport(const Archive& archive, const Entry& entry,
                                    const std::filesystem::path& out);

// Writes the prepared files, but none `keep` says to leave as they are;
// stops at the first that cannot be written.
Status WriteModelExport(const Archive& archive, const ModelExportFiles& prepared,
                        const std::function<bool(const std::filesystem::path&)>& keep = {});

} // namespace korvel
