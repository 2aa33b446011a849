#include "preview/ModelRender.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvel {
namespace {

constexpr float Pi = 3.14159265f;

float Dot(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec3 Unit(const Vec3& v) {
    const float length = std::sqrt(Dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

// The camera's axes and the projection onto a view of known size: view
// coordinates have x to the right, y up and z away from the eye.
struct View {
    Vec3 eye, right, up, forward;
    float focal, cx, cy, near;
    int width, height;

    View(const ModelCamera& c, int w, int h) : width(w), height(h) {
        const float cp = std::cos(c.pitch);
        const Vec3 back{cp * std::cos(c.yaw), cp * std::sin(c.yaw), std::sin(c.pitch)};
        eye = {c.target[0] + c.distance * back[0], c.target[1] + c.distance * back[1],
               c.target[2] + c.distance * back[2]};
        forward = {-back[0], -back[1], -back[2]};
        // Pitch stays short of the poles, so forward is never parallel to Z.
        right = Unit(Cross(forward, {0, 0, 1}));
        up = Cross(right, forward);
        focal = 0.5f * static_cast<float>(h) / std::tan(0.5f * c.fovY);
        cx = 0.5f * static_cast<float>(w);
        cy = 0.5f * static_cast<float>(h);
        near = std::max(c.distance * 0.01f, 1e-6f);
    }

    Vec3 toView(const Vec3& p) const {
        const Vec3 d{p[0] - eye[0], p[1] - eye[1], p[2] - eye[2]};
        return {Dot(d, right), Dot(d, up), Dot(d, forward)};
    }

    // The planes a point must be on the positive side of to be drawn: in
    // front of the near plane and inside the view's sides (a pixel of slack,
    // so edges on the border still cover it).
    float side(int plane, const Vec3& v) const {
        constexpr float Slack = 1;
        switch (plane) {
        case 0:
            return v[2] - near;
        case 1:
            return focal * v[0] + (cx + Slack) * v[2];
        case 2:
            return (static_cast<float>(width) - cx + Slack) * v[2] - focal * v[0];
        case 3:
            return focal * v[1] + (cy + Slack) * v[2];
        default:
            return (static_cast<float>(height) - cy + Slack) * v[2] - focal * v[1];
        }
    }
    static constexpr int Planes = 5;
};

// A corner on its way to the screen: view position and what is interpolated.
struct Corner {
    Vec3 v;
    float u, t, light;
};

Corner Mix(const Corner& a, const Corner& b, float s) {
    auto lerp = [s](float x, float y) { return x + (y - x) * s; };
    return {{lerp(a.v[0], b.v[0]), lerp(a.v[1], b.v[1]), lerp(a.v[2], b.v[2])},
            lerp(a.u, b.u),
            lerp(a.t, b.t),
            lerp(a.light, b.light)};
}

// Cuts the polygon `in` (n corners) by every plane of the view; at most
// 3 + Planes corners come out.
int ClipPolygon(const View& view, Corner* in, int n, Corner* scratch) {
    Corner* from = in;
    Corner* to = scratch;
    for (int plane = 0; plane < View::Planes && n > 0; ++plane) {
        int out = 0;
        for (int i = 0; i < n; ++i) {
            const Corner& a = from[i];
            const Corner& b = from[(i + 1) % n];
            const float da = view.side(plane, a.v);
            const float db = view.side(plane, b.v);
            if (da >= 0) {
                to[out++] = a;
            }
            if ((da >= 0) != (db >= 0)) {
                to[out++] = Mix(a, b, da / (da - db));
            }
        }
        n = out;
        std::swap(from, to);
    }
    if (from != in) {
        std::copy(from, from + n, in);
    }
    return n;
}

struct Projected {
    float x, y, w; // screen position and 1 / z
    float uw, tw, lw;
};

// The light from over the viewer's left shoulder, in view coordinates, and
// how much a surface facing `normal` (view coordinates) receives. Both faces
// are lit alike: models often mix their triangles' winding.
float Light(const Vec3& normal) {
    static const Vec3 toLight = Unit({-0.4f, 0.6f, -0.7f});
    return 0.3f + 0.7f * std::fabs(Dot(normal, toLight));
}

// Texel index along one side: coordinates repeat, as the games' textures
// wrap by default.
std::uint32_t Wrap(std::int64_t i, std::uint32_t size) {
    i %= static_cast<std::int64_t>(size);
    return static_cast<std::uint32_t>(i < 0 ? i + size : i);
}

// Texels less opaque than this are holes in a cut-out texture (leaves, fences).
constexpr float CutOutAlpha = 128;

// The colour of `image` at (u, t), blended from the four texels around it,
// and its alpha (0 to 255). RenderWare's texture coordinates run down the
// image, as its rows do.
float SampleBilinear(const RgbaImage& image, float u, float t, float rgb[3]) {
    float x = u * static_cast<float>(image.width) - 0.5f;
    float y = t * static_cast<float>(image.height) - 0.5f;
    if (!(std::fabs(x) < 1e9f && std::fabs(y) < 1e9f)) {
        x = y = 0;
    }
    const float left = std::floor(x);
    const float top = std::floor(y);
    const float across = x - left;
    const float down = y - top;
    const std::uint32_t x0 = Wrap(static_cast<std::int64_t>(left), image.width);
    const std::uint32_t x1 = Wrap(static_cast<std::int64_t>(left) + 1, image.width);
    const std::size_t row0 =
        std::size_t{Wrap(static_cast<std::int64_t>(top), image.height)} * image.width;
    const std::size_t row1 =
        std::size_t{Wrap(static_cast<std::int64_t>(top) + 1, image.height)} * image.width;
    const std::uint8_t* p = image.pixels.data();
    const std::uint8_t* corners[4] = {p + (row0 + x0) * 4, p + (row0 + x1) * 4, p + (row1 + x0) * 4,
                                      p + (row1 + x1) * 4};
    const float weights[4] = {(1 - across) * (1 - down), across * (1 - down), (1 - across) * down,
                              across * down};
    float alpha = 0;
    rgb[0] = rgb[1] = rgb[2] = 0;
    for (int k = 0; k < 4; ++k) {
        for (int c = 0; c < 3; ++c) {
            rgb[c] += weights[k] * corners[k][c];
        }
        alpha += weights[k] * corners[k][3];
    }
    return alpha;
}

// Whether a texture is see-through in part (glass, smoke) rather than only
// cut out: some texel lies clearly between transparent and opaque.
bool HasPartialAlpha(const RgbaImage& image) {
    for (std::size_t i = 3; i < image.pixels.size(); i += 4) {
        if (image.pixels[i] >= 16 && image.pixels[i] < 240) {
            return true;
        }
    }
    return false;
}

// `image` when its pixels are all there, else nullptr (drawn untextured).
const RgbaImage* Usable(const RgbaImage* image) {
    if (image == nullptr || image->width == 0 || image->height == 0 ||
        image->pixels.size() / 4 / image->width < image->height) {
        return nullptr;
    }
    return image;
}

// One side of a see-through triangle. A pixel centre on a side two such
// triangles share must be covered by exactly one of them, or it is blended
// twice: the side is worked out from its ends in one fixed order, so both
// triangles get the same number, and a centre on it goes to the triangle
// that lies to its right, or below it when the side runs level.
class Side {
public:
    Side(const Projected& a, const Projected& b, const Projected& opposite) {
        const bool swap = b.x < a.x || (b.x == a.x && b.y < a.y);
        const Projected& from = swap ? b : a;
        const Projected& to = swap ? a : b;
        x_ = from.x;
        y_ = from.y;
        dx_ = static_cast<double>(to.x) - from.x;
        dy_ = static_cast<double>(to.y) - from.y;
        inward_ = at(opposite.x, opposite.y) < 0 ? -1 : 1;
        const double towardsX = -inward_ * dy_;
        ownsCentresOnIt_ = towardsX > 0 || (towardsX == 0 && inward_ * dx_ > 0);
    }

    bool covers(double x, double y) const {
        const double e = at(x, y) * inward_;
        return e > 0 || (e == 0 && ownsCentresOnIt_);
    }

private:
    double at(double x, double y) const { return dx_ * (y - y_) - dy_ * (x - x_); }

    double x_, y_, dx_, dy_;
    double inward_;
    bool ownsCentresOnIt_;
};

class Rasterizer {
public:
    // A blended rasterizer mixes its colour into what is drawn by its alpha
    // and leaves the depth as it is, so what lies behind it still shows.
    Rasterizer(RenderBuffer& buffer, const RgbaImage* texture, std::array<std::uint8_t, 4> color,
               bool blended)
        : b_(buffer), texture_(texture), blended_(blended) {
        for (std::size_t k = 0; k < 4; ++k) {
            color_[k] = static_cast<float>(color[k]) / 255.0f;
        }
    }

    void triangle(const Projected& p0, const Projected& p1, const Projected& p2) {
        const float area = (p1.x - p0.x) * (p2.y - p0.y) - (p1.y - p0.y) * (p2.x - p0.x);
        if (!std::isfinite(area) || std::fabs(area) < 1e-12f) {
            return;
        }
        // Clipping keeps the corners inside the view; the clamps only keep a
        // rounding slip from indexing outside the buffer.
        const auto column = [this](float v) {
            return static_cast<int>(std::clamp(v, 0.0f, static_cast<float>(b_.width - 1)));
        };
        const auto row = [this](float v) {
            return static_cast<int>(std::clamp(v, 0.0f, static_cast<float>(b_.height - 1)));
        };
        const int x0 = column(std::floor(std::min({p0.x, p1.x, p2.x})));
        const int x1 = column(std::ceil(std::max({p0.x, p1.x, p2.x})));
        const int y0 = row(std::floor(std::min({p0.y, p1.y, p2.y})));
        const int y1 = row(std::ceil(std::max({p0.y, p1.y, p2.y})));
        // Each corner's share of a pixel (the sub-triangle opposite it over
        // the whole) is linear in x and y: s = a x + b y + c.
        const float inverse = 1.0f / area;
        const float a0 = (p1.y - p2.y) * inverse, b0 = (p2.x - p1.x) * inverse,
                    c0 = (p1.x * p2.y - p1.y * p2.x) * inverse;
        const float a1 = (p2.y - p0.y) * inverse, b1 = (p0.x - p2.x) * inverse,
                    c1 = (p2.x * p0.y - p2.y * p0.x) * inverse;
        // Everything interpolated, as its value at the third corner plus
        // the first two shares times the differences.
        const Attributes base{p2.w, p2.uw, p2.tw, p2.lw};
        const Attributes d0{p0.w - p2.w, p0.uw - p2.uw, p0.tw - p2.tw, p0.lw - p2.lw};
        const Attributes d1{p1.w - p2.w, p1.uw - p2.uw, p1.tw - p2.tw, p1.lw - p2.lw};
        const Side sides[3] = {{p1, p2, p0}, {p2, p0, p1}, {p0, p1, p2}};
        for (int y = y0; y <= y1; ++y) {
            const float py = static_cast<float>(y) + 0.5f;
            const std::size_t rowStart =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(b_.width);
            for (int x = x0; x <= x1; ++x) {
                const float px = static_cast<float>(x) + 0.5f;
                const float s0 = a0 * px + b0 * py + c0;
                const float s1 = a1 * px + b1 * py + c1;
                // A hair of slack: a pixel centre on an edge two triangles
                // share must not slip between them by rounding.
                constexpr float Slack = 1e-5f;
                if (blended_ ? !(sides[0].covers(px, py) && sides[1].covers(px, py) &&
                                 sides[2].covers(px, py))
                             : s0 < -Slack || s1 < -Slack || s0 + s1 > 1 + Slack) {
                    continue;
                }
                const std::size_t at = rowStart + static_cast<std::size_t>(x);
                const float w = base.w + s0 * d0.w + s1 * d1.w;
                if (!(w > b_.depth[at])) {
                    continue;
                }
                const float z = 1.0f / w;
                const float light = std::clamp((base.lw + s0 * d0.lw + s1 * d1.lw) * z, 0.0f, 1.0f);
                float r = color_[0] * light, g = color_[1] * light, b = color_[2] * light;
                float alpha = color_[3];
                if (texture_ != nullptr) {
                    float texel[3];
                    const float texelAlpha =
                        SampleBilinear(*texture_, (base.uw + s0 * d0.uw + s1 * d1.uw) * z,
                                       (base.tw + s0 * d0.tw + s1 * d1.tw) * z, texel);
                    if (!blended_ && texelAlpha < CutOutAlpha) {
                        continue; // cut out: what lies behind shows
                    }
                    r *= texel[0];
                    g *= texel[1];
                    b *= texel[2];
                    alpha *= texelAlpha / 255.0f;
                } else {
                    r *= 255;
                    g *= 255;
                    b *= 255;
                }
                if (blended_) {
                    const std::uint32_t under = b_.color[at];
                    const auto mix = [alpha](float over, std::uint32_t back) {
                        return static_cast<std::uint32_t>(
                            std::clamp(over * alpha + static_cast<float>(back & 0xFF) * (1 - alpha),
                                       0.0f, 255.0f));
                    };
                    b_.color[at] = 0xFF000000u | mix(r, under >> 16) << 16 |
                                   mix(g, under >> 8) << 8 | mix(b, under);
                    continue;
                }
                b_.depth[at] = w;
                b_.color[at] = 0xFF000000u | static_cast<std::uint32_t>(r) << 16 |
                               static_cast<std::uint32_t>(g) << 8 | static_cast<std::uint32_t>(b);
            }
        }
    }

private:
    struct Attributes {
        float w, uw, tw, lw;
    };

    RenderBuffer& b_;
    const RgbaImage* texture_;
    bool blended_;
    std::array<float, 4> color_{};
};

} // namespace

void ModelCamera::orbit(float dx, float dy) {
    yaw -= dx * 0.01f;
    pitch = std::clamp(pitch + dy * 0.01f, -1.55f, 1.55f);
}

void ModelCamera::zoom(float steps) {
    distance = std::clamp(distance * std::pow(0.85f, steps), radius * 0.05f, radius * 50.0f);
}

void ModelCamera::pan(float dx, float dy, int height) {
    const View view(*this, 1, std::max(height, 1));
    const float perPixel = distance / view.focal;
    for (int k = 0; k < 3; ++k) {
        target[static_cast<std::size_t>(k)] += (-dx * view.right[static_cast<std::size_t>(k)] +
                                                dy * view.up[static_cast<std::size_t>(k)]) *
                                               perPixel;
    }
}

ModelCamera FitCamera(const PreparedMesh& mesh, int width, int height) {
    ModelCamera camera;
    camera.yaw = Pi / 4;
    camera.pitch = Pi / 8;
    Vec3 centre;
    float radius = 0;
    for (int k = 0; k < 3; ++k) {
        const auto i = static_cast<std::size_t>(k);
        centre[i] = 0.5f * mesh.boundsMin[i] + 0.5f * mesh.boundsMax[i];
        const float half = 0.5f * mesh.boundsMax[i] - 0.5f * mesh.boundsMin[i];
        radius += half * half;
    }
    radius = std::sqrt(radius);
    if (!std::isfinite(radius) || !std::isfinite(Dot(centre, centre)) || radius <= 0) {
        centre = {0, 0, 0};
        radius = 1;
    }
    camera.target = centre;
    camera.radius = radius;
    // Near enough that the bounds' corners, seen from this side, just fit
    // both ways (framing the sphere around them would leave a long model
    // small in the middle).
    const float aspect = height > 0 ? static_cast<float>(width) / static_cast<float>(height) : 1;
    const float tanY = std::tan(0.5f * camera.fovY);
    const float tanX = tanY * (aspect > 0 ? aspect : 1);
    const View view(camera, 1, 1);
    float distance = 0.2f * radius;
    for (int corner = 0; corner < 8; ++corner) {
        Vec3 offset;
        for (std::size_t k = 0; k < 3; ++k) {
            offset[k] = ((corner >> k) & 1 ? mesh.boundsMax[k] : mesh.boundsMin[k]) - centre[k];
        }
        const float depth = Dot(offset, view.forward);
        distance = std::max({distance, std::fabs(Dot(offset, view.right)) / tanX - depth,
                             std::fabs(Dot(offset, view.up)) / tanY - depth});
    }
    camera.distance = std::isfinite(distance) ? distance * 1.08f : radius * 3;
    return camera;
}

void RenderBuffer::reset(int w, int h, std::uint32_t background) {
    width = std::max(w, 0);
    height = std::max(h, 0);
    color.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), background);
    depth.assign(color.size(), 0.0f);
}

void RenderModel(const PreparedMesh& mesh, const std::vector<const RgbaImage*>& textures,
                 const ModelCamera& camera, ModelShading shading, RenderBuffer& buffer) {
    if (shading == ModelShading::Wireframe || buffer.width <= 0 || buffer.height <= 0) {
        return;
    }
    const View view(camera, buffer.width, buffer.height);
    const auto viewNormal = [&view](const Vec3& n) {
        return Vec3{Dot(n, view.right), Dot(n, view.up), Dot(n, view.forward)};
    };
    std::vector<Vec3> viewed(mesh.positions.size());
    std::vector<float> light(mesh.positions.size());
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
        viewed[i] = view.toView(mesh.positions[i]);
        light[i] = i < mesh.normals.size() ? Light(viewNormal(mesh.normals[i])) : 1.0f;
    }
    // Per material: its usable texture, and whether it is drawn blended (a
    // colour less than opaque, or a texture see-through in part).
    std::vector<const RgbaImage*> usable(mesh.materials.size(), nullptr);
    std::vector<bool> blended(mesh.materials.size(), false);
    for (std::size_t m = 0; m < mesh.materials.size(); ++m) {
        usable[m] = m < textures.size() ? Usable(textures[m]) : nullptr;
        blended[m] = mesh.materials[m].color[3] < 255 ||
                     (usable[m] != nullptr && HasPartialAlpha(*usable[m]));
    }
    const auto draw = [&](const MeshTriangle& t, bool blend) {
        const float flat = Light(viewNormal(t.normal));
        Corner polygon[3 + View::Planes];
        Corner scratch[3 + View::Planes];
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t c = t.corners[static_cast<std::size_t>(k)];
            polygon[k] = {viewed[c], mesh.uvs[c][0], mesh.uvs[c][1],
                          shading == ModelShading::Smooth ? light[c] : flat};
        }
        const int n = ClipPolygon(view, polygon, 3, scratch);
        if (n < 3) {
            return;
        }
        const bool known =
            t.material >= 0 && static_cast<std::size_t>(t.material) < mesh.materials.size();
        const auto material = static_cast<std::size_t>(t.material);
        Rasterizer raster(buffer, known ? usable[material] : nullptr,
                          known ? mesh.materials[material].color
                                : std::array<std::uint8_t, 4>{200, 200, 200, 255},
                          blend);
        Projected p[3 + View::Planes];
        for (int k = 0; k < n; ++k) {
            const Corner& c = polygon[k];
            const float w = 1.0f / c.v[2];
            p[k] = {view.cx + view.focal * c.v[0] * w,
                    view.cy - view.focal * c.v[1] * w,
                    w,
                    c.u * w,
                    c.t * w,
                    c.light * w};
        }
        for (int k = 1; k + 1 < n; ++k) {
            raster.triangle(p[0], p[k], p[k + 1]);
        }
    };
    // The opaque triangles first, filling the depth; then the blended ones
    // from the farthest to the nearest (by their centres), each over what
    // lies behind it.
    std::vector<std::pair<float, const MeshTriangle*>> later;
    for (const MeshTriangle& t : mesh.triangles) {
        if (std::any_of(t.corners.begin(), t.corners.end(), [&](std::uint32_t c) {
                return c >= viewed.size() || c >= mesh.uvs.size();
            })) {
            continue;
        }
        if (t.material >= 0 && static_cast<std::size_t>(t.material) < blended.size() &&
            blended[static_cast<std::size_t>(t.material)]) {
            float depth = 0;
            for (const std::uint32_t c : t.corners) {
                depth += viewed[c][2];
            }
            later.emplace_back(depth, &t);
            continue;
        }
        draw(t, false);
    }
    std::stable_sort(later.begin(), later.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    for (const auto& [depth, t] : later) {
        draw(*t, true);
    }
}

