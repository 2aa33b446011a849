// What a model (.dff clump) holds: its frames with their names and parents,
// its geometries with what an exporter needs (positions, normals, texture
// coordinates, triangles with their materials), the materials' colours and
// texture names, and which geometry hangs on which frame. Pure over bytes.
#pragma once

#include "platform/Reason.h"
#include "search/ByteSource.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct ModelFrame {
    std::string name;         // from the frame's node-name extension; empty when none
    std::int32_t parent = -1; // index of an earlier frame, or -1
    // Right, up and at axes, then the position: a point p of the frame lies
    // at right * p.x + up * p.y + at * p.z + position in its parent.
    std::array<float, 12> matrix{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
};

struct ModelMaterial {
    std::array<std::uint8_t, 4> color{255, 255, 255, 255};
    std::string texture; // empty when the material is untextured
    std::string mask;
};

struct ModelTriangle {
    std::uint16_t a = 0, b = 0, c = 0;
    std::uint16_t material = 0;
};

struct ModelGeometry {
    std::uint32_t flags = 0;
    std::uint32_t vertexCount = 0;   // as the geometry states it
    std::uint32_t triangleCount = 0; // as the geometry states it
    std::vector<float> positions;    // 3 per vertex; empty when not stored
    std::vector<float> normals;      // 3 per vertex, or empty
    std::vector<float> uvs;          // 2 per vertex (first set), or empty
    // Triangles whose corners exist (others are left out); a material past
    // the list means none.
    std::vector<ModelTriangle> triangles;
    std::vector<ModelMaterial> materials;
};

struct ModelAtomic {
    std::uint32_t frame = 0;
    std::uint32_t geometry = 0;
};

struct ModelInfo {
    std::uint32_t version = 0; // RwVersion of the clump
    std::vector<ModelFrame> frames;
    std::vector<ModelGeometry> geometries;
    std::vector<ModelAtomic> atomics; // only those naming a frame and geometry that exist
    // Empty when the clump was read to its end; else why reading stopped and
    // the offset where it did.
    Reason stopped;
    std::uint64_t stoppedAt = 0;
};

// Reads the first clump of `bytes` (an entry's contents).
ModelInfo ReadModel(std::string_view bytes);

// The texture names the materials use, each once, in the order first used.
std::vector<std::string> ModelTextureNames(const ModelInfo& model);

// Each frame's matrix in the model's space (parents applied).
std::vector<std::array<float, 12>> FrameWorldMatrices(const ModelInfo& model);

} // namespace korvel
