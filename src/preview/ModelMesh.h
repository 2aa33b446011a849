// A model made ready to draw: every atomic's triangles in the model's space
// (its frame's world matrix applied), one normal per triangle for flat
// shading and one per vertex for smooth shading (the stored ones, or the
// faces' normals averaged where the geometry stores none), and the bounds a
// view frames. Pure over a ModelInfo; nothing in it trusts the reader.
#pragma once

#include "preview/Model.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

using Vec3 = std::array<float, 3>;

struct MeshMaterial {
    std::array<std::uint8_t, 4> color{255, 255, 255, 255};
    std::string texture; // lower-cased (textures are looked up ignoring case); empty when none
};

struct MeshTriangle {
    std::array<std::uint32_t, 3> corners{}; // into PreparedMesh's vertices
    std::int32_t material = -1;             // into PreparedMesh::materials, or -1
    Vec3 normal{0, 0, 1};                   // the face's, unit length
};

struct PreparedMesh {
    std::vector<Vec3> positions;           // in the model's space, all finite
    std::vector<Vec3> normals;             // one per position, unit length
    std::vector<std::array<float, 2>> uvs; // one per position; (0, 0) when the geometry has none
    std::vector<MeshTriangle> triangles;   // only those whose corners exist and are finite
    std::vector<MeshMaterial> materials;
    Vec3 boundsMin{0, 0, 0};
    Vec3 boundsMax{0, 0, 0};
    bool empty() const { return triangles.empty(); }
};

// The model's geometries placed by their atomics (each geometry once per
// atomic that hangs it on a frame). A model with geometries but no atomics
// shows each geometry where it stands. Geometries past a million vertices in
// all (far beyond any game model) are left out, so a crafted clump placing
// one large geometry many times cannot make it hold gigabytes.
PreparedMesh PrepareModelMesh(const ModelInfo& model);

} // namespace korvel
