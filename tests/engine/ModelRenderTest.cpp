// The model view's software path: a model placed by its frames with flat and
// smooth normals, and drawn onto a tiny buffer by a camera whose projection
// is worked out by hand (from +X at distance 2 with a 90 degree view, a
// point (x, y, z) of the plane x = 0 lands at column 4 + 2y, row 4 - 2z).
#include "preview/ModelRender.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace korvel;

namespace {

// One geometry on one frame: quads as corner lists (y, z) at depth x,
// each with its own material colour.
struct Quad {
    float x;
    std::array<float, 8> yz; // four corners (y, z), round the quad
    std::uint8_t red, green;
    std::uint8_t alpha = 255;
};

ModelInfo Model(const std::vector<Quad>& quads) {
    ModelInfo m;
    m.frames.resize(1);
    m.atomics.push_back({0, 0});
    ModelGeometry& g = m.geometries.emplace_back();
    for (const Quad& q : quads) {
        const auto base = static_cast<std::uint16_t>(g.positions.size() / 3);
        for (int k = 0; k < 4; ++k) {
            g.positions.insert(g.positions.end(), {q.x, q.yz[2 * k], q.yz[2 * k + 1]});
            g.uvs.insert(g.uvs.end(), {k == 1 || k == 2 ? 1.0f : 0.0f, k >= 2 ? 1.0f : 0.0f});
        }
        const auto material = static_cast<std::uint16_t>(g.materials.size());
        g.materials.push_back({{q.red, q.green, 0, q.alpha}, "", ""});
        g.triangles.push_back({base, static_cast<std::uint16_t>(base + 1),
                               static_cast<std::uint16_t>(base + 2), material});
        g.triangles.push_back({base, static_cast<std::uint16_t>(base + 2),
                               static_cast<std::uint16_t>(base + 3), material});
    }
    return m;
}

RenderBuffer Rendered(const PreparedMesh& mesh, const RgbaImage* texture = nullptr) {
    ModelCamera camera;
    camera.distance = 2;
    camera.fovY = 3.14159265f / 2;
    RenderBuffer buffer;
    buffer.reset(8, 8, 0xFF000000u);
    RenderModel(mesh, std::vector<const RgbaImage*>(mesh.materials.size(), texture), camera,
                ModelShading::Smooth, buffer);
    return buffer;
}

// Each pixel as '.' (background), 'r' (more red than green) or 'g'.
std::string Draw(const PreparedMesh& mesh, const RgbaImage* texture = nullptr) {
    const RenderBuffer buffer = Rendered(mesh, texture);
    std::string rows;
    for (int i = 0; i < 64; ++i) {
        const std::uint32_t c = buffer.color[static_cast<std::size_t>(i)];
        rows += c == 0xFF000000u ? '.' : ((c >> 16 & 0xFF) > (c >> 8 & 0xFF) ? 'r' : 'g');
        rows += i % 8 == 7 ? "|" : "";
    }
    return rows;
}

constexpr float Nan = std::numeric_limits<float>::quiet_NaN();

} // namespace

