#include "preview/ModelExport.h"

#include "archive/EntryFiles.h"
#include "platform/Cp1252.h"
#include "preview/Json.h"
#include "preview/Png.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace korvel {
namespace {

std::string LowerName(const std::string& name) {
    return ToLowerCp1252(name);
}

const RgbaImage* TextureFor(const ModelMaterial& m, const TextureImages& textures) {
    if (m.texture.empty()) {
        return nullptr;
    }
    const auto found = textures.find(LowerName(m.texture));
    return found == textures.end() ? nullptr : &found->second;
}

bool HasTransparency(const RgbaImage& image) {
    for (std::size_t i = 3; i < image.pixels.size(); i += 4) {
        if (image.pixels[i] < 255) {
            return true;
        }
    }
    return false;
}

// The triangles of a geometry grouped by material (a material past the
// list gets none: index -1).
std::map<int, std::vector<std::uint32_t>> IndicesByMaterial(const ModelGeometry& g) {
    std::map<int, std::vector<std::uint32_t>> groups;
    for (const ModelTriangle& t : g.triangles) {
        const int material = t.material < g.materials.size() ? t.material : -1;
        auto& indices = groups[material];
        indices.insert(indices.end(), {t.a, t.b, t.c});
    }
    return groups;
}

// The binary buffer of a .glb and the JSON describing its parts.
class GlbWriter {
public:
    // Appends `bytes` as a buffer view; returns its index.
    std::size_t view(const void* bytes, std::size_t size, bool vertices) {
        while (bin_.size() % 4) {
            bin_ += '\0';
        }
        if (!views_.empty()) {
            views_ += ',';
        }
        views_ += "{\"buffer\":0,\"byteOffset\":" + std::to_string(bin_.size()) +
                  ",\"byteLength\":" + std::to_string(size) +
                  (vertices ? ",\"target\":34962" : "") + "}";
        bin_.append(static_cast<const char*>(bytes), size);
        return viewCount_++;
    }

    // An accessor over a new view of floats, `width` per element.
    std::size_t floats(const std::vector<float>& values, int width, bool bounds) {
        const std::size_t v = view(values.data(), values.size() * sizeof(float), true);
        std::string extra;
        if (bounds) {
            float lo[3] = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
                           std::numeric_limits<float>::max()};
            float hi[3] = {-lo[0], -lo[0], -lo[0]};
            for (std::size_t i = 0; i < values.size(); ++i) {
                lo[i % 3] = std::min(lo[i % 3], values[i]);
                hi[i % 3] = std::max(hi[i % 3], values[i]);
            }
            extra = ",\"min\":[" + JsonNumber(lo[0]) + "," + JsonNumber(lo[1]) + "," +
                    JsonNumber(lo[2]) + "],\"max\":[" + JsonNumber(hi[0]) + "," +
                    JsonNumber(hi[1]) + "," + JsonNumber(hi[2]) + "]";
        }
        return accessor(v, 5126, values.size() / static_cast<std::size_t>(width),
                        width == 3 ? "VEC3" : "VEC2", extra);
    }

    std::size_t indices(const std::vector<std::uint32_t>& values) {
        const std::size_t v = view(values.data(), values.size() * 4, false);
        return accessor(v, 5125, values.size(), "SCALAR", "");
    }

    std::string finish(const std::string& rest) const {
        std::string json = "{\"asset\":{\"version\":\"2.0\",\"generator\":\"Korvel\"}," + rest +
                           ",\"bufferViews\":[" + views_ + "],\"accessors\":[" + accessors_ +
                           "],\"buffers\":[{\"byteLength\":" + std::to_string(bin_.size()) + "}]}";
        while (json.size() % 4) {
            json += ' ';
        }
        std::string bin = bin_;
        while (bin.size() % 4) {
            bin += '\0';
        }
        std::string out;
        const auto u32 = [&out](std::uint32_t v) {
            for (int i = 0; i < 4; ++i) {
                out += static_cast<char>((v >> (8 * i)) & 0xFF);
            }
        };
        out += "glTF";
        u32(2);
        u32(static_cast<std::uint32_t>(12 + 8 + json.size() + 8 + bin.size()));
        u32(static_cast<std::uint32_t>(json.size()));
        out += "JSON";
        out += json;
        u32(static_cast<std::uint32_t>(bin.size()));
        out += std::string("BIN\0", 4);
        out += bin;
        return out;
    }

private:
    std::size_t accessor(std::size_t view, int type, std::size_t count, const char* shape,
                         const std::string& extra) {
        if (!accessors_.empty()) {
            accessors_ += ',';
        }
        accessors_ += "{\"bufferView\":" + std::to_string(view) +
                      ",\"componentType\":" + std::to_string(type) +
                      ",\"count\":" + std::to_string(count) + ",\"type\":\"" + shape + "\"" +
                      extra + "}";
        return accessorCount_++;
    }

