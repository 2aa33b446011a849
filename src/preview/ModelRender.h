// Drawing a prepared model without a graphics card: a camera that orbits the
// model (Z up, as RenderWare models stand), a z-buffered triangle rasterizer
// with perspective-correct texturing into a plain pixel buffer, and the
// wireframe's edges as screen segments for a painter to draw. Pure math; the
// window only copies the buffer to the screen.
#pragma once

#include "preview/Image.h"
#include "preview/ModelMesh.h"

#include <cstdint>
#include <vector>

namespace korvel {

struct ModelCamera {
    Vec3 target{0, 0, 0}; // the point the camera turns around and looks at
    float distance = 1;   // from the target
    float yaw = 0;        // radians about Z; 0 looks along -X from +X
    float pitch = 0;      // radians above the XY plane
    float fovY = 0.8f;    // vertical field of view, radians
    float radius = 1;     // of what is framed: limits zoom and panning speed

    // Turns by a mouse drag of `dx`, `dy` pixels.
    void orbit(float dx, float dy);
    // Moves nearer (steps > 0) or farther; one wheel notch is one step.
    void zoom(float steps);
    // Moves the target with the picture by a drag of `dx`, `dy` pixels in a
    // view `height` pixels high.
    void pan(float dx, float dy, int height);
};

// The camera that shows all of `mesh` in a view of `width` x `height`,
// looking at its front-right corner from a little above.
ModelCamera FitCamera(const PreparedMesh& mesh, int width, int height);

enum class ModelShading { Flat, Smooth, Wireframe };

struct RenderBuffer {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> color; // 0xFFRRGGBB per pixel, rows top to bottom
    std::vector<float> depth;         // 1 / distance along the view; 0 is nothing drawn

    void reset(int w, int h, std::uint32_t background);
};

// Draws the triangles of `mesh` into `buffer` (reset beforehand) with flat or
// smooth light; `textures` holds one image (or nullptr) per mesh material.
// Wireframe draws nothing here: see WireSegments.
void RenderModel(const PreparedMesh& mesh, const std::vector<const RgbaImage*>& textures,
                 const ModelCamera& camera, ModelShading shading, RenderBuffer& buffer);

struct ScreenSegment {
    float x0, y0, x1, y1;
};

// The mesh's edges (each once) as seen by `camera` in a `width` x `height`
// view, cut where they leave the view or pass behind the camera.
std::vector<ScreenSegment> WireSegments(const PreparedMesh& mesh, const ModelCamera& camera,
                                        int width, int height);

} // namespace korvel
