#include "EntryBytes.h"
#include "preview/Animation.h"
#include "preview/Collision.h"
#include "preview/Model.h"
#include "preview/Textures.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>

namespace korvel {
namespace {

using namespace std::string_literals;
using test::Field;
using test::U32;

std::string RwChunkOf(std::uint32_t type, const std::string& body, std::uint32_t id = 0x1803FFFF) {
    return U32(type) + U32(static_cast<std::uint32_t>(body.size())) + U32(id) + body;
}

std::string U16(std::uint16_t v) {
    return {static_cast<char>(v & 0xFF), static_cast<char>(v >> 8)};
}

std::string F32(float f) {
    std::uint32_t bits;
    std::memcpy(&bits, &f, 4);
    return U32(bits);
}

// A texture native with the header fields given and each level's bytes.
std::string Native(std::uint32_t platform, const std::string& name, std::uint32_t raster,
                   std::uint32_t code, std::uint16_t w, std::uint16_t h, char depth,
                   char compression, const std::string& palette,
                   const std::vector<std::string>& levels) {
    std::string body = U32(platform) + U32(0x1102) + Field(name, 32) + Field("m" + name, 32) +
                       U32(raster) + U32(code) + U16(w) + U16(h) + depth +
                       static_cast<char>(levels.size()) + '\x04' + compression + palette;
    for (const std::string& l : levels) {
        body += U32(static_cast<std::uint32_t>(l.size())) + l;
    }
    return RwChunkOf(0x15, RwChunkOf(0x01, body) + RwChunkOf(0x03, ""));
}

TEST(TextureDictionaryPreview, ReadsDirect3D8And9NativesAndStopsAtDamage) {
    const std::string palette = "\x10\x20\x30\x40"s + std::string(255 * 4, '\0');
    // Direct3D 8, PAL8 with mips: 4x2, 2x1, 1x1.
    const std::string pal8 = Native(8, "pal", 0xA2500, 0, 4, 2, 8, 0, palette,
                                    {std::string(8, '\0'), std::string(2, '\0'), "\0"s});
    // Direct3D 9, a D3D format code (A8R8G8B8), one level.
    const std::string argb = Native(9, "argb", 0x500, 21, 1, 1, 32, 0, "", {"\x01\x02\x03\x04"s});
    // Direct3D 8, DXT3 by the compression byte; its level claims 64 bytes, has 16.
    std::string dxt = Native(8, "dxt", 0x300, 0, 4, 4, 16, 3, "", {std::string(16, '\0')});
    dxt.replace(12 + 12 + 88, 4, U32(64));
    const std::string dict = test::Dictionary(3, 2, {pal8, argb, dxt});

    MemorySource source(dict);
    const TextureDictionaryInfo info = ReadTextureDictionary(source, 0, dict.size());
    ASSERT_EQ(info.textures.size(), 3u);
    EXPECT_EQ(info.stopped.english, "");
    const TextureInfo& p = info.textures[0];
    EXPECT_EQ(std::tie(p.name, p.mask, p.platform, p.width, p.height, p.mipCount),
              std::make_tuple("pal", "mpal", 8u, 4u, 2u, 3u));
    EXPECT_EQ(p.format, PixelFormat::Pal8);
    ASSERT_EQ(p.levels.size(), 3u);
    EXPECT_EQ(std::tie(p.levels[1].width, p.levels[1].height, p.levels[2].width),
              std::make_tuple(2u, 1u, 1u));
    const DecodedImage mip = DecodeTextureLevel(source, 0, p, 1);
    EXPECT_EQ(mip.image.pixels, (std::vector<std::uint8_t>{16, 32, 48, 64, 16, 32, 48, 64}));
    EXPECT_EQ(info.textures[1].format, PixelFormat::Bgra8888);
    EXPECT_EQ(DecodeTextureLevel(source, 0, info.textures[1], 0).image.pixels,
              (std::vector<std::uint8_t>{3, 2, 1, 4}));
    EXPECT_EQ(info.textures[2].format, PixelFormat::Dxt3);
    EXPECT_TRUE(info.textures[2].levels.empty());
    EXPECT_NE(info.textures[2].problem.english, "");

    // Cut inside the second texture: the first is read, and where it stopped is said.
    const std::size_t cutAt = 28 + pal8.size() + 40;
    const TextureDictionaryInfo cut = ReadTextureDictionary(source, 0, cutAt);
    EXPECT_EQ(cut.textures.size(), 1u);
    EXPECT_EQ(cut.stoppedAt, 28 + pal8.size());
    EXPECT_NE(cut.stopped.english, "");
}

std::string Frame(float x, std::int32_t parent) {
    std::string f = F32(1) + F32(0) + F32(0) + F32(0) + F32(1) + F32(0) + F32(0) + F32(0) + F32(1);
    return f + F32(x) + F32(0) + F32(0) + U32(static_cast<std::uint32_t>(parent)) + U32(0);
}

// An RW 3.1 clump (library id 0x310): two frames, the second under the first,
// one textured triangle on the second.
std::string OldClump() {
    const std::uint32_t id = 0x310;
    const auto c = [id](std::uint32_t type, const std::string& body) {
        return RwChunkOf(type, body, id);
    };
    const std::string frames = c(0x0E, c(0x01, U32(2) + Frame(1, -1) + Frame(2, 0)) + c(0x03, "") +
                                           c(0x03, c(0x0253F2FE, "wheel")));
    std::string geometry = U32(0x0007) + U32(1) + U32(3) + U32(1) + std::string(12, '\0');
    for (float uv : {0.f, 0.f, 1.f, 0.f, 0.f, 1.f}) {
        geometry += F32(uv);
    }
    geometry += U16(1) + U16(0) + U16(0) + U16(2);       // corners 0, 1, 2; material 0
    geometry += std::string(16, '\0') + U32(1) + U32(0); // bounding sphere, positions only
    for (float p : {0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f, 0.f}) {
        geometry += F32(p);
    }
    const std::string texture = c(0x06, c(0x01, U32(0x1106)) + c(0x02, "body\0"s) + c(0x02, ""s));
    const std::string material =
        c(0x07, c(0x01, U32(0) + "\x10\x20\x30\xFF"s + U32(0) + U32(1)) + texture);
    const std::string geometries =
        c(0x1A,
          c(0x01, U32(1)) +
              c(0x0F, c(0x01, geometry) + c(0x08, c(0x01, U32(1) + U32(0xFFFFFFFF)) + material)));
    const std::string atomic = c(0x14, c(0x01, U32(1) + U32(0) + U32(5) + U32(0)));
    return c(0x10, c(0x01, U32(1)) + frames + geometries + atomic);
}

TEST(ModelPreview, ReadsFramesGeometryAndMaterialsOfAnOldClump) {
    const std::string clump = OldClump();
    const ModelInfo m = ReadModel(clump);
    EXPECT_EQ(m.stopped.english, "");
    ASSERT_EQ(m.frames.size(), 2u);
    EXPECT_EQ(std::tie(m.frames[0].name, m.frames[0].parent), std::make_tuple("", -1));
    EXPECT_EQ(std::tie(m.frames[1].name, m.frames[1].parent), std::make_tuple("wheel", 0));
    ASSERT_EQ(m.geometries.size(), 1u);
    const ModelGeometry& g = m.geometries[0];
    EXPECT_EQ(std::tie(g.vertexCount, g.triangleCount), std::make_tuple(3u, 1u));
    EXPECT_EQ(g.positions, (std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
    EXPECT_EQ(g.uvs, (std::vector<float>{0, 0, 1, 0, 0, 1}));
    ASSERT_EQ(g.triangles.size(), 1u);
    EXPECT_EQ(std::tie(g.triangles[0].a, g.triangles[0].b, g.triangles[0].c),
              std::make_tuple(0, 1, 2));
    ASSERT_EQ(g.materials.size(), 1u);
    EXPECT_EQ(g.materials[0].texture, "body");
    EXPECT_EQ(ModelTextureNames(m), std::vector<std::string>{"body"});
    ASSERT_EQ(m.atomics.size(), 1u);
    EXPECT_EQ(m.atomics[0].frame, 1u);
    EXPECT_FLOAT_EQ(FrameWorldMatrices(m)[1][9], 3.0f); // 2 along the parent's 1

    // Every cut gives what was read before it, never more than the whole.
    for (std::size_t n = 0; n < clump.size(); n += 7) {
        const ModelInfo part = ReadModel(std::string_view(clump).substr(0, n));
        EXPECT_NE(part.stopped.english, "") << n;
        EXPECT_LE(part.frames.size(), 2u);
        if (n >= clump.size() - 40) { // all but the atomic
            EXPECT_EQ(part.geometries.size(), 1u) << n;
        }
    }
}

std::string Anp3() {
    const std::string body = Field("pack", 24) + U32(1) + Field("walk", 24) + U32(2) + U32(0) +
                             U32(1) + Field("root", 24) + U32(2) + U32(2) + U32(0) +
                             std::string(32, '\0') + Field("spine", 24) + U32(1) + U32(3) + U32(1) +
                             std::string(30, '\0');
    return "ANP3" + U32(static_cast<std::uint32_t>(body.size())) + body;
}

std::string Section(const std::string& tag, const std::string& body) {
    return tag + U32(static_cast<std::uint32_t>(body.size())) + body +
           std::string((4 - body.size() % 4) % 4, '\0');
}

std::string Anpk() {
    const std::string object =
        Section("CPAN", Section("ANIM", Field("root", 28) + U32(5) + U32(0) + U32(~0u) + U32(~0u)) +
                            Section("KR00", std::string(100, '\0')));
    const std::string anim =
        Section("NAME", "walk\0"s) + Section("DGAN", Section("INFO", U32(1) + U32(0)) + object);
    return Section("ANPK", Section("INFO", U32(1) + "ped\0"s) + anim);
}

TEST(AnimationPreview, ReadsBothLayoutsAndStopsWhereCut) {
    struct Case {
        const char* what;
        std::string bytes;
        std::string format;
        std::vector<std::pair<std::string, std::uint32_t>> objects; // of the one animation
        bool stopped;
    };
    const Case cases[] = {
        {"ANP3", Anp3(), "ANP3", {{"root", 2}, {"spine", 3}}, false},
        {"ANP3 cut in the last keys",
         Anp3().substr(0, Anp3().size() - 1),
         "ANP3",
         {{"root", 2}, {"spine", 3}},
         true},
        {"ANPK", Anpk(), "ANPK", {{"root", 5}}, false},
        {"ANPK cut in the object", Anpk().substr(0, 60), "ANPK", {}, true},
    };
    for (const Case& c : cases) {
        const AnimationPackage p = ReadAnimationPackage(c.bytes);
        EXPECT_EQ(p.format, c.format) << c.what;
        EXPECT_EQ(!p.stopped.empty(), c.stopped) << c.what;
        ASSERT_EQ(p.animations.size(), 1u) << c.what;
        EXPECT_EQ(p.animations[0].name, "walk") << c.what;
        std::vector<std::pair<std::string, std::uint32_t>> objects;
        for (const AnimationObject& o : p.animations[0].objects) {
            objects.emplace_back(o.name, o.frames);
        }
        EXPECT_EQ(objects, c.objects) << c.what;
    }
}

// A COL2 model: one sphere, one box and one face over three packed vertices.
std::string Col2(std::uint32_t facesOffset) {
    std::string body = Field("two", 22) + U16(7) + std::string(36, '\0') + F32(3);
    body += U16(1) + U16(1) + U16(1) + "\0\0"s + U32(2);
    body += U32(104) + U32(124) + U32(0) + U32(152) + U32(facesOffset) + U32(0);
    body += F32(0) + F32(0) + F32(0) + F32(2.5f) + U32(0) + std::string(28, '\0');
    body += U16(128) + U16(0) + U16(0) + U16(0) + U16(256) + U16(0) + U16(0) + U16(0) +
            U16(0x8000) + "\0\0"s;
    body += U16(0) + U16(1) + U16(2) + "\0\0"s;
    return "COL2" + U32(static_cast<std::uint32_t>(body.size())) + body;
}

TEST(CollisionPreview, ReadsACol2ModelAndNotesACountPastItsBody) {
    const CollisionInfo info = ReadCollisionFile(Col2(172));
    ASSERT_EQ(info.models.size(), 1u);
    const CollisionModel& m = info.models[0];
    EXPECT_EQ(std::tie(m.name, m.version, m.id, m.problem.english),
              std::make_tuple("two", "COL2", 7, std::string()));
    ASSERT_EQ(m.spheres.size(), 1u);
    EXPECT_EQ(m.spheres[0].radius, 2.5f);
    EXPECT_EQ(m.boxes.size(), 1u);
    EXPECT_EQ(m.vertices, (std::vector<float>{1, 0, 0, 0, 2, 0, 0, 0, -256}));
    EXPECT_EQ(m.faces.size(), 1u);
    EXPECT_NE(ReadCollisionFile(Col2(200)).models.at(0).problem.english, "");
}

std::string RealFile(const std::string& name) {
    std::ifstream in(std::string(KORVEL_SOURCE_DIR) + "/../shared/testdata/real/" + name,
                     std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The files made outside Korvel, against what their README lists.
TEST(PreviewReaders, ReadRealThirdPartyFiles) {
    if (RealFile("nitro.txd").empty()) {
        GTEST_SKIP() << "no third-party files beside the project";
    }
    const std::vector<std::pair<std::string, std::string>> textures = {
        {"nitro.txd", "nitro DXT1 128x128 8;"},
        {"boxes.txd", "brickred2 DXT1 128x128 8;"},
        {"two-textures.txd", "wood DXT1 64x128 1;leaves DXT1 128x128 1;"},
        {"rw-parser_dxtDecoding.txd", "DXT1 DXT1 64x64 1;DXT3 DXT3 64x64 1;DXT5 DXT5 64x64 1;"},
    };
    for (const auto& [file, expected] : textures) {
        const std::string bytes = RealFile(file);
        MemorySource source(bytes);
        const TextureDictionaryInfo info = ReadTextureDictionary(source, 0, bytes.size());
        std::string seen;
        for (const TextureInfo& t : info.textures) {
            seen += t.name + " " + std::string(PixelFormatName(t.format)) + " " +
                    std::to_string(t.width) + "x" + std::to_string(t.height) + " " +
                    std::to_string(t.mipCount) + ";";
            EXPECT_EQ(t.levels.size(), t.mipCount) << file;
            if (CanDecodeDxt()) {
                EXPECT_EQ(DecodeTextureLevel(source, 0, t, 0).problem.english, "") << file;
            }
        }
        EXPECT_EQ(seen, expected);
        EXPECT_EQ(info.stopped.english, "") << file;
    }
    for (const auto& [file, frame] : std::vector<std::pair<std::string, std::string>>{
             {"cube.dff", "Cube"}, {"monkey.dff", "Suzanne"}, {"nitro.dff", "nitro"}}) {
        const ModelInfo m = ReadModel(RealFile(file));
        ASSERT_EQ(m.frames.size(), 1u) << file;
        EXPECT_EQ(m.frames[0].name, frame);
        ASSERT_EQ(m.geometries.size(), 1u) << file;
        EXPECT_EQ(m.geometries[0].positions.size(), m.geometries[0].vertexCount * 3) << file;
        EXPECT_EQ(m.stopped.english, "") << file;
    }
    const std::vector<std::pair<std::string, std::string>> collisions = {
        {"cube-1.col", "LARGE COLL 24 12;"},
        {"mixed-multiple-2.col", "LARGE COLL 24 12;THREE COL3 24 12;"},
        {"col3-chunk.col", "col COL3 4225 8192;"},
        {"riot_shield.col", "riot_shield COL3 120 148;"},
    };
    for (const auto& [file, expected] : collisions) {
        const CollisionInfo info = ReadCollisionFile(RealFile(file));
        std::string seen;
        for (const CollisionModel& m : info.models) {
            seen += m.name + " " + m.version + " " + std::to_string(m.vertices.size() / 3) + " " +
                    std::to_string(m.faces.size()) + ";";
            EXPECT_EQ(m.problem.english, "") << file;
        }
        EXPECT_EQ(seen, expected);
    }
    const CollisionModel shield = ReadCollisionFile(RealFile("riot_shield.col")).models.at(0);
    EXPECT_NEAR(shield.boundsMin[0], -0.35f, 0.005f);
    EXPECT_NEAR(shield.boundsMax[2], 0.78f, 0.005f);
}

} // namespace
} // namespace korvel
