// libFuzzer target: the collision model reader on arbitrary bytes. Faces
// kept must name vertices that exist.
#include "preview/Collision.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    for (const korvel::CollisionModel& m : korvel::ReadCollisionFile(bytes).models) {
        const std::size_t vertices = m.vertices.size() / 3;
        for (const auto& face : m.faces) {
            if (face[0] >= vertices || face[1] >= vertices || face[2] >= vertices) {
                std::abort();
            }
        }
    }
    return 0;
}
