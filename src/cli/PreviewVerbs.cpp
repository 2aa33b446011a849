// info, export-textures, export-model: what the preview pane shows of an
// entry, as lines for scripts, and the exports of its textures and models.
// The info lines are a contract: TAB-separated, one record per line, names
// as the other verbs print them.
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "preview/EntryBytes.h"
#include "preview/EntryPreview.h"
#include "preview/Json.h"

#include <cstdio>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

int Print(const std::string& out) {
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 && !std::ferror(stdout) ? 0 : Fail("cannot write the output");
}

// The one row named `typed`, after opening the archive; nothing after
// printing why not.
const Entry* NamedEntry(Session& session, const std::string& archive, const std::string& typed) {
    if (!session.open(archive)) {
        return nullptr;
    }
    const auto rows = NamedRows(session.archive().table(), {typed}, false);
    return rows && !rows->empty() ? &session.archive().table()[rows->front()] : nullptr;
}

std::string Tabbed(std::initializer_list<std::string> fields) {
    std::string line;
    for (const std::string& f : fields) {
        line += (line.empty() ? "" : "\t") + f;
    }
    return line + '\n';
}

std::string N(std::uint64_t n) {
    return std::to_string(n);
}

std::string Q(const std::string& raw) {
    return JsonQuoted(ShownName(raw));
}

std::string Vec(const std::array<float, 3>& v) {
    return "[" + JsonNumber(v[0]) + "," + JsonNumber(v[1]) + "," + JsonNumber(v[2]) + "]";
}

// Lines (or JSON members) for each kind, and the problems to report after.
struct InfoText {
    std::string lines;
    std::string json;
    std::vector<std::string> problems;
};

void Comma(std::string& json) {
    if (!json.empty() && json.back() != '[') {
        json += ',';
    }
}

InfoText TextureInfoText(const TextureDictionaryInfo& info) {
    InfoText t;
    t.json = "\"textures\":[";
    for (const TextureInfo& x : info.textures) {
        const std::string format(PixelFormatName(x.format));
        t.lines += Tabbed({"texture", ShownName(x.name), ShownName(x.mask), N(x.width), N(x.height),
                           format, N(x.mipCount)});
        Comma(t.json);
        t.json += "{\"name\":" + Q(x.name) + ",\"mask\":" + Q(x.mask) + ",\"width\":" + N(x.width) +
                  ",\"height\":" + N(x.height) + ",\"format\":\"" + format +
                  "\",\"mips\":" + N(x.mipCount) + "}";
        if (!x.problem.empty()) {
            t.problems.push_back(ShownName(x.name) + ": " + x.problem.english);
        }
    }
    t.json += "]";
    return t;
}

InfoText ModelInfoText(const ModelInfo& model) {
    InfoText t;
    t.json = "\"frames\":[";
    for (const ModelFrame& f : model.frames) {
        t.lines += Tabbed({"frame", ShownName(f.name), std::to_string(f.parent)});
        Comma(t.json);
        t.json += "{\"name\":" + Q(f.name) + ",\"parent\":" + std::to_string(f.parent) + "}";
    }
    t.json += "],\"geometries\":[";
    for (const ModelGeometry& g : model.geometries) {
        t.lines +=
            Tabbed({"geometry", N(g.vertexCount), N(g.triangleCount), N(g.materials.size())});
        Comma(t.json);
        t.json += "{\"vertices\":" + N(g.vertexCount) + ",\"triangles\":" + N(g.triangleCount) +
                  ",\"materials\":" + N(g.materials.size()) + "}";
    }
    t.json += "],\"textures\":[";
    for (const std::string& name : ModelTextureNames(model)) {
        t.lines += Tabbed({"texture", ShownName(name)});
        Comma(t.json);
        t.json += Q(name);
    }
    t.json += "]";
    return t;
}