    std::string bin_;
    std::string views_;
    std::string accessors_;
    std::size_t viewCount_ = 0;
    std::size_t accessorCount_ = 0;
};

std::string Joined(const std::vector<std::string>& parts) {
    std::string out;
    for (const std::string& p : parts) {
        out += (out.empty() ? "" : ",") + p;
    }
    return out;
}

std::string Matrix16(const std::array<float, 12>& m) {
    std::string out = "[";
    for (int axis = 0; axis < 4; ++axis) {
        for (int k = 0; k < 3; ++k) {
            out += JsonNumber(m[axis * 3 + k]) + ",";
        }
        out += axis == 3 ? "1]" : "0,";
    }
    return out;
}

// A geometry's points turned into model space by its frame's matrix.
std::vector<float> Transformed(const std::vector<float>& v, const std::array<float, 12>& m,
                               bool direction) {
    std::vector<float> out(v.size());
    for (std::size_t i = 0; i + 2 < v.size(); i += 3) {
        for (int k = 0; k < 3; ++k) {
            out[i + k] = m[k] * v[i] + m[3 + k] * v[i + 1] + m[6 + k] * v[i + 2] +
                         (direction ? 0 : m[9 + k]);
        }
    }
    return out;
}

std::string Number(float v) {
    return JsonNumber(v);
}

} // namespace

