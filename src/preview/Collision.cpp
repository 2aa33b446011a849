#include "preview/Collision.h"

#include "search/ByteSource.h"
#include "search/CollisionFile.h"

#include <algorithm>
#include <cstring>

namespace korvel {
namespace {

constexpr std::uint32_t Tag(const char (&t)[5]) {
    return std::uint32_t(std::uint8_t(t[0])) | (std::uint32_t(std::uint8_t(t[1])) << 8) |
           (std::uint32_t(std::uint8_t(t[2])) << 16) | (std::uint32_t(std::uint8_t(t[3])) << 24);
}

float F(const char* p) {
    const std::uint32_t bits = Le32(p);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

std::array<float, 3> V3(const char* p) {
    return {F(p), F(p + 4), F(p + 8)};
}

// A model's body: `p` at its name field, `size` bytes from there.
class BodyReader {
public:
    BodyReader(const char* p, std::uint64_t size, CollisionModel& m) : p_(p), size_(size), m_(m) {}

    // Whether `bytes` more lie at `at`; notes the problem when not.
    bool has(std::uint64_t at, std::uint64_t bytes) {
        if (at > size_ || bytes > size_ - at) {
            if (m_.problem.empty()) {
                m_.problem = {
                    "the model's body is shorter than its counts claim", "whyColBodyShort", {}};
            }
            return false;
        }
        return true;
    }

    // COLL: bounds, then each list with its count in front.
    void readVersion1() {
        std::uint64_t at = 24;
        if (!has(at, 40)) {
            return;
        }
        m_.radius = F(p_ + at);
        m_.center = V3(p_ + at + 4);
        m_.boundsMin = V3(p_ + at + 16);
        m_.boundsMax = V3(p_ + at + 28);
        at += 40;
        if (!has(at, 4) || !list(at, 20, [&](const char* s) {
                m_.spheres.push_back({V3(s + 4), F(s)});
            })) {
            return;
        }
        if (!has(at, 4) || !list(at, 24, [](const char*) {})) { // lines, unused by the games
            return;
        }
        if (!has(at, 4) || !list(at, 28, [&](const char* b) {
                m_.boxes.push_back({V3(b), V3(b + 12)});
            })) {
            return;
        }
        if (!has(at, 4) || !list(at, 12, [&](const char* v) {
                const auto xyz = V3(v);
                m_.vertices.insert(m_.vertices.end(), xyz.begin(), xyz.end());
            })) {
            return;
        }
        if (has(at, 4)) {
            m_.faceCount = Le32(p_ + at);
            list(at, 16, [&](const char* f) { addFace(Le32(f), Le32(f + 4), Le32(f + 8)); });
        }
    }

    // COL2 and COL3: bounds, 16-bit counts, then lists at offsets that count
    // from the size field (4 bytes into the model).
    void readVersion2() {
        if (!has(24, 40 + 12 + 24)) {
            return;
        }
        const char* h = p_ + 24;
        m_.boundsMin = V3(h);
        m_.boundsMax = V3(h + 12);
        m_.center = V3(h + 24);
        m_.radius = F(h + 36);
        const std::uint32_t spheres = Le16(h + 40);
        const std::uint32_t boxes = Le16(h + 42);
        m_.faceCount = Le16(h + 44);
        const auto offset = [&](int i) -> std::uint64_t {
            // From the size field; our `p_` is 4 bytes further on.
            const std::uint32_t o = Le32(h + 52 + 4 * i);
            return o < 4 ? size_ + 1 : o - 4;
        };
        const std::uint64_t spheresAt = offset(0);
        const std::uint64_t boxesAt = offset(1);
        const std::uint64_t verticesAt = offset(3);
        const std::uint64_t facesAt = offset(4);
        if (spheres && has(spheresAt, std::uint64_t{spheres} * 20)) {
            for (std::uint32_t i = 0; i < spheres; ++i) {
                const char* s = p_ + spheresAt + 20 * i;
                m_.spheres.push_back({V3(s), F(s + 12)});
            }
        }
        if (boxes && has(boxesAt, std::uint64_t{boxes} * 28)) {
            for (std::uint32_t i = 0; i < boxes; ++i) {
                const char* b = p_ + boxesAt + 28 * i;
                m_.boxes.push_back({V3(b), V3(b + 12)});
            }
        }
        if (m_.faceCount == 0 || !has(facesAt, std::uint64_t{m_.faceCount} * 8)) {
            return;
        }
        // The vertices are not counted: the faces name them, as 16-bit
        // numbers in 1/128 units.
        std::uint32_t vertexCount = 0;
        for (std::uint32_t i = 0; i < m_.faceCount; ++i) {
            const char* f = p_ + facesAt + 8 * i;
            vertexCount = std::max({vertexCount, Le16(f) + 1u, Le16(f + 2) + 1u, Le16(f + 4) + 1u});
        }
        if (!has(verticesAt, std::uint64_t{vertexCount} * 6)) {
            return;
        }
        for (std::uint32_t i = 0; i < vertexCount * 3; ++i) {
            m_.vertices.push_back(static_cast<std::int16_t>(Le16(p_ + verticesAt + 2 * i)) /
                                  128.0f);
        }
        for (std::uint32_t i = 0; i < m_.faceCount; ++i) {
            const char* f = p_ + facesAt + 8 * i;
            addFace(Le16(f), Le16(f + 2), Le16(f + 4));
        }
    }

private:
    template <typename Each> bool list(std::uint64_t& at, std::uint64_t stride, Each each) {
        const std::uint64_t n = Le32(p_ + at);
        at += 4;
        if (!has(at, n * stride)) {
            return false;
        }
        for (std::uint64_t i = 0; i < n; ++i) {
            each(p_ + at + i * stride);
        }
        at += n * stride;
        return true;
    }

    void addFace(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        const std::size_t n = m_.vertices.size() / 3;
        if (a < n && b < n && c < n) {
            m_.faces.push_back({a, b, c});
        }
    }

    const char* p_;
    std::uint64_t size_;
    CollisionModel& m_;
};

} // namespace

CollisionInfo ReadCollisionFile(std::string_view bytes) {
    CollisionInfo info;
    MemorySource source(bytes);
    const CollisionModelWalk walk = WalkCollisionModels(source, 0, bytes.size());
    for (const CollisionModelPlace& place : walk.models) {
        CollisionModel& m = info.models.emplace_back();
        const std::string_view field = place.nameField;
        std::string name(FieldText(field.data(), std::min<std::size_t>(field.size(), 22)));
        while (!name.empty() && name.back() == ' ') {
            name.pop_back();
        }
        m.name = std::move(name);
        m.version = std::string(bytes.substr(place.offset, 4));
        if (field.size() >= 24) {
            m.id = Le16(field.data() + 22);
        }
        BodyReader body(bytes.data() + place.offset + 8, place.size, m);
        if (place.tag == Tag("COLL")) {
            body.readVersion1();
        } else if (place.tag == Tag("COL2") || place.tag == Tag("COL3") ||
                   place.tag == Tag("COL4")) {
            body.readVersion2();
        } else {
            m.problem = {"the model's tag is not one Korvel knows", "whyColTag", {}};
        }
    }
    info.stopped = walk.stopped;
    info.stoppedAt = walk.stoppedAt;
    return info;
}

} // namespace korvel
