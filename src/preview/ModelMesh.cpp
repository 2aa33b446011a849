#include "preview/ModelMesh.h"

#include "platform/Cp1252.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvel {
namespace {

using Matrix = std::array<float, 12>;
constexpr Matrix Identity{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};

bool Finite(const Vec3& v) {
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec3 Sub(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

// `v` at unit length; `fallback` when it has none to speak of or is not a
// number (a degenerate face, a stored normal of zeros).
Vec3 Normalized(const Vec3& v, const Vec3& fallback) {
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (!std::isfinite(length) || length < 1e-12f) {
        return fallback;
    }
    return {v[0] / length, v[1] / length, v[2] / length};
}

Vec3 Place(const Matrix& m, const Vec3& p) {
    return {m[0] * p[0] + m[3] * p[1] + m[6] * p[2] + m[9],
            m[1] * p[0] + m[4] * p[1] + m[7] * p[2] + m[10],
            m[2] * p[0] + m[5] * p[1] + m[8] * p[2] + m[11]};
}

Vec3 Turn(const Matrix& m, const Vec3& n) {
    return {m[0] * n[0] + m[3] * n[1] + m[6] * n[2], m[1] * n[0] + m[4] * n[1] + m[7] * n[2],
            m[2] * n[0] + m[5] * n[1] + m[8] * n[2]};
}

// The frames' world matrices, or identities when a parent does not come
// before its child (the reader promises it does; a crafted ModelInfo may not).
std::vector<Matrix> WorldMatrices(const ModelInfo& model) {
    for (std::size_t i = 0; i < model.frames.size(); ++i) {
        const std::int32_t parent = model.frames[i].parent;
        if (parent >= 0 && static_cast<std::size_t>(parent) >= i) {
            return std::vector<Matrix>(model.frames.size(), Identity);
        }
    }
    return FrameWorldMatrices(model);
}

// Bounds what a crafted clump can make us hold: many atomics may place the
// same large geometry again and again.
constexpr std::size_t MaxMeshVertices = std::size_t{1} << 20;

void AddGeometry(const ModelGeometry& g, const Matrix& world, PreparedMesh& mesh) {
    const std::size_t count = g.positions.size() / 3;
    const std::size_t base = mesh.positions.size();
    if (count > MaxMeshVertices - base) {
        return;
    }
    const bool storedNormals = g.normals.size() >= count * 3;
    const bool storedUvs = g.uvs.size() >= count * 2;
    for (std::size_t v = 0; v < count; ++v) {
        mesh.positions.push_back(
            Place(world, {g.positions[3 * v], g.positions[3 * v + 1], g.positions[3 * v + 2]}));
        mesh.normals.push_back(storedNormals ? Turn(world, {g.normals[3 * v], g.normals[3 * v + 1],
                                                            g.normals[3 * v + 2]})
                                             : Vec3{0, 0, 0});
        mesh.uvs.push_back(storedUvs ? std::array<float, 2>{g.uvs[2 * v], g.uvs[2 * v + 1]}
                                     : std::array<float, 2>{0, 0});
    }
    const std::size_t materialBase = mesh.materials.size();
    for (const ModelMaterial& m : g.materials) {
        mesh.materials.push_back({m.color, ToLowerCp1252(m.texture)});
    }
    for (const ModelTriangle& t : g.triangles) {
        if (t.a >= count || t.b >= count || t.c >= count) {
            continue;
        }
        MeshTriangle out;
        out.corners = {static_cast<std::uint32_t>(base + t.a),
                       static_cast<std::uint32_t>(base + t.b),
                       static_cast<std::uint32_t>(base + t.c)};
        const Vec3& a = mesh.positions[out.corners[0]];
        const Vec3& b = mesh.positions[out.corners[1]];
        const Vec3& c = mesh.positions[out.corners[2]];
        if (!Finite(a) || !Finite(b) || !Finite(c)) {
            continue;
        }
        const Vec3 face = Cross(Sub(b, a), Sub(c, a));
        out.normal = Normalized(face, {0, 0, 1});
        if (t.material < g.materials.size()) {
            out.material = static_cast<std::int32_t>(materialBase + t.material);
        }
        mesh.triangles.push_back(out);
        if (!storedNormals) {
            // Weighted by the face's area (the cross product's length), so a
            // sliver next to a large face hardly bends the large face's light.
            for (std::uint32_t corner : out.corners) {
                Vec3& n = mesh.normals[corner];
                const Vec3 add = Finite(face) ? face : Vec3{0, 0, 0};
                n = {n[0] + add[0], n[1] + add[1], n[2] + add[2]};
            }
        }
    }
    for (std::size_t v = base; v < mesh.positions.size(); ++v) {
        mesh.normals[v] = Normalized(mesh.normals[v], {0, 0, 1});
    }
}

} // namespace

PreparedMesh PrepareModelMesh(const ModelInfo& model) {
    PreparedMesh mesh;
    const std::vector<Matrix> world = WorldMatrices(model);
    if (model.atomics.empty()) {
        for (const ModelGeometry& g : model.geometries) {
            AddGeometry(g, Identity, mesh);
        }
    }
    for (const ModelAtomic& atomic : model.atomics) {
        if (atomic.geometry < model.geometries.size()) {
            AddGeometry(model.geometries[atomic.geometry],
                        atomic.frame < world.size() ? world[atomic.frame] : Identity, mesh);
        }
    }
    // The bounds of what is drawn: corners of the triangles kept.
    constexpr float Big = std::numeric_limits<float>::max();
    Vec3 low{Big, Big, Big};
    Vec3 high{-Big, -Big, -Big};
    for (const MeshTriangle& t : mesh.triangles) {
        for (std::uint32_t corner : t.corners) {
            for (int k = 0; k < 3; ++k) {
                low[k] = std::min(low[k], mesh.positions[corner][k]);
                high[k] = std::max(high[k], mesh.positions[corner][k]);
            }
        }
    }
    if (!mesh.triangles.empty()) {
        mesh.boundsMin = low;
        mesh.boundsMax = high;
    }
    return mesh;
}

} // namespace korvel