TEST(ModelRender, CoversTheProjectedPixelsNearestFirst) {
    const std::string leftHalf = "rrrr....|rrrr....|rrrr....|rrrr....|rrrr....|rrrr....|rrrr....|"
                                 "rrrr....|";
    const struct {
        const char* what;
        std::vector<Quad> quads;
        std::string expected;
    } cases[] = {
        {"left half", {{0, {-2, 2, 0, 2, 0, -2, -2, -2}, 255, 0}}, leftHalf},
        {"top half (Z is up)",
         {{0, {-2, 2, 2, 2, 2, 0, -2, 0}, 255, 0}},
         "rrrrrrrr|rrrrrrrr|rrrrrrrr|rrrrrrrr|........|........|........|........|"},
        {"a triangle to the diagonal",
         {{0, {-2, 2, 2, 2, -2, -2, -2, -2}, 255, 0}},
         "rrrrrrrr|rrrrrrr.|rrrrrr..|rrrrr...|rrrr....|rrr.....|rr......|r.......|"},
        {"behind the camera",
         {{5, {-2, 2, 0, 2, 0, -2, -2, -2}, 255, 0}},
         "........|........|........|........|........|........|........|........|"},
        {"a corner that is not a number leaves its triangle out",
         {{0, {-2, 2, 0, 2, 0, -2, Nan, -2}, 255, 0}},
         "rrrr....|.rrr....|.rrr....|..rr....|..rr....|...r....|...r....|........|"},
        {"nearer drawn first",
         {{1, {-1, 2, 0, 2, 0, -2, -1, -2}, 0, 255}, {0, {-2, 2, 2, 2, 2, -2, -2, -2}, 255, 0}},
         "ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|"},
        {"nearer drawn last",
         {{0, {-2, 2, 2, 2, 2, -2, -2, -2}, 255, 0}, {1, {-1, 2, 0, 2, 0, -2, -1, -2}, 0, 255}},
         "ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Draw(PrepareModelMesh(Model(c.quads))), c.expected) << c.what;
    }
    // A geometry whose triangle names a vertex it lacks, and a mesh handed
    // over with such a corner, draw nothing and read nothing out of bounds.
    ModelInfo bad = Model({{0, {-2, 2, 0, 2, 0, -2, -2, -2}, 255, 0}});
    bad.geometries[0].triangles = {{0, 1, 9, 0}};
    EXPECT_EQ(Draw(PrepareModelMesh(bad)).find_first_not_of(".|"), std::string::npos);
    PreparedMesh crafted = PrepareModelMesh(Model({{0, {-2, 2, 0, 2, 0, -2, -2, -2}, 255, 0}}));
    crafted.triangles[0].corners[2] = 99;
    crafted.triangles[1].material = 7; // drawn in the grey of no material
    EXPECT_EQ(Draw(crafted),
              "........|g.......|g.......|gg......|gg......|ggg.....|ggg.....|gggg....|");
}

// See-through materials are drawn after the opaque ones, farthest first, each
// mixed by its alpha over what lies behind it; behind an opaque one it is hidden.
TEST(ModelRender, SeeThroughMaterialsBlendOverWhatLiesBehind) {
    // Row 3, column 3: on the diagonal the two triangles of a quad share.
    const auto pixel = [](const std::vector<Quad>& quads) {
        const std::uint32_t c = Rendered(PrepareModelMesh(Model(quads))).color[27];
        return std::array<float, 2>{static_cast<float>(c >> 16 & 0xFF),
                                    static_cast<float>(c >> 8 & 0xFF)};
    };
    constexpr std::array<float, 8> Whole{-2, 2, 2, 2, 2, -2, -2, -2};
    const float red = pixel({{0, Whole, 255, 0}})[0];
    const float green = pixel({{0, Whole, 0, 255}})[1];
    const struct {
        const char* what;
        std::vector<Quad> quads;
        float expectRed, expectGreen;
    } cases[] = {
        {"half green in front, listed first",
         {{1, Whole, 0, 255, 128}, {0, Whole, 255, 0}},
         red * 0.5f,
         green * 0.5f},
        {"half green behind opaque red", {{0, Whole, 255, 0}, {-1, Whole, 0, 255, 128}}, red, 0},
        {"two halves, the nearer listed first",
         {{1, Whole, 0, 255, 128}, {0, Whole, 255, 0, 128}},
         red * 0.25f,
         green * 0.5f},
    };
    for (const auto& c : cases) {
        const auto [r, g] = pixel(c.quads);
        EXPECT_NEAR(r, c.expectRed, 2) << c.what;
        EXPECT_NEAR(g, c.expectGreen, 2) << c.what;
    }
}

// Texture coordinates run down the image from its top-left corner: a 2x2
// texture of red, green / green, red lands the same way on the screen.
TEST(ModelRender, TexturesStandAsTheirImages) {
    const RgbaImage checker{2, 2, {255, 0, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 255, 0, 0, 255}};
    EXPECT_EQ(
        Draw(PrepareModelMesh(Model({{0, {-2, 2, 2, 2, 2, -2, -2, -2}, 255, 255}})), &checker),
        "rrrrgggg|rrrrgggg|rrrrgggg|rrrrgggg|ggggrrrr|ggggrrrr|ggggrrrr|ggggrrrr|");
}

// Flat shading uses each face's normal, smooth the stored normals or, when
// the geometry has none, the faces' normals averaged; frames move and turn
// both positions and normals.
TEST(ModelMesh, NormalsAndFramesPlaceTheModel) {
    const float h = std::sqrt(0.5f);
    const struct {
        const char* what;
        std::array<float, 12> frame;
        std::vector<float> normals;
        Vec3 firstCorner, secondFace, sharedNormal;
    } cases[] = {
        {"averaged", {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, {}, {0, 0, 0}, {1, 0, 0}, {h, 0, h}},
        {"turned a quarter about Z and moved",
         {0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 0, 0},
         {},
         {10, 0, 0},
         {0, 1, 0},
         {0, h, h}},
        {"stored",
         {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0},
         {0, 0, 2, 0, 0, 2, 0, 0, 2, 0, 0, 2},
         {0, 0, 0},
         {1, 0, 0},
         {0, 0, 1}},
    };
    for (const auto& c : cases) {
        // A roof folded along the Y axis: one face on the floor, one on the wall.
        ModelInfo model;
        model.frames.push_back({"", -1, c.frame});
        model.atomics.push_back({0, 0});
        ModelGeometry& g = model.geometries.emplace_back();
        g.positions = {0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1};
        g.normals = c.normals;
        g.triangles = {{0, 2, 1, 0}, {0, 1, 3, 0}};
        const PreparedMesh mesh = PrepareModelMesh(model);
        ASSERT_EQ(mesh.triangles.size(), 2u) << c.what;
        for (int k = 0; k < 3; ++k) {
            const auto i = static_cast<std::size_t>(k);
            EXPECT_NEAR(mesh.positions[0][i], c.firstCorner[i], 1e-5) << c.what;
            EXPECT_NEAR(mesh.triangles[1].normal[i], c.secondFace[i], 1e-5) << c.what;
            EXPECT_NEAR(mesh.normals[1][i], c.sharedNormal[i], 1e-5) << c.what;
        }
    }
}
