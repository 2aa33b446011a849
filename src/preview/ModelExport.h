// Models as files other programs open: glTF 2.0 binary (.glb, textures
// embedded as PNG) and Wavefront OBJ with its MTL. RenderWare models stand
// with Z up; both exports turn them to the Y-up those formats expect.
#pragma once

#include "preview/Image.h"
#include "preview/Model.h"

#include <map>
#include <string>

namespace korvel {

// Decoded textures by name, lower-cased (the games look textures up
// ignoring case).
using TextureImages = std::map<std::string, RgbaImage>;

// The .glb file of `model`. A material whose texture is in `textures` gets
// it embedded as PNG (when this build writes PNG).
std::string BuildGlb(const ModelInfo& model, const TextureImages& textures);

struct ObjFiles {
    std::string obj;
    std::string mtl;
    // File name (as written in the MTL) -> texture name, for the PNGs to write
    // beside them.
    std::map<std::string, std::string> textureFiles;
};

// The OBJ and MTL text of `model`; the OBJ refers to the MTL as `mtlName`.
// A material's texture is named in the MTL when it is in `textures`.
ObjFiles BuildObj(const ModelInfo& model, const std::string& mtlName,
                  const TextureImages& textures);

} // namespace korvel
