// libFuzzer target: the model reader and both model exports on arbitrary
// bytes. Every triangle kept must name vertices that exist, and every atomic
// a frame and a geometry that exist.
#include "preview/Model.h"
#include "preview/ModelExport.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const korvel::ModelInfo model = korvel::ReadModel(bytes);
    for (const korvel::ModelGeometry& g : model.geometries) {
        for (const korvel::ModelTriangle& t : g.triangles) {
            if (t.a >= g.vertexCount || t.b >= g.vertexCount || t.c >= g.vertexCount) {
                std::abort();
            }
        }
    }
    for (const korvel::ModelAtomic& a : model.atomics) {
        if (a.frame >= model.frames.size() || a.geometry >= model.geometries.size()) {
            std::abort();
        }
    }
    korvel::TextureImages textures;
    textures["a"] = {1, 1, {1, 2, 3, 4}};
    (void)korvel::BuildGlb(model, textures);
    (void)korvel::BuildObj(model, "m.mtl", textures);
    return 0;
}
