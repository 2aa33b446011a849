// korvel-make-demo OUT.img
//
// Writes the demo archive: OUT.img and OUT.dir beside it. The build generates
// it instead of keeping a binary in the repository, so the editor, the tests
// and the benchmarks get a realistic archive (every entry type, a marker, names
// that only differ in case, texture dictionaries and collision files that the
// find-in-files window can read) that always matches the engine's own sector
// rule and record encoding. Nothing depends on the clock or on chance: every
// run writes the same bytes.

#include "archive/Format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Builds little-endian binary data field by field.
class Bytes {
public:
    Bytes& U8(std::uint32_t v) {
        data_.push_back(static_cast<char>(v & 0xFF));
        return *this;
    }
    Bytes& U16(std::uint32_t v) { return U8(v).U8(v >> 8); }
    Bytes& U32(std::uint32_t v) { return U16(v & 0xFFFF).U16(v >> 16); }
    Bytes& Count(std::size_t n) { return U32(static_cast<std::uint32_t>(n)); }
    Bytes& F32(float v) { return U32(std::bit_cast<std::uint32_t>(v)); }
    Bytes& Vec(float x, float y, float z) { return F32(x).F32(y).F32(z); }
    // Text in a zero-padded field of fixed width.
    Bytes& Field(std::string_view text, std::size_t width) {
        data_.append(text.substr(0, width));
        data_.append(width - std::min(text.size(), width), '\0');
        return *this;
    }
    Bytes& Raw(std::string_view bytes) {
        data_.append(bytes);
        return *this;
    }
    std::size_t Size() const { return data_.size(); }
    std::string Take() { return std::move(data_); }

private:
    std::string data_;
};

// ---- RenderWare streams (.dff, .txd) ----------------------------------------
// Every object is a chunk: id, size of the body, library stamp, body.

namespace rw {
constexpr std::uint32_t Struct = 0x01;
constexpr std::uint32_t Extension = 0x03;
constexpr std::uint32_t FrameList = 0x0E;
constexpr std::uint32_t Clump = 0x10;
constexpr std::uint32_t TextureNative = 0x15;
constexpr std::uint32_t TexDictionary = 0x16;
constexpr std::uint32_t GeometryList = 0x1A;
constexpr std::uint32_t SkyMipmap = 0x110;
constexpr std::uint32_t FrameName = 0x0253F2FE;
// Library stamps of RenderWare 3.2.0.0 (GTA III on PC) and 3.6.0.3 (the
// Direct3D 9 era).
constexpr std::uint32_t Stamp32 = 0x0800FFFF;
constexpr std::uint32_t Stamp36 = 0x1803FFFF;
} // namespace rw

std::string Chunk(std::uint32_t id, std::uint32_t stamp, std::string_view body) {
    return Bytes().U32(id).Count(body.size()).U32(stamp).Raw(body).Take();
}

// A clump with a frame hierarchy and no geometry: the editor never parses
// models, but a model viewer opening the entry should see a valid stream.
std::string MakeModel(const std::vector<std::string_view>& frames) {
    Bytes list;
    list.Count(frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        list.Vec(1, 0, 0).Vec(0, 1, 0).Vec(0, 0, 1);  // rotation: identity
        list.Vec(0, 0, 0.5f * static_cast<float>(i)); // position
        list.U32(i == 0 ? 0xFFFFFFFF : 0).U32(0);     // parent (-1: root), flags
    }
    std::string frameList = Chunk(rw::Struct, rw::Stamp32, list.Take());
    for (std::string_view name : frames) {
        frameList += Chunk(rw::Extension, rw::Stamp32, Chunk(rw::FrameName, rw::Stamp32, name));
    }
    const std::string body = Chunk(rw::Struct, rw::Stamp32, Bytes().U32(0).Take()) + // atomics
                             Chunk(rw::FrameList, rw::Stamp32, frameList) +
                             Chunk(rw::GeometryList, rw::Stamp32,
                                   Chunk(rw::Struct, rw::Stamp32, Bytes().U32(0).Take())) +
                             Chunk(rw::Extension, rw::Stamp32, "");
    return Chunk(rw::Clump, rw::Stamp32, body);
}

