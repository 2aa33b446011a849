#include "preview/EntryPreview.h"

#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/OutputFile.h"
#include "preview/EntryBytes.h"
#include "preview/Png.h"
#include "search/TextureDictionary.h"

#include <algorithm>
#include <set>

namespace korvel {
namespace {

namespace fs = std::filesystem;

// The data file opened for one reading, and the entry's range in it.
struct OpenEntry {
    FileSource file;
    EntryRange range;
    Reason problem;

    OpenEntry(const fs::path& dataPath, const Entry& entry) {
        const auto length = FileLength(dataPath);
        if (!length || !file.open(dataPath)) {
            problem = {"cannot open the data file " + dataPath.string(),
                       "whyDataFile",
                       {dataPath.string()}};
            return;
        }
        range = PresentRange(entry, *length);
    }
};

std::string BaseName(const std::string& name) {
    const auto dot = name.rfind('.');
    return ToLowerCp1252(dot == std::string::npos ? name : name.substr(0, dot));
}

} // namespace

PreviewKind PreviewKindOf(const std::string& entryName) {
    switch (KindOfName(entryName)) {
    case EntryKind::Texture:
        return PreviewKind::Textures;
    case EntryKind::Model:
        return PreviewKind::Model;
    case EntryKind::Collision:
        return PreviewKind::Collision;
    case EntryKind::Animation:
        return PreviewKind::Animation;
    case EntryKind::Other:
        break;
    }
    return PreviewKind::Other;
}

PreviewStop StoppedAt(const EntryPreview& preview) {
    switch (preview.kind) {
    case PreviewKind::Textures:
        return {preview.textures.stopped, preview.textures.stoppedAt};
    case PreviewKind::Model:
        return {preview.model.stopped, preview.model.stoppedAt};
    case PreviewKind::Collision:
        return {preview.collision.stopped, preview.collision.stoppedAt};
    case PreviewKind::Animation:
        return {preview.animation.stopped, preview.animation.stoppedAt};
    case PreviewKind::Other:
        break;
    }
    return {};
}

EntryPreview ReadEntryPreview(const fs::path& dataPath, const Entry& entry) {
    EntryPreview preview;
    preview.kind = PreviewKindOf(entry.name);
    OpenEntry open(dataPath, entry);
    if (!open.problem.empty()) {
        preview.problem = open.problem;
        return preview;
    }
    const EntryRange range = open.range;
    preview.size = range.length;
    if (preview.kind == PreviewKind::Textures) {
        // Headers only: the pixels stay in the file until a level is decoded.
        preview.textures = ReadTextureDictionary(open.file, range.offset, range.length);
        return preview;
    }
    const std::uint64_t want = preview.kind == PreviewKind::Other ? HeadBytes : range.length;
    bool cut = false;
    const std::string bytes = ReadBounded(open.file, range.offset, want, cut);
    preview.cut = cut && preview.kind != PreviewKind::Other;
    switch (preview.kind) {
    case PreviewKind::Model:
        preview.model = ReadModel(bytes);
        break;
    case PreviewKind::Collision:
        preview.collision = ReadCollisionFile(bytes);
        break;
    case PreviewKind::Animation:
        preview.animation = ReadAnimationPackage(bytes);
        break;
    default:
        preview.head = bytes;
        break;
    }
    return preview;
}

DecodedImage DecodeEntryTexture(const fs::path& dataPath, const Entry& entry,
                                const TextureInfo& texture, std::size_t level) {
    OpenEntry open(dataPath, entry);
    if (!open.problem.empty()) {
        return {{}, open.problem};
    }
    return DecodeTextureLevel(open.file, open.range.offset, texture, level);
}

TextureImages FindModelTextures(const fs::path& dataPath, const std::vector<Entry>& rows,
                                const std::string& modelName,
                                const std::vector<std::string>& names) {
    TextureImages found;
    std::set<std::string> wanted;
    for (const std::string& n : names) {
        wanted.insert(ToLowerCp1252(n));
    }
    const auto length = FileLength(dataPath);
    FileSource file;
    if (wanted.empty() || !length || !file.open(dataPath)) {
        return found;
    }
    // The dictionary of the model's own name first, then all in order.
    std::vector<const Entry*> order;
    const std::string base = BaseName(modelName);
    for (const Entry& e : rows) {
        if (KindOfName(e.name) == EntryKind::Texture && BaseName(e.name) == base) {
            order.push_back(&e);
        }
    }
    for (const Entry& e : rows) {
        if (KindOfName(e.name) == EntryKind::Texture && BaseName(e.name) != base) {
            order.push_back(&e);
        }
    }
    for (const Entry* e : order) {
        const EntryRange range = PresentRange(*e, *length);
        // The names alone first: most dictionaries hold none of the textures.
        bool any = false;
        for (const TextureName& t : ReadTextureNames(file, range.offset, range.length)) {
            any = any || wanted.count(ToLowerCp1252(t.name)) != 0;
        }
        if (!any) {
            continue;
        }
        for (const TextureInfo& t :
             ReadTextureDictionary(file, range.offset, range.length).textures) {
            const std::string key = ToLowerCp1252(t.name);
            if (wanted.count(key) == 0) {
                continue;
            }
            DecodedImage image = DecodeTextureLevel(file, range.offset, t, 0);
            if (image.problem.empty()) {
                found[key] = std::move(image.image);
                wanted.erase(key);
            }
        }
        if (wanted.empty()) {
            break;
        }
    }
    return found;
}

Status WriteFileBytes(const fs::path& path, std::string_view bytes,
                      const std::vector<fs::path>& keepOff) {
    File out;
    const std::u8string shown = path.u8string();
    const std::string name(shown.begin(), shown.end());
    if (const OutputOpen opened = OpenOutputFile(out, path, keepOff); !opened.error.empty()) {
        return Status::Failed(opened.refused ? opened.error : "cannot write " + name);
    }
    if (!out.writeAt(0, bytes).empty() || !out.close().empty()) {
        return Status::Failed("cannot write " + name);
    }
    return Status::Ok();
}

TextureExport ExportTextures(const Archive& archive, const Entry& entry, const fs::path& folder,
                             const std::optional<std::string>& only) {
    TextureExport result;
    if (!CanWritePng()) {
        result.problems.push_back(PngUnavailableText);
        return result;
    }
    OpenEntry open(archive.dataPath(), entry);
    if (!open.problem.empty()) {
        result.problems.push_back(open.problem.english);
        return result;
    }
    const TextureDictionaryInfo info =
        ReadTextureDictionary(open.file, open.range.offset, open.range.length);
    const auto keepOff = ArchiveOwnFiles(archive);
    std::set<std::string> written; // file names, ignoring case (as Windows would)
    for (const TextureInfo& t : info.textures) {
        if (only && !EqualsIgnoreCase(t.name, *only)) {
            continue;
        }
        const std::string shown = ShownName(t.name);
        const std::string fileName = t.name + ".png";
        const auto path = EntryFileIn(folder, fileName);
        if (!path) {
            result.problems.push_back(shown + ": " + UnsafeNameProblem(fileName));
            continue;
        }
        if (!written.insert(ToLowerCp1252(fileName)).second) {
            result.problems.push_back(shown + ": a texture of the same name was written already");
            continue;
        }
        const DecodedImage image = DecodeTextureLevel(open.file, open.range.offset, t, 0);
        const auto png = image.problem.empty() ? EncodePng(image.image) : std::nullopt;
        if (!png) {
            result.problems.push_back(
                shown + ": " +
                (image.problem.empty() ? t.problem.empty() ? "cannot encode it" : t.problem.english
                                       : image.problem.english));
            continue;
        }
        if (const Status s = WriteFileBytes(*path, *png, keepOff); !s.ok()) {
            result.problems.push_back(s.error());
            continue;
        }
        ++result.written;
    }
    if (!info.stopped.empty()) {
        result.problems.push_back("reading stopped at byte " + std::to_string(info.stoppedAt) +
                                  ": " + info.stopped.english);
    }
    return result;
}

std::vector<fs::path> ModelExportFiles::paths() const {
    std::vector<fs::path> all;
    for (const auto& [path, bytes] : files) {
        all.push_back(path);
    }
    return all;
}

ModelExportFiles PrepareModelExport(const Archive& archive, const Entry& entry,
                                    const fs::path& out) {
    ModelExportFiles prepared;
    const EntryPreview preview = ReadEntryPreview(archive.dataPath(), entry);
    if (!preview.problem.empty()) {
        prepared.status = Status::Failed(preview.problem.english, preview.problem.textKey,
                                         preview.problem.arguments);
        return prepared;
    }
    const ModelInfo& model = preview.model;
    if (model.geometries.empty()) {
        prepared.status =
            Status::Failed(ShownName(entry.name) + " holds no geometry" +
                           (model.stopped.empty() ? "" : " (" + model.stopped.english + ")"));
        return prepared;
    }
    const std::vector<std::string> names = ModelTextureNames(model);
    const TextureImages textures =
        FindModelTextures(archive.dataPath(), archive.table().rows(), entry.name, names);
    for (const std::string& n : names) {
        if (textures.count(ToLowerCp1252(n)) == 0) {
            prepared.missing.push_back(n);
        }
    }
    std::string extension = out.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".glb") {
        prepared.files.emplace_back(out, BuildGlb(model, textures));
        return prepared;
    }
    fs::path mtl = out;
    mtl.replace_extension(".mtl");
    ObjFiles files = BuildObj(model, mtl.filename().string(), textures);
    prepared.files.emplace_back(out, std::move(files.obj));
    prepared.files.emplace_back(mtl, std::move(files.mtl));
    for (const auto& [file, texture] : files.textureFiles) {
        const auto path = EntryFileIn(out.parent_path(), file);
        auto png = EncodePng(textures.at(ToLowerCp1252(texture)));
        if (path && png) { // BuildObj names only safe files; EncodePng of a decoded image succeeds
            prepared.files.emplace_back(*path, std::move(*png));
        }
    }
    return prepared;
}

Status WriteModelExport(const Archive& archive, const ModelExportFiles& prepared,
                        const std::function<bool(const fs::path&)>& keep) {
    if (!prepared.status.ok()) {
        return prepared.status;
    }
    const auto keepOff = ArchiveOwnFiles(archive);
    for (const auto& [path, bytes] : prepared.files) {
        if (keep && keep(path)) {
            continue;
        }
        if (Status s = WriteFileBytes(path, bytes, keepOff); !s.ok()) {
            return s;
        }
    }
    return Status::Ok();
}

} // namespace korvel