std::string BuildGlb(const ModelInfo& model, const TextureImages& textures) {
    GlbWriter w;
    std::vector<std::string> meshes, materials, images, textureList, nodes;
    std::map<std::string, std::size_t> textureIndex; // lower-cased name -> textures[]

    const auto textureOf = [&](const ModelMaterial& m) -> std::optional<std::size_t> {
        const RgbaImage* image = TextureFor(m, textures);
        if (!image) {
            return std::nullopt;
        }
        const std::string key = LowerName(m.texture);
        if (const auto found = textureIndex.find(key); found != textureIndex.end()) {
            return found->second;
        }
        const auto png = EncodePng(*image);
        if (!png) {
            return std::nullopt;
        }
        const std::size_t view = w.view(png->data(), png->size(), false);
        images.push_back(
            "{\"bufferView\":" + std::to_string(view) +
            ",\"mimeType\":\"image/png\",\"name\":" + JsonQuoted(ShownName(m.texture)) + "}");
        textureList.push_back("{\"sampler\":0,\"source\":" + std::to_string(images.size() - 1) +
                              "}");
        return textureIndex[key] = textureList.size() - 1;
    };

    std::vector<std::optional<std::size_t>> meshOf(model.geometries.size());
    for (std::size_t gi = 0; gi < model.geometries.size(); ++gi) {
        const ModelGeometry& g = model.geometries[gi];
        if (g.positions.empty() || g.triangles.empty()) {
            continue;
        }
        std::string attributes = "\"POSITION\":" + std::to_string(w.floats(g.positions, 3, true));
        if (!g.normals.empty()) {
            attributes += ",\"NORMAL\":" + std::to_string(w.floats(g.normals, 3, false));
        }
        if (!g.uvs.empty()) {
            attributes += ",\"TEXCOORD_0\":" + std::to_string(w.floats(g.uvs, 2, false));
        }
        std::vector<std::size_t> materialOf(g.materials.size());
        for (std::size_t mi = 0; mi < g.materials.size(); ++mi) {
            const ModelMaterial& m = g.materials[mi];
            std::string pbr = "\"baseColorFactor\":[" + Number(m.color[0] / 255.0f) + "," +
                              Number(m.color[1] / 255.0f) + "," + Number(m.color[2] / 255.0f) +
                              "," + Number(m.color[3] / 255.0f) +
                              "],\"metallicFactor\":0,\"roughnessFactor\":1";
            std::string alpha = m.color[3] < 255 ? ",\"alphaMode\":\"BLEND\"" : "";
            if (const auto t = textureOf(m)) {
                pbr += ",\"baseColorTexture\":{\"index\":" + std::to_string(*t) + "}";
                if (alpha.empty() && HasTransparency(*TextureFor(m, textures))) {
                    alpha = ",\"alphaMode\":\"MASK\"";
                }
            }
            materials.push_back("{\"name\":" + JsonQuoted(ShownName(m.texture)) +
                                ",\"pbrMetallicRoughness\":{" + pbr + "}" + alpha + "}");
            materialOf[mi] = materials.size() - 1;
        }
        std::vector<std::string> primitives;
        for (const auto& [material, indices] : IndicesByMaterial(g)) {
            std::string p = "{\"attributes\":{" + attributes +
                            "},\"indices\":" + std::to_string(w.indices(indices));
            if (material >= 0) {
                p += ",\"material\":" +
                     std::to_string(materialOf[static_cast<std::size_t>(material)]);
            }
            primitives.push_back(p + "}");
        }
        meshes.push_back("{\"primitives\":[" + Joined(primitives) + "]}");
        meshOf[gi] = meshes.size() - 1;
    }

    // Nodes: the frames (children by their parent), then one node per atomic
    // under its frame, then a root that stands the model up.
    const std::size_t frames = model.frames.size();
    std::vector<std::vector<std::size_t>> children(frames);
    std::vector<std::size_t> roots;
    for (std::size_t i = 0; i < frames; ++i) {
        const std::int32_t p = model.frames[i].parent;
        (p >= 0 ? children[static_cast<std::size_t>(p)] : roots).push_back(i);
    }
    std::vector<std::string> atomicNodes;
    for (const ModelAtomic& a : model.atomics) {
        if (meshOf[a.geometry]) {
            atomicNodes.push_back("{\"mesh\":" + std::to_string(*meshOf[a.geometry]) + "}");
            children[a.frame].push_back(frames + atomicNodes.size() - 1);
        }
    }
    if (model.atomics.empty()) { // geometries with no atomic: show them at the root
        for (const auto& mesh : meshOf) {
            if (mesh) {
                atomicNodes.push_back("{\"mesh\":" + std::to_string(*mesh) + "}");
                roots.push_back(frames + atomicNodes.size() - 1);
            }
        }
    }
    for (std::size_t i = 0; i < frames; ++i) {
        std::string node = "{\"name\":" + JsonQuoted(ShownName(model.frames[i].name)) +
                           ",\"matrix\":" + Matrix16(model.frames[i].matrix);
        if (!children[i].empty()) {
            std::vector<std::string> list;
            for (const std::size_t c : children[i]) {
                list.push_back(std::to_string(c));
            }
            node += ",\"children\":[" + Joined(list) + "]";
        }
        nodes.push_back(node + "}");
    }
    nodes.insert(nodes.end(), atomicNodes.begin(), atomicNodes.end());
    std::vector<std::string> rootList;
    for (const std::size_t r : roots) {
        rootList.push_back(std::to_string(r));
    }
    nodes.push_back("{\"name\":\"Z up\",\"rotation\":[-0.70710677,0,0,0.70710677],\"children\":[" +
                    Joined(rootList) + "]}");

    std::string rest = "\"scene\":0,\"scenes\":[{\"nodes\":[" + std::to_string(nodes.size() - 1) +
                       "]}],\"nodes\":[" + Joined(nodes) + "]";
    if (!meshes.empty()) {
        rest += ",\"meshes\":[" + Joined(meshes) + "]";
    }
    if (!materials.empty()) {
        rest += ",\"materials\":[" + Joined(materials) + "]";
    }
    if (!textureList.empty()) {
        rest += ",\"samplers\":[{}],\"images\":[" + Joined(images) + "],\"textures\":[" +
                Joined(textureList) + "]";
    }
    return w.finish(rest);
}