InfoText CollisionInfoText(const CollisionInfo& info) {
    InfoText t;
    t.json = "\"models\":[";
    for (const CollisionModel& m : info.models) {
        const std::string vertices = N(m.vertices.size() / 3);
        t.lines += Tabbed({"model", ShownName(m.name), ShownName(m.version), N(m.spheres.size()),
                           N(m.boxes.size()), vertices, N(m.faceCount)});
        Comma(t.json);
        t.json += "{\"name\":" + Q(m.name) + ",\"version\":" + Q(m.version) + ",\"id\":" + N(m.id) +
                  ",\"min\":" + Vec(m.boundsMin) + ",\"max\":" + Vec(m.boundsMax) +
                  ",\"center\":" + Vec(m.center) + ",\"radius\":" + JsonNumber(m.radius) +
                  ",\"spheres\":" + N(m.spheres.size()) + ",\"boxes\":" + N(m.boxes.size()) +
                  ",\"vertices\":" + vertices + ",\"faces\":" + N(m.faceCount) + "}";
        if (!m.problem.empty()) {
            t.problems.push_back(ShownName(m.name) + ": " + m.problem.english);
        }
    }
    t.json += "]";
    return t;
}

InfoText AnimationInfoText(const AnimationPackage& package) {
    InfoText t;
    t.json = "\"format\":" + Q(package.format) + ",\"animations\":[";
    for (const Animation& a : package.animations) {
        t.lines += Tabbed({"animation", ShownName(a.name), N(a.objects.size()), N(a.frames())});
        Comma(t.json);
        t.json += "{\"name\":" + Q(a.name) + ",\"frames\":" + N(a.frames()) + ",\"objects\":[";
        for (const AnimationObject& o : a.objects) {
            Comma(t.json);
            t.json += "{\"name\":" + Q(o.name) + ",\"frames\":" + N(o.frames) + "}";
        }
        t.json += "]}";
    }
    t.json += "]";
    return t;
}

// An entry of no kind we read: its size and its first bytes (as many as the
// preview pane shows), so a script can tell what it holds.
InfoText OtherInfoText(const EntryPreview& preview) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(preview.head.size() * 2);
    for (const char c : preview.head) {
        const auto b = static_cast<unsigned char>(c);
        hex += Digits[b >> 4];
        hex += Digits[b & 0xF];
    }
    InfoText t;
    t.lines = Tabbed({"other", N(preview.size), hex});
    t.json = "\"head\":\"" + hex + "\"";
    return t;
}

int Info(const Arguments& args) {
    Session session;
    const Entry* entry = NamedEntry(session, args.operands[0], args.operands[1]);
    if (!entry) {
        return ExitFailure;
    }
    const EntryPreview preview = ReadEntryPreview(session.archive().dataPath(), *entry);
    if (!preview.problem.empty()) {
        return Fail(preview.problem.english);
    }
    InfoText text;
    switch (preview.kind) {
    case PreviewKind::Textures:
        text = TextureInfoText(preview.textures);
        break;
    case PreviewKind::Model:
        text = ModelInfoText(preview.model);
        break;
    case PreviewKind::Collision:
        text = CollisionInfoText(preview.collision);
        break;
    case PreviewKind::Animation:
        text = AnimationInfoText(preview.animation);
        break;
    case PreviewKind::Other:
        text = OtherInfoText(preview);
        break;
    }
    if (const PreviewStop stop = StoppedAt(preview); !stop.why.empty()) {
        text.problems.push_back("reading stopped at byte " + N(stop.at) + ": " + stop.why.english);
    }
    if (preview.cut) {
        text.problems.push_back("only the first " + N(MaxPreviewBytes) + " bytes were read");
    }
    if (args.has("--json")) {
        std::string problems;
        for (const std::string& p : text.problems) {
            Comma(problems);
            problems += JsonQuoted(p);
        }
        text.lines = "{\"entry\":" + Q(entry->name) + ",\"size\":" + N(preview.size) + "," +
                     text.json + ",\"problems\":[" + problems + "]}\n";
    }
    if (const int printed = Print(text.lines); printed != 0) {
        return printed;
    }
    for (const std::string& p : text.problems) {
        PrintError(ShownName(entry->name) + ": " + p);
    }
    return text.problems.empty() ? 0 : ExitFailure;
}