struct Texture {
    std::string_view name;
    std::string_view mask;  // empty: the texture has no alpha mask
    bool skyMipmap = false; // 16-byte extension, as dictionaries converted from the PS2 keep
    std::uint16_t side = 8; // square raster, in pixels
};

// A checker in a colour taken from the name, so each texture looks different;
// masked textures get a varying alpha.
void AppendPixels(Bytes& out, const Texture& t) {
    std::uint32_t hash = 2166136261u;
    for (char c : t.name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    out.Count(std::size_t{t.side} * t.side * 4);
    for (std::uint32_t y = 0; y < t.side; ++y) {
        for (std::uint32_t x = 0; x < t.side; ++x) {
            const std::uint32_t shade = ((x / 2 + y / 2) % 2) ? 0 : 0x40;
            const std::uint32_t alpha = (t.mask.empty() || (x + y) % 4 != 0) ? 0xFF : 0x40;
            out.U8((hash & 0xBF) + shade).U8(((hash >> 8) & 0xBF) + shade);
            out.U8(((hash >> 16) & 0xBF) + shade).U8(alpha); // B, G, R, A
        }
    }
}

// One texture native: struct (platform, filtering, name, mask, raster, one
// 32-bit level), then its extension. Device 2 dictionaries hold Direct3D 9
// textures (platform 9, a D3DFORMAT); the others Direct3D 8 ones (platform 8,
// a has-alpha flag).
std::string MakeTextureNative(const Texture& t, bool d3d9, std::uint32_t stamp) {
    const bool alpha = !t.mask.empty();
    Bytes s;
    s.U32(d3d9 ? 9 : 8).U8(2).U8(0x11).U16(0); // linear filter, wrap in u and v
    s.Field(t.name, 32).Field(t.mask, 32);
    s.U32(alpha ? 0x0500 : 0x0600);                    // raster format 8888 or 888
    s.U32(d3d9 ? (alpha ? 21 : 22) : (alpha ? 1 : 0)); // A8R8G8B8/X8R8G8B8, or has-alpha
    s.U16(t.side).U16(t.side).U8(32).U8(1).U8(4);      // depth, levels, texture raster
    s.U8(d3d9 && alpha ? 1 : 0); // D3D9: flags (bit 0: alpha); D3D8: no compression
    AppendPixels(s, t);
    const std::string extension =
        t.skyMipmap ? Chunk(rw::SkyMipmap, stamp, Bytes().U32(0xFC0).Take()) : std::string();
    return Chunk(rw::TextureNative, stamp,
                 Chunk(rw::Struct, stamp, s.Take()) + Chunk(rw::Extension, stamp, extension));
}

// Dictionary struct: a 16-bit texture count and a 16-bit device id, 0 (none
// given) in most of ours and 2 (Direct3D 9) in some, so that a reader taking
// the count as one 32-bit number sees 131072 + count textures there.
std::string MakeTextureDictionary(std::uint16_t device, const std::vector<Texture>& textures) {
    const bool d3d9 = device == 2;
    const std::uint32_t stamp = d3d9 ? rw::Stamp36 : rw::Stamp32;
    std::string body =
        Chunk(rw::Struct, stamp,
              Bytes().U16(static_cast<std::uint32_t>(textures.size())).U16(device).Take());
    for (const Texture& t : textures) {
        body += MakeTextureNative(t, d3d9, stamp);
    }
    body += Chunk(rw::Extension, stamp, "");
    return Chunk(rw::TexDictionary, stamp, body);
}

// ---- Collision files (.col) -------------------------------------------------
// A run of models: tag, size of the rest, 24-byte name field, body. The next
// model starts at start + 8 + size.

struct ColModel {
    std::string_view tag; // "COLL" (GTA III), "COL2" or "COL3" (San Andreas)
    std::string_view name;
    std::uint16_t modelId = 0; // kept in the last two bytes of the name field by COL2/COL3
    float halfX = 1, halfY = 1, height = 2;
    int spheres = 0;
    int boxes = 0;
    bool mesh = false; // a floor of two triangles
};

// The boxes stack the model's bounds in equal slices; COLL, COL2 and COL3 store
// them alike (minimum, maximum, surface).
void AppendBoxes(Bytes& b, const ColModel& m) {
    for (int i = 0; i < m.boxes; ++i) {
        const float slice = m.height / static_cast<float>(m.boxes);
        b.Vec(-m.halfX, -m.halfY, slice * static_cast<float>(i));
        b.Vec(m.halfX, m.halfY, slice * static_cast<float>(i + 1)).U32(0xFF000000);
    }
}

// COLL: counts precede each array; vertices are floats, faces 32-bit indices.
void AppendCol1Body(Bytes& b, const ColModel& m) {
    const float hx = m.halfX, hy = m.halfY, h = m.height;
    b.F32(std::sqrt(hx * hx + hy * hy + h * h / 4)).Vec(0, 0, h / 2); // radius, centre
    b.Vec(-hx, -hy, 0).Vec(hx, hy, h);                                // min, max
    b.Count(static_cast<std::size_t>(m.spheres));
    for (int i = 0; i < m.spheres; ++i) {
        b.F32(std::min(hx, hy))
            .Vec(0, 0, h * static_cast<float>(i + 1) / static_cast<float>(m.spheres + 1));
        b.U8(static_cast<std::uint32_t>(i + 1)).U8(0).U8(0).U8(0xFF); // surface
    }
    b.U32(0); // lines: unused
    b.Count(static_cast<std::size_t>(m.boxes));
    AppendBoxes(b, m);
    b.U32(m.mesh ? 4 : 0);
    if (m.mesh) {
        b.Vec(-hx, -hy, 0).Vec(hx, -hy, 0).Vec(hx, hy, 0).Vec(-hx, hy, 0);
    }
    b.U32(m.mesh ? 2 : 0);
    if (m.mesh) {
        b.U32(0).U32(1).U32(2).U32(0xFF000000).U32(0).U32(2).U32(3).U32(0xFF000000);
    }
}

// COL2/COL3: a header of counts and offsets (from the model's start + 4),
// then the arrays; vertices are 16-bit fixed point (1/128), faces 16-bit.
void AppendCol23Body(Bytes& b, const ColModel& m) {
    const float hx = m.halfX, hy = m.halfY, h = m.height;
    const bool col3 = m.tag == "COL3";
    b.Vec(-hx, -hy, 0)
        .Vec(hx, hy, h)
        .Vec(0, 0, h / 2)
        .F32(std::sqrt(hx * hx + hy * hy + h * h / 4));
    const std::size_t headerEnd = b.Size() + 36 + (col3 ? 12 : 0);
    const std::size_t spheresAt = headerEnd;
    const std::size_t boxesAt = spheresAt + 20 * static_cast<std::size_t>(m.spheres);
    const std::size_t verticesAt = boxesAt + 28 * static_cast<std::size_t>(m.boxes);
    const std::size_t facesAt = verticesAt + (m.mesh ? 24 : 0);
    auto offset = [](bool present, std::size_t at) { return present ? at + 4 : 0; };
    b.U16(static_cast<std::uint32_t>(m.spheres)).U16(static_cast<std::uint32_t>(m.boxes));
    b.U16(m.mesh ? 2 : 0).U8(0).U8(0).U32((m.spheres + m.boxes > 0 || m.mesh) ? 2 : 0); // not empty
    b.Count(offset(m.spheres > 0, spheresAt)).Count(offset(m.boxes > 0, boxesAt)).U32(0);
    b.Count(offset(m.mesh, verticesAt)).Count(offset(m.mesh, facesAt)).U32(0);
    if (col3) {
        b.U32(0).U32(0).U32(0); // no shadow mesh
    }
    for (int i = 0; i < m.spheres; ++i) {
        b.Vec(0, 0, h * static_cast<float>(i + 1) / static_cast<float>(m.spheres + 1))
            .F32(std::min(hx, hy));
        b.U8(static_cast<std::uint32_t>(i + 1)).U8(0).U8(0).U8(0xFF);
    }
    AppendBoxes(b, m);
    if (m.mesh) {
        const auto x = static_cast<std::uint32_t>(static_cast<std::int32_t>(hx * 128));
        const auto y = static_cast<std::uint32_t>(static_cast<std::int32_t>(hy * 128));
        b.U16(0u - x).U16(0u - y).U16(0).U16(x).U16(0u - y).U16(0);
        b.U16(x).U16(y).U16(0).U16(0u - x).U16(y).U16(0);
        b.U16(0).U16(1).U16(2).U8(0).U8(0xFF).U16(0).U16(2).U16(3).U8(0).U8(0xFF);
    }
}

std::string MakeCollisionFile(const std::vector<ColModel>& models) {
    std::string file;
    for (const ColModel& m : models) {
        Bytes body;
        body.Field(m.name, 22).U16(m.modelId);
        if (m.tag == "COLL") {
            AppendCol1Body(body, m);
        } else {
            AppendCol23Body(body, m);
        }
        const std::string rest = body.Take();
        file += Bytes().Field(m.tag, 4).Count(rest.size()).Raw(rest).Take();
    }
    return file;
}

// ---- Animations (.ifp) ------------------------------------------------------
// An ANP3 package: tag, size of the rest, package name, animation count; each
// animation holds one root object with two frames (quaternion, time,
// translation, all 16-bit fixed point).
std::string MakeAnimations(std::string_view package, const std::vector<std::string_view>& anims) {
    Bytes b;
    b.Field(package, 24).Count(anims.size());
    for (std::size_t i = 0; i < anims.size(); ++i) {
        b.Field(anims[i], 24).U32(1).U32(2 * 16).U32(1); // objects, frame bytes, unknown
        b.Field("Root", 24).U32(2).U32(2).U32(0);        // root frames, frame count, bone
        // Identity at time 0, then a quarter turn one metre on (quaternion
        // 1/4096, time 1/60 s, translation 1/1024).
        b.U16(0).U16(0).U16(0).U16(4096).U16(0).U16(0).U16(0).U16(0);
        b.U16(0).U16(0).U16(2896).U16(2896).U16(static_cast<std::uint32_t>(30 * (i + 1)));
        b.U16(0).U16(1024).U16(0);
    }
    const std::string rest = b.Take();
    return Bytes().Raw("ANP3").Count(rest.size()).Raw(rest).Take();
}

// ---- Text files -------------------------------------------------------------

std::string MakePlacements(std::string_view model, int count, int step) {
    std::string text = "# placements\r\ninst\r\n";
    for (int i = 0; i < count; ++i) {
        text += std::to_string(1000 + i % 3) + ", " + std::string(model) + ", " +
                std::to_string(-800 + i * step) + ".0, " + std::to_string(200 - i * 7) +
                ".0, 10.0, 1, 1, 1, 0, 0, 0, 1\r\n";
    }
    return text + "end\r\ncull\r\nend\r\n";
}

// Exactly `length` bytes: the text, then a comment line that fills the rest.
std::string FillTo(std::string text, std::size_t length) {
    text += std::string(length - text.size() - 2, '#') + "\r\n";
    return text;
}

struct Entry {
    std::string name;
    std::string data;
};

std::vector<Entry> DemoEntries() {
    using T = Texture;
    return {
        // Characters and vehicles.
        {"Player.DFF", MakeModel({"Player", "Pelvis", "Spine", "Head"})},
        {"Player.txd",
         MakeTextureDictionary(0, {T{"playerTorso", ""}, T{"playerFace", "playerFaceA"}})},
        {"cheetah.dff", MakeModel({"cheetah", "chassis", "wheel_lf_dummy", "door_lf_dummy"})},
        {"cheetah.txd", MakeTextureDictionary(0, {T{"cheetah92body", "cheetah92bodyA"},
                                                  T{"cheetah92interior", "", true},
                                                  T{"cheetah92wheel", "cheetah92wheelA"}})},
        {"infernus.dff", MakeModel({"infernus", "chassis", "wheel_lf_dummy"})},
        {"infernus.txd", MakeTextureDictionary(2, {T{"infernusBody", "infernusBodyA", true},
                                                   T{"infernusLights", "", true}})},
        {"banshee.dff", MakeModel({"banshee", "chassis"})},
        {"banshee.txd", MakeTextureDictionary(0, {T{"bansheeBody", "bansheeBodyA", true}})},
        {"police.dff", MakeModel({"police", "chassis", "lightbar"})},
        {"police.txd",
         MakeTextureDictionary(2, {T{"policeLivery", ""}, T{"policeLightbar", "policeLightbarA"}})},
        {"vehicles.col",
         MakeCollisionFile({{"COLL", "cheetah", 0, 1.1f, 2.4f, 1.3f, 2, 1, true},
                            {"COLL", "infernus", 0, 1.1f, 2.5f, 1.2f, 2, 1, true},
                            {"COLL", "banshee", 0, 1.0f, 2.2f, 1.3f, 1, 2, false}})},
        {"generic.txd",
         MakeTextureDictionary(
             0, {T{"vehiclegrunge256", ""}, T{"vehiclelights128", "vehiclelightson128"},
                 T{"vehicleshatter128", "", true}, T{"platecharset", "platecharsetA"}})},
        {"ped.ifp", MakeAnimations("ped", {"walk_civi", "run_civi", "idle_stance"})},
        {"car_doors.ifp", MakeAnimations("car_doors", {"door_open_lf", "door_close_lf"})},
        {std::string(korvel::MarkerName), "Korvel demo: the world follows\r\n"},
        // The world.
        {"bridge_sec01.dff", MakeModel({"bridge_sec01"})},
        {"bridge_sec01.txd",
         MakeTextureDictionary(0, {T{"bridgeRust", ""}, T{"bridgeRailing", "bridgeRailingA"}})},
        {"Bridges.COL", MakeCollisionFile({{"COLL", "bridge_sec01", 0, 12, 60, 8, 0, 3, true}})},
        {"lamppost1.dff", MakeModel({"lamppost1"})},
        {"lamppost1.txd", MakeTextureDictionary(0, {T{"lamppostMetal", ""}})},
        // Exactly 24 characters: the name field has no terminating zero.
        {"industrial_warehouse.dff", MakeModel({"industrial_warehouse", "doors"})},
        {"warehouse.txd", MakeTextureDictionary(0, {T{"warehouseWall", "", false, 32},
                                                    T{"warehouseRoof", "", false, 32},
                                                    T{"warehouseSign", "warehouseSignA"}})},
        {"generic.col", MakeCollisionFile({{"COLL", "lamppost1", 0, 0.2f, 0.2f, 6, 1, 1, false},
                                           {"COLL", "trafficlight1", 0, 0.3f, 0.3f, 5, 2, 1, false},
                                           {"COLL", "bench_park", 0, 1, 0.4f, 0.8f, 0, 2, true}})},
        {"props.col", MakeCollisionFile({{"COLL", "fire_hydrant", 0, 0.3f, 0.3f, 1, 1, 0, false},
                                         {"COLL", "mailbox01", 0, 0.4f, 0.3f, 1.2f, 0, 1, false}})},
        {"sa_props.col",
         MakeCollisionFile({{"COL3", "vendmach_sa", 1302, 0.6f, 0.5f, 2, 1, 1, true},
                            {"COL2", "phonebooth_sa", 1346, 0.6f, 0.6f, 2.3f, 0, 2, true}})},
        // 64 x 64 pixels: this dictionary spans several sectors.
        {"particle.txd",
         MakeTextureDictionary(
             2, {T{"sparkBlue", ""}, T{"smokePuff", "smokePuffA", true, 64}, T{"waterDrop", ""}})},
        {"fronten1.txd",
         MakeTextureDictionary(0, {T{"menuLogo", "menuLogoA"}, T{"mouseCursor", ""}})},
        {"lod_city.dff", MakeModel({"lod_city"})},
        // Game data: text files.
        {"downtown.ipl", MakePlacements("lamppost1", 40, 40)},
        {"suburbs.ipl", MakePlacements("bench_park", 6, 90)},
        {"default.ide", "objs\r\n1000, lamppost1, lamppost1, 1, 100, 0\r\n"
                        "1001, bridge_sec01, bridge_sec01, 1, 300, 0\r\nend\r\n"},
        {"Roads.IDE", "objs\r\n1100, road_straight, generic, 1, 150, 0\r\nend\r\n"},
        // Exactly one sector of bytes: the sector rule gives it two.
        {"timecyc.dat", FillTo("// time cycle\r\n10 10 10  50 50 50  255 255 255\r\n", 2048)},
        {"handling", "; vehicle handling\r\nCHEETAH 1200.0 2.2 4.5\r\nINFERNUS 1500.0 2.5 4.0\r\n"},
        {"readme.txt", "Korvel demo archive.\r\nGenerated at build time by korvel-make-demo.\r\n"},
        {"blank.txt", ""}, // an empty file still takes one sector
        // Names that differ from an earlier entry only in case, and one exact
        // duplicate: what the duplicate scan and the archive check look for.
        {"player.dff", MakeModel({"player_old"})},
        {"GENERIC.TXD", MakeTextureDictionary(0, {T{"genericUpperOnly", ""}})},
        {"lamppost1.dff", MakeModel({"lamppost1", "lamp_glow"})},
        // Dictionaries named "odie..." are passed over by the texture search.
        {"OdieSign.txd", MakeTextureDictionary(0, {T{"odieHidden", "odieHiddenA"}})},
    };
}

bool WriteFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        std::cerr << "korvel-make-demo: cannot write " << path.string() << "\n";
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !korvel::HasImgExtension(argv[1])) {
        std::cerr << "usage: korvel-make-demo OUT.img   (OUT.dir is written next to it)\n";
        return 2;
    }
    const fs::path imgPath = argv[1];
    const fs::path dirPath = fs::path(imgPath).replace_extension(".dir");
    if (imgPath.has_parent_path()) {
        std::error_code error;
        fs::create_directories(imgPath.parent_path(), error);
        if (error) {
            std::cerr << "korvel-make-demo: cannot create " << imgPath.parent_path().string()
                      << ": " << error.message() << "\n";
            return 1;
        }
    }

    // Entries lie one after another from sector 0, in directory order, each
    // padded with zeros to the sectors the engine's rule gives it.
    std::vector<korvel::DirRecord> records;
    std::string image;
    std::uint32_t nextSector = 0;
    for (const Entry& entry : DemoEntries()) {
        if (entry.name.size() > korvel::NameFieldSize) {
            std::cerr << "korvel-make-demo: name too long: " << entry.name << "\n";
            return 1;
        }
        const auto sectors = static_cast<std::uint32_t>(korvel::SectorsForFile(entry.data.size()));
        records.push_back({nextSector, sectors, entry.name});
        image += entry.data;
        nextSector += sectors;
        image.resize(korvel::SectorToOffset(nextSector), '\0');
    }

    if (!WriteFile(imgPath, image) || !WriteFile(dirPath, korvel::EncodeDirectory(records))) {
        return 1;
    }
    std::cout << "Wrote " << records.size() << " entries to " << imgPath.string() << " and "
              << dirPath.string() << "\n";
    return 0;
}