ObjFiles BuildObj(const ModelInfo& model, const std::string& mtlName,
                  const TextureImages& textures) {
    ObjFiles files;
    files.obj = "# written by Korvel\nmtllib " + mtlName + "\n";
    files.mtl = "# written by Korvel\n";
    const auto world = FrameWorldMatrices(model);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> placed; // geometry, frame
    for (const ModelAtomic& a : model.atomics) {
        placed.emplace_back(a.geometry, a.frame);
    }
    if (model.atomics.empty()) {
        for (std::uint32_t g = 0; g < model.geometries.size(); ++g) {
            placed.emplace_back(g, UINT32_MAX);
        }
    }
    const std::array<float, 12> identity{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    std::uint64_t base = 1; // OBJ counts vertices from 1, across the file
    std::size_t materialCount = 0;
    for (std::size_t n = 0; n < placed.size(); ++n) {
        const ModelGeometry& g = model.geometries[placed[n].first];
        if (g.positions.empty() || g.triangles.empty()) {
            continue;
        }
        const auto& m = placed[n].second < world.size() ? world[placed[n].second] : identity;
        const std::string frameName =
            placed[n].second < model.frames.size() ? model.frames[placed[n].second].name : "";
        files.obj += "o " +
                     (frameName.empty() ? "geometry" + std::to_string(n)
                                        : Cp1252ToUtf8(EscapeControls(frameName))) +
                     "\n";
        // Z up to Y up: (x, y, z) -> (x, z, -y).
        const auto put = [&files](const char* tag, float x, float y, float z) {
            files.obj += std::string(tag) + " " + JsonNumber(x) + " " + JsonNumber(z) + " " +
                         JsonNumber(-y) + "\n";
        };
        const auto positions = Transformed(g.positions, m, false);
        for (std::size_t i = 0; i + 2 < positions.size(); i += 3) {
            put("v", positions[i], positions[i + 1], positions[i + 2]);
        }
        const auto normals = Transformed(g.normals, m, true);
        for (std::size_t i = 0; i + 2 < normals.size(); i += 3) {
            put("vn", normals[i], normals[i + 1], normals[i + 2]);
        }
        for (std::size_t i = 0; i + 1 < g.uvs.size(); i += 2) {
            // OBJ counts v from the bottom of the picture, RenderWare from the top.
            files.obj +=
                "vt " + JsonNumber(g.uvs[i]) + " " + JsonNumber(1.0f - g.uvs[i + 1]) + "\n";
        }
        for (const auto& [material, indices] : IndicesByMaterial(g)) {
            if (material >= 0) {
                const ModelMaterial& mat = g.materials[static_cast<std::size_t>(material)];
                const std::string name = "material" + std::to_string(materialCount++);
                files.obj += "usemtl " + name + "\n";
                files.mtl += "newmtl " + name + "\nKd " + JsonNumber(mat.color[0] / 255.0f) + " " +
                             JsonNumber(mat.color[1] / 255.0f) + " " +
                             JsonNumber(mat.color[2] / 255.0f) + "\nd " +
                             JsonNumber(mat.color[3] / 255.0f) + "\n";
                const std::string file = mat.texture + ".png";
                if (CanWritePng() && TextureFor(mat, textures) && UnsafeNameProblem(file).empty()) {
                    files.mtl += "map_Kd " + Cp1252ToUtf8(file) + "\n";
                    files.textureFiles[file] = mat.texture;
                }
            }
            for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
                files.obj += "f";
                for (int k = 0; k < 3; ++k) {
                    const std::string v = std::to_string(base + indices[i + k]);
                    files.obj += " " + v;
                    if (!g.uvs.empty() || !g.normals.empty()) {
                        files.obj +=
                            "/" + (g.uvs.empty() ? "" : v) + (g.normals.empty() ? "" : "/" + v);
                    }
                }
                files.obj += "\n";
            }
        }
        base += g.positions.size() / 3;
    }
    return files;
}

} // namespace korvel