int ExportTexturesVerb(const Arguments& args) {
    Session session;
    const Entry* entry = NamedEntry(session, args.operands[0], args.operands[1]);
    if (!entry) {
        return ExitFailure;
    }
    if (PreviewKindOf(entry->name) != PreviewKind::Textures) {
        return Fail(ShownName(entry->name) + " is not a texture dictionary");
    }
    const std::string& dest = args.operands[2];
    std::error_code ec;
    fs::create_directories(dest, ec);
    if (!fs::is_directory(dest)) {
        return Fail("cannot create the folder " + dest + (ec ? ": " + ec.message() : ""));
    }
    const TextureExport result = ExportTextures(session.archive(), *entry, dest);
    for (const std::string& p : result.problems) {
        PrintError(p);
    }
    return result.problems.empty() ? 0 : ExitFailure;
}

int ExportModelVerb(const Arguments& args) {
    const bool overwrite = args.has("--overwrite");
    const bool keepAll = args.has("--no-overwrite");
    if (overwrite && keepAll) {
        PrintError("--overwrite and --no-overwrite cannot both be given");
        return ExitUsage;
    }
    const fs::path out = args.operands[2];
    std::string extension = out.extension().string();
    for (char& c : extension) {
        c = LowerCp1252(c);
    }
    if (extension != ".glb" && extension != ".obj") {
        return Fail("the model is written as .glb or .obj, not \"" + out.filename().string() +
                    "\"");
    }
    Session session;
    const Entry* entry = NamedEntry(session, args.operands[0], args.operands[1]);
    if (!entry) {
        return ExitFailure;
    }
    if (PreviewKindOf(entry->name) != PreviewKind::Model) {
        return Fail(ShownName(entry->name) + " is not a model");
    }
    const ModelExportFiles prepared = PrepareModelExport(session.archive(), *entry, out);
    // OUT is the file named and is written; the MTL and PNGs beside an OBJ
    // are not named, so one that exists is kept as extract keeps files, and
    // without a choice the run counts as failed.
    bool kept = false;
    const auto keep = [&](const fs::path& path) {
        std::error_code ec;
        if (overwrite || path == out || !fs::exists(path, ec)) {
            return false;
        }
        PrintError("skipped " + EscapeControls(path.string()) + ": the file exists" +
                   (keepAll ? "" : " (--overwrite writes over it)"));
        kept = true;
        return true;
    };
    if (const Status s = WriteModelExport(session.archive(), prepared, keep); !s.ok()) {
        return Fail(s.error());
    }
    // The model is written; textures no dictionary holds are worth knowing.
    for (const std::string& name : prepared.missing) {
        std::fprintf(stderr, "korvel-cli: texture %s is in no texture dictionary of the archive\n",
                     ShownName(name).c_str());
    }
    return kept && !keepAll ? ExitFailure : 0;
}

} // namespace

void AddPreviewVerbs(VerbTable& verbs) {
    verbs["info"] = {"info ARCHIVE.img NAME [--json]",
                     "what a texture dictionary, model, collision file or animation package "
                     "holds, as TAB-separated lines (or JSON); of any other entry its "
                     "size and first bytes in hex",
                     {{"--json", false}},
                     2,
                     2,
                     Info};
    verbs["export-textures"] = {
        "export-textures ARCHIVE.img NAME DEST_DIR",
        "write each texture of the dictionary NAME as DEST_DIR/<texture>.png",
        {},
        3,
        3,
        ExportTexturesVerb};
    verbs["export-model"] = {"export-model ARCHIVE.img NAME OUT.glb|OUT.obj "
                             "[--overwrite|--no-overwrite]",
                             "write the model NAME as glTF binary or as OBJ with MTL and PNG "
                             "textures, textures found in the archive's dictionaries; an "
                             "existing MTL or PNG is kept (exit 1) unless --overwrite writes "
                             "over it or --no-overwrite skips it (exit 0)",
                             {{"--overwrite", false}, {"--no-overwrite", false}},
                             3,
                             3,
                             ExportModelVerb};
}

} // namespace korvel::cli
