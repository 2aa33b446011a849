// libFuzzer target: what the preview's 3D view does with a model read from
// arbitrary bytes: the mesh it prepares keeps only corners that exist and
// are numbers, and drawing it (framed, both lights, textured and not, the
// wireframe) stays inside its buffer.
#include "preview/ModelRender.h"

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace korvel;
    const PreparedMesh mesh =
        PrepareModelMesh(ReadModel({reinterpret_cast<const char*>(data), size}));
    for (const MeshTriangle& t : mesh.triangles) {
        for (std::uint32_t c : t.corners) {
            if (c >= mesh.positions.size() || !std::isfinite(mesh.positions[c][0]) ||
                !std::isfinite(mesh.positions[c][1]) || !std::isfinite(mesh.positions[c][2])) {
                std::abort();
            }
        }
    }
    const RgbaImage texture{2, 2, std::vector<std::uint8_t>(16, 200)};
    const std::vector<const RgbaImage*> textures(mesh.materials.size(), &texture);
    ModelCamera camera = FitCamera(mesh, 24, 16);
    RenderBuffer buffer;
    for (ModelShading shading : {ModelShading::Flat, ModelShading::Smooth}) {
        buffer.reset(24, 16, 0);
        RenderModel(mesh,
                    shading == ModelShading::Flat ? textures : std::vector<const RgbaImage*>{},
                    camera, shading, buffer);
        camera.orbit(90, 40);
        camera.zoom(8);
    }
    (void)WireSegments(mesh, camera, 24, 16);
    return 0;
}
