// Drawing a model in the preview's software view: milliseconds per 800x600
// frame of a model file (the largest of the real test models by default),
// while the camera turns a full circle, for flat and smooth light and for the
// wireframe's segments; a texture dictionary given after it textures it.
// With --png OUT, the first smooth frame is also written as a picture.
//
//   bench_model_view [MODEL.dff [TEXTURES.txd]] [--png OUT.png]
//   bench_model_view --ball SEGMENTS [--png OUT.png]   a generated textured ball
#include "PreviewBench.h"
#include "platform/Cp1252.h"
#include "preview/ModelExport.h"
#include "preview/ModelRender.h"
#include "preview/Png.h"
#include "preview/Textures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>

using namespace korvel;

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TextureImages DecodeDictionary(const std::string& bytes) {
    TextureImages images;
    MemorySource source(bytes);
    for (const TextureInfo& t : ReadTextureDictionary(source, 0, bytes.size()).textures) {
        DecodedImage d = DecodeTextureLevel(source, 0, t, 0);
        if (d.problem.empty()) {
            images[ToLowerCp1252(t.name)] = std::move(d.image);
        }
    }
    return images;
}

// A ball of `segments` x segments / 2 quads (segments^2 triangles), textured
// with a 256x256 checker named "ball": what a detailed game model costs.
ModelInfo Ball(int segments, TextureImages& images) {
    ModelInfo model;
    model.frames.resize(1);
    model.atomics.push_back({0, 0});
    ModelGeometry& g = model.geometries.emplace_back();
    const int rings = segments / 2;
    for (int r = 0; r <= rings; ++r) {
        const float polar = 3.14159265f * static_cast<float>(r) / static_cast<float>(rings);
        for (int k = 0; k <= segments; ++k) {
            const float around = 6.2831853f * static_cast<float>(k) / static_cast<float>(segments);
            g.positions.insert(g.positions.end(),
                               {std::sin(polar) * std::cos(around),
                                std::sin(polar) * std::sin(around), std::cos(polar)});
            g.uvs.insert(g.uvs.end(), {static_cast<float>(k) / static_cast<float>(segments) * 4,
                                       static_cast<float>(r) / static_cast<float>(rings) * 2});
        }
    }
    const auto at = [segments](int r, int k) {
        return static_cast<std::uint16_t>(r * (segments + 1) + k);
    };
    for (int r = 0; r < rings; ++r) {
        for (int k = 0; k < segments; ++k) {
            g.triangles.push_back({at(r, k), at(r + 1, k), at(r + 1, k + 1), 0});
            g.triangles.push_back({at(r, k), at(r + 1, k + 1), at(r, k + 1), 0});
        }
    }
    g.vertexCount = static_cast<std::uint32_t>(g.positions.size() / 3);
    g.triangleCount = static_cast<std::uint32_t>(g.triangles.size());
    g.materials.push_back({{255, 255, 255, 255}, "ball", ""});
    RgbaImage checker{256, 256, std::vector<std::uint8_t>(256 * 256 * 4, 255)};
    for (std::size_t i = 0; i < 256 * 256; ++i) {
        if (((i % 256) / 32 + i / 256 / 32) % 2 != 0) {
            checker.pixels[4 * i] = checker.pixels[4 * i + 1] = 60;
        }
    }
    images["ball"] = std::move(checker);
    return model;
}

// Median milliseconds over `frames` frames, the camera turned evenly.
template <typename Draw> bench::Times MedianFrameMs(ModelCamera camera, int frames, Draw draw) {
    return bench::MedianMs(frames, [&] {
        camera.yaw += 6.2831853f / static_cast<float>(frames);
        draw(camera);
    });
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files;
    std::string png;
    int ball = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--png" && i + 1 < argc) {
            png = argv[++i];
        } else if (std::string(argv[i]) == "--ball" && i + 1 < argc) {
            ball = std::clamp(std::atoi(argv[++i]), 8, 180); // 16-bit vertex indices
            files = {"ball of " + std::to_string(ball * ball) + " triangles"};
        } else {
            files.emplace_back(argv[i]);
        }
    }
    if (files.empty()) {
        files.push_back(std::string(KORVEL_REAL_TESTDATA) + "/monkey.dff");
    }
    TextureImages images;
    const ModelInfo model = ball > 0 ? Ball(ball, images) : ReadModel(ReadAll(files[0]));
    const PreparedMesh mesh = PrepareModelMesh(model);
    if (mesh.empty()) {
        std::printf("bench_model_view: %s holds nothing to draw (%s)\n", files[0].c_str(),
                    model.stopped.english.c_str());
        return 1;
    }
    if (files.size() > 1) {
        images = DecodeDictionary(ReadAll(files[1]));
    }
    std::vector<const RgbaImage*> textures;
    for (const MeshMaterial& m : mesh.materials) {
        const auto found = images.find(m.texture);
        textures.push_back(found == images.end() ? nullptr : &found->second);
    }
    constexpr int Width = 800;
    constexpr int Height = 600;
    const ModelCamera fitted = FitCamera(mesh, Width, Height);
    RenderBuffer buffer;
    std::printf("%s: %zu triangles, %zu vertices, %zu of %zu materials textured; %dx%d\n",
                files[0].c_str(), mesh.triangles.size(), mesh.positions.size(),
                static_cast<std::size_t>(std::count_if(textures.begin(), textures.end(),
                                                       [](const RgbaImage* t) { return t; })),
                textures.size(), Width, Height);
    for (const auto& [name, shading] :
         {std::pair{"flat", ModelShading::Flat}, std::pair{"smooth", ModelShading::Smooth}}) {
        const bench::Times t = MedianFrameMs(fitted, 72, [&](const ModelCamera& camera) {
            buffer.reset(Width, Height, 0xFF404448u);
            RenderModel(mesh, textures, camera, shading, buffer);
        });
        std::printf("%-7s %.2f ms per frame (%.0f frames per second), %.2f ms processor time; "
                    "medians of 72\n",
                    name, t.wallMs, 1000.0 / t.wallMs, t.cpuMs);
    }
    std::size_t segments = 0;
    const bench::Times wire = MedianFrameMs(fitted, 72, [&](const ModelCamera& camera) {
        segments = WireSegments(mesh, camera, Width, Height).size();
    });
    std::printf("wire    %.2f ms per frame for %zu segments (painting them not included)\n",
                wire.wallMs, segments);
    if (!png.empty()) {
        buffer.reset(Width, Height, 0xFF404448u);
        RenderModel(mesh, textures, fitted, ModelShading::Smooth, buffer);
        RgbaImage image{Width, Height, {}};
        for (std::uint32_t c : buffer.color) {
            image.pixels.insert(image.pixels.end(), {static_cast<std::uint8_t>(c >> 16),
                                                     static_cast<std::uint8_t>(c >> 8),
                                                     static_cast<std::uint8_t>(c), 255});
        }
        const auto encoded = EncodePng(image);
        std::ofstream(png, std::ios::binary) << encoded.value_or("");
    }
    return 0;
}
