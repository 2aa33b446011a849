#include "preview/Model.h"

#include "preview/EntryBytes.h"
#include "search/RwChunk.h"

#include <algorithm>
#include <cstring>

namespace korvel {
namespace {

constexpr std::uint32_t TextureId = 0x06;
constexpr std::uint32_t MaterialId = 0x07;
constexpr std::uint32_t MaterialListId = 0x08;
constexpr std::uint32_t FrameListId = 0x0E;
constexpr std::uint32_t GeometryId = 0x0F;
constexpr std::uint32_t ClumpId = 0x10;
constexpr std::uint32_t AtomicId = 0x14;
constexpr std::uint32_t GeometryListId = 0x1A;
constexpr std::uint32_t NodeNameId = 0x0253F2FE;

constexpr std::uint32_t FrameBytes = 56;
constexpr std::uint32_t GeometryNative = 0x01000000;
constexpr std::uint32_t GeometryPrelit = 0x08;
constexpr std::uint32_t GeometryTextured = 0x04;
constexpr std::uint32_t GeometryTextured2 = 0x80;

float LeFloat(const char* p) {
    const std::uint32_t bits = Le32(p);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

// Reading of one clump: `bytes` and where reading stopped.
class ClumpReader {
public:
    explicit ClumpReader(std::string_view bytes, ModelInfo& model) : bytes_(bytes), m_(model) {}

    void read() {
        if (bytes_.size() < RwChunkHeaderSize || Le32(bytes_.data()) != ClumpId) {
            return stop(0, Reason{"the entry does not start with a clump", "whyDffNoClump", {}});
        }
        // A clump cut short is read as far as it goes.
        bool clipped = false;
        RwChunk clump{ClumpId, Le32(bytes_.data() + 4), Le32(bytes_.data() + 8), 0};
        if (clump.size > bytes_.size() - RwChunkHeaderSize) {
            clump.size = static_cast<std::uint32_t>(bytes_.size() - RwChunkHeaderSize);
            clipped = true;
        }
        m_.version = RwVersion(clump.libraryId);
        forEachChild(clump, [this](const RwChunk& c) {
            switch (c.type) {
            case FrameListId:
                readFrames(c);
                break;
            case GeometryListId:
                readGeometryList(c);
                break;
            case AtomicId:
                readAtomic(c);
                break;
            default:
                break;
            }
        });
        const auto frames = static_cast<std::uint32_t>(m_.frames.size());
        const auto geometries = static_cast<std::uint32_t>(m_.geometries.size());
        std::erase_if(m_.atomics, [&](const ModelAtomic& a) {
            return a.frame >= frames || a.geometry >= geometries;
        });
        if (clipped) {
            stop(bytes_.size(),
                 Reason{"the clump runs past the end of the entry", "whyDffClumpPastEnd", {}});
        }
    }

private:
    void stop(std::uint64_t at, Reason why) {
        if (m_.stopped.empty()) {
            m_.stopped = std::move(why);
            m_.stoppedAt = at;
        }
    }

    template <typename Visit> void forEachChild(const RwChunk& parent, Visit visit) {
        const std::uint64_t end = parent.at + RwChunkHeaderSize + parent.size;
        for (std::uint64_t at = parent.at + RwChunkHeaderSize; at < end;) {
            RwChunk child;
            if (!ReadRwChunk(bytes_, at, end, child)) {
                return stop(at, Reason{"a chunk runs past the end of the one that holds it",
                                       "whyDffChunkPastEnd",
                                       {}});
            }
            visit(child);
            at += RwChunkHeaderSize + std::uint64_t{child.size};
        }
    }

    // The struct chunk that must open `parent`, or false.
    bool structOf(const RwChunk& parent, RwChunk& s) {
        if (!ReadRwChunk(bytes_, parent.at + RwChunkHeaderSize,
                         parent.at + RwChunkHeaderSize + parent.size, s) ||
            s.type != RwStructId) {
            stop(parent.at, Reason{"a chunk lacks its struct", "whyDffNoStruct", {}});
            return false;
        }
        return true;
    }

    const char* body(const RwChunk& c) const { return bytes_.data() + c.at + RwChunkHeaderSize; }

    void readFrames(const RwChunk& list) {
        RwChunk s;
        if (!structOf(list, s) || s.size < 4) {
            return;
        }
        const std::uint32_t count = Le32(body(s));
        if (count > (s.size - 4) / FrameBytes) {
            return stop(
                s.at,
                Reason{"the frame list claims more frames than it holds", "whyDffFrames", {}});
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            const char* p = body(s) + 4 + std::size_t{i} * FrameBytes;
            ModelFrame& f = m_.frames.emplace_back();
            for (int k = 0; k < 12; ++k) {
                f.matrix[k] = LeFloat(p + 4 * k);
            }
            const auto parent = static_cast<std::int32_t>(Le32(p + 48));
            // Parents come before their children; anything else would loop.
            f.parent = parent >= 0 && parent < static_cast<std::int32_t>(i) ? parent : -1;
        }
        std::size_t frame = 0;
        forEachChild(list, [&](const RwChunk& c) {
            if (c.type != RwExtensionId || frame >= m_.frames.size()) {
                return;
            }
            forEachChild(c, [&](const RwChunk& e) {
                if (e.type == NodeNameId) {
                    m_.frames[frame].name = std::string(FieldText(body(e), e.size));
                }
            });
            ++frame;
        });
    }

    void readGeometryList(const RwChunk& list) {
        forEachChild(list, [this](const RwChunk& c) {
            if (c.type == GeometryId) {
                readGeometry(c);
            }
        });
    }

    void readAtomic(const RwChunk& atomic) {
        RwChunk s;
        if (!structOf(atomic, s) || s.size < 8) {
            return;
        }
        ModelAtomic a{Le32(body(s)), Le32(body(s) + 4)};
        // The oldest files keep the geometry inside the atomic.
        forEachChild(atomic, [&](const RwChunk& c) {
            if (c.type == GeometryId) {
                a.geometry = static_cast<std::uint32_t>(m_.geometries.size());
                readGeometry(c);
            }
        });
        m_.atomics.push_back(a);
    }

    void readGeometry(const RwChunk& chunk) {
        RwChunk s;
        if (!structOf(chunk, s)) {
            return;
        }
        ModelGeometry& g = m_.geometries.emplace_back();
        if (s.size < 16) {
            return stop(s.at,
                        Reason{"a geometry's struct is too short", "whyDffGeometryShort", {}});
        }
        const char* p = body(s);
        const std::uint64_t size = s.size;
        g.flags = Le32(p);
        g.triangleCount = Le32(p + 4);
        g.vertexCount = Le32(p + 8);
        const std::uint64_t nv = g.vertexCount;
        const std::uint64_t nt = g.triangleCount;
        std::uint64_t at = 16 + (RwVersion(s.libraryId) < 0x34000 ? 12 : 0);
        const auto need = [&](std::uint64_t bytes) {
            if (bytes > size || at > size - bytes) {
                stop(s.at, Reason{"a geometry claims more vertices or triangles than it holds",
                                  "whyDffGeometryCounts",
                                  {}});
                return false;
            }
            return true;
        };
        if (!(g.flags & GeometryNative)) {
            if (g.flags & GeometryPrelit) {
                if (!need(nv * 4)) {
                    return;
                }
                at += nv * 4;
            }
            std::uint32_t sets = (g.flags >> 16) & 0xFF;
            if (sets == 0) {
                sets = (g.flags & GeometryTextured2) ? 2 : (g.flags & GeometryTextured) ? 1 : 0;
            }
            if (!need(nv * 8 * sets)) {
                return;
            }
            if (sets > 0) {
                g.uvs.resize(nv * 2);
                for (std::uint64_t i = 0; i < nv * 2; ++i) {
                    g.uvs[i] = LeFloat(p + at + 4 * i);
                }
            }
            at += nv * 8 * sets;
            if (!need(nt * 8)) {
                return;
            }
            std::vector<ModelTriangle> triangles;
            triangles.reserve(nt);
            for (std::uint64_t i = 0; i < nt; ++i) {
                const char* t = p + at + 8 * i;
                const ModelTriangle triangle{Le16(t + 2), Le16(t), Le16(t + 6), Le16(t + 4)};
                if (triangle.a < nv && triangle.b < nv && triangle.c < nv) {
                    triangles.push_back(triangle);
                }
            }
            g.triangles = std::move(triangles);
            at += nt * 8;
        }
        // The first morph target holds the positions and normals.
        if (Le32(p + 12) > 0 && need(24)) {
            const bool hasPositions = Le32(p + at + 16) != 0;
            const bool hasNormals = Le32(p + at + 20) != 0;
            at += 24;
            for (auto [has, out] :
                 {std::pair{hasPositions, &g.positions}, std::pair{hasNormals, &g.normals}}) {
                if (!has) {
                    continue;
                }
                if (!need(nv * 12)) {
                    return;
                }
                out->resize(nv * 3);
                for (std::uint64_t i = 0; i < nv * 3; ++i) {
                    (*out)[i] = LeFloat(p + at + 4 * i);
                }
                at += nv * 12;
            }
        }
        forEachChild(chunk, [&](const RwChunk& c) {
            if (c.type == MaterialListId) {
                readMaterials(c, g);
            }
        });
    }

    void readMaterials(const RwChunk& list, ModelGeometry& g) {
        RwChunk s;
        if (!structOf(list, s) || s.size < 4) {
            return;
        }
        const std::uint32_t count = Le32(body(s));
        if (count > (s.size - 4) / 4) {
            return stop(s.at, Reason{"the material list claims more materials than it holds",
                                     "whyDffMaterialsClaim",
                                     {}});
        }
        std::vector<ModelMaterial> own;
        forEachChild(list, [&](const RwChunk& c) {
            if (c.type == MaterialId) {
                own.push_back(readMaterial(c));
            }
        });
        std::size_t next = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto index = static_cast<std::int32_t>(Le32(body(s) + 4 + 4 * std::size_t{i}));
            if (index >= 0 && static_cast<std::uint32_t>(index) < i) {
                g.materials.push_back(g.materials[static_cast<std::size_t>(index)]);
            } else if (next < own.size()) {
                g.materials.push_back(own[next++]);
            } else {
                return stop(list.at, Reason{"the material list has fewer materials than it claims",
                                            "whyDffMaterialsFewer",
                                            {}});
            }
        }
    }

    ModelMaterial readMaterial(const RwChunk& chunk) {
        ModelMaterial m;
        RwChunk s;
        if (!structOf(chunk, s) || s.size < 16) {
            return m;
        }
        std::memcpy(m.color.data(), body(s) + 4, 4);
        forEachChild(chunk, [&](const RwChunk& c) {
            if (c.type != TextureId) {
                return;
            }
            int strings = 0;
            forEachChild(c, [&](const RwChunk& t) {
                if (t.type == RwStringId && strings < 2) {
                    (strings++ == 0 ? m.texture : m.mask) = std::string(FieldText(body(t), t.size));
                }
            });
        });
        return m;
    }

    std::string_view bytes_;
    ModelInfo& m_;
};

} // namespace

ModelInfo ReadModel(std::string_view bytes) {
    ModelInfo model;
    ClumpReader(bytes, model).read();
    return model;
}

std::vector<std::string> ModelTextureNames(const ModelInfo& model) {
    std::vector<std::string> names;
    for (const ModelGeometry& g : model.geometries) {
        for (const ModelMaterial& m : g.materials) {
            if (!m.texture.empty() &&
                std::find(names.begin(), names.end(), m.texture) == names.end()) {
                names.push_back(m.texture);
            }
        }
    }
    return names;
}

std::vector<std::array<float, 12>> FrameWorldMatrices(const ModelInfo& model) {
    std::vector<std::array<float, 12>> world;
    world.reserve(model.frames.size());
    for (const ModelFrame& f : model.frames) {
        if (f.parent < 0) {
            world.push_back(f.matrix);
            continue;
        }
        const auto& p = world[static_cast<std::size_t>(f.parent)];
        std::array<float, 12> w{};
        // Axes turn with the parent; the position also moves by its position.
        for (int axis = 0; axis < 4; ++axis) {
            for (int k = 0; k < 3; ++k) {
                w[axis * 3 + k] = p[k] * f.matrix[axis * 3] + p[3 + k] * f.matrix[axis * 3 + 1] +
                                  p[6 + k] * f.matrix[axis * 3 + 2] + (axis == 3 ? p[9 + k] : 0);
            }
        }
        world.push_back(w);
    }
    return world;
}

} // namespace korvel