std::vector<ScreenSegment> WireSegments(const PreparedMesh& mesh, const ModelCamera& camera,
                                        int width, int height) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> edges;
    edges.reserve(mesh.triangles.size() * 3);
    for (const MeshTriangle& t : mesh.triangles) {
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t a = t.corners[static_cast<std::size_t>(k)];
            const std::uint32_t b = t.corners[static_cast<std::size_t>((k + 1) % 3)];
            edges.emplace_back(std::min(a, b), std::max(a, b));
        }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    std::vector<ScreenSegment> segments;
    if (width <= 0 || height <= 0) {
        return segments;
    }
    const View view(camera, width, height);
    for (const auto& [a, b] : edges) {
        if (a >= mesh.positions.size() || b >= mesh.positions.size()) {
            continue;
        }
        Vec3 p = view.toView(mesh.positions[a]);
        Vec3 q = view.toView(mesh.positions[b]);
        bool inside = true;
        for (int plane = 0; plane < View::Planes && inside; ++plane) {
            const float dp = view.side(plane, p);
            const float dq = view.side(plane, q);
            if (dp < 0 && dq < 0) {
                inside = false;
            } else if (dp < 0 || dq < 0) {
                const float s = dp / (dp - dq);
                const Vec3 cut{p[0] + (q[0] - p[0]) * s, p[1] + (q[1] - p[1]) * s,
                               p[2] + (q[2] - p[2]) * s};
                (dp < 0 ? p : q) = cut;
            }
        }
        if (!inside) {
            continue;
        }
        segments.push_back({view.cx + view.focal * p[0] / p[2], view.cy - view.focal * p[1] / p[2],
                            view.cx + view.focal * q[0] / q[2],
                            view.cy - view.focal * q[1] / q[2]});
    }
    return segments;
}

} // namespace korvel
