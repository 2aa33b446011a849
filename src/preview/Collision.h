// What a collision file (.col) holds: every model (COLL, COL2, COL3; several
// per file) with its name, id, bounds, counts and shapes. The models are
// found by search/CollisionFile's walk (the one find-in-files uses); this
// reads each model's body. Pure over bytes.
#pragma once

#include "platform/Reason.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct CollisionSphere {
    std::array<float, 3> center{};
    float radius = 0;
};

struct CollisionBox {
    std::array<float, 3> min{};
    std::array<float, 3> max{};
};

struct CollisionModel {
    std::string name;    // up to the first zero, trailing spaces dropped
    std::string version; // "COLL", "COL2", "COL3" (or the unknown tag as read)
    std::uint16_t id = 0;
    std::array<float, 3> boundsMin{};
    std::array<float, 3> boundsMax{};
    std::array<float, 3> center{};
    float radius = 0;
    std::vector<CollisionSphere> spheres;
    std::vector<CollisionBox> boxes;
    std::vector<float> vertices;                     // 3 per vertex
    std::vector<std::array<std::uint32_t, 3>> faces; // corners that exist
    std::uint32_t faceCount = 0;                     // as the model states it
    Reason problem;                                  // empty when the body was read whole
};

struct CollisionInfo {
    std::vector<CollisionModel> models;
    Reason stopped; // empty when the whole file was walked
    std::uint64_t stoppedAt = 0;
};

CollisionInfo ReadCollisionFile(std::string_view bytes);

} // namespace korvel
