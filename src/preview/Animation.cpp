#include "preview/Animation.h"

#include "search/ByteSource.h"

#include <algorithm>

namespace korvel {
namespace {

// Whether `n` bytes lie at `at` of `bytes`.
bool Has(std::string_view bytes, std::uint64_t at, std::uint64_t n) {
    return at <= bytes.size() && n <= bytes.size() - at;
}

std::uint64_t Align4(std::uint64_t n) {
    return (n + 3) & ~std::uint64_t{3};
}

void Stop(AnimationPackage& p, std::uint64_t at, Reason why) {
    p.stopped = std::move(why);
    p.stoppedAt = at;
}

// San Andreas: a 24-byte name and a count, then per animation a 24-byte
// name, object count, frame data size and a flag saying whether keys are
// stored as 16-bit numbers; per object a name, key type, key count and bone.
void ReadAnp3(std::string_view b, AnimationPackage& p) {
    if (!Has(b, 8, 28)) {
        return Stop(p, 0, {"the package header is cut short", "whyIfpHeaderCut", {}});
    }
    p.name = std::string(FieldText(b.data() + 8, 24));
    const std::uint32_t count = Le32(b.data() + 32);
    std::uint64_t at = 36;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!Has(b, at, 36)) {
            const std::string n = std::to_string(i + 1);
            return Stop(p, at, {"animation " + n + " is cut short", "whyIfpAnimationCut", {n}});
        }
        Animation& a = p.animations.emplace_back();
        a.name = std::string(FieldText(b.data() + at, 24));
        const std::uint32_t objects = Le32(b.data() + at + 24);
        const bool compressed = Le32(b.data() + at + 32) != 0;
        at += 36;
        for (std::uint32_t k = 0; k < objects; ++k) {
            if (!Has(b, at, 36)) {
                return Stop(
                    p, at,
                    {"an object of " + a.name + " is cut short", "whyIfpObjectCut", {a.name}});
            }
            const std::uint32_t type = Le32(b.data() + at + 24);
            const std::uint32_t frames = Le32(b.data() + at + 28);
            a.objects.push_back({std::string(FieldText(b.data() + at, 24)), frames});
            at += 36;
            // Rotation keys, or rotation and translation keys.
            std::uint64_t key = 0;
            if (type == 1) {
                key = compressed ? 10 : 20;
            } else if (type == 2) {
                key = compressed ? 16 : 32;
            } else if (type != 0) {
                return Stop(p, at,
                            {"an object of " + a.name + " has an unknown key type",
                             "whyIfpKeyType",
                             {a.name}});
            }
            if (!Has(b, at, key * frames)) {
                return Stop(
                    p, at,
                    {"the keys of " + a.name + " run past the end", "whyIfpKeysPastEnd", {a.name}});
            }
            at += key * frames;
        }
    }
}

// GTA III and Vice City: tagged sections (a 4-byte tag and a 32-bit size,
// bodies padded to 4 bytes): INFO with the count, then per animation NAME
// and DGAN, which holds INFO with the object count and a CPAN per object
// (its ANIM names it and gives the frame count).
struct Section {
    std::uint32_t size = 0;
    std::uint64_t body = 0;
    std::uint64_t next = 0;
};

// A section holding others (DGAN, CPAN) that runs past `end` is read as far
// as it goes; any other must fit.
bool ReadSection(std::string_view b, std::uint64_t at, std::uint64_t end, std::string_view tag,
                 Section& s, bool holdsSections = false) {
    if (at > end || end - at < 8 || b.substr(at, 4) != tag) {
        return false;
    }
    s.size = Le32(b.data() + at + 4);
    s.body = at + 8;
    if (s.size > end - s.body) {
        if (!holdsSections) {
            return false;
        }
        s.size = static_cast<std::uint32_t>(end - s.body);
    }
    s.next = std::min(end, s.body + Align4(s.size));
    return true;
}

void ReadAnpk(std::string_view b, AnimationPackage& p) {
    const std::uint64_t end =
        std::min<std::uint64_t>(b.size(), 8 + std::uint64_t{Le32(b.data() + 4)});
    Section info;
    if (!ReadSection(b, 8, end, "INFO", info) || info.size < 4) {
        return Stop(p, 8, {"the package lacks its INFO section", "whyIfpNoInfo", {}});
    }
    const std::uint32_t count = Le32(b.data() + info.body);
    p.name = std::string(FieldText(b.data() + info.body + 4, info.size - 4));
    std::uint64_t at = info.next;
    for (std::uint32_t i = 0; i < count; ++i) {
        Section name;
        Section dgan;
        if (!ReadSection(b, at, end, "NAME", name) ||
            !ReadSection(b, name.next, end, "DGAN", dgan, true)) {
            const std::string n = std::to_string(i + 1);
            return Stop(
                p, at,
                {"animation " + n + " is not where it should be", "whyIfpAnimationLost", {n}});
        }
        Animation& a = p.animations.emplace_back();
        a.name = std::string(FieldText(b.data() + name.body, name.size));
        const std::uint64_t dganEnd = dgan.body + dgan.size;
        Section objects;
        if (!ReadSection(b, dgan.body, dganEnd, "INFO", objects) || objects.size < 4) {
            return Stop(p, dgan.body,
                        {"animation " + a.name + " lacks its INFO section",
                         "whyIfpAnimationNoInfo",
                         {a.name}});
        }
        const std::uint32_t objectCount = Le32(b.data() + objects.body);
        std::uint64_t o = objects.next;
        for (std::uint32_t k = 0; k < objectCount; ++k) {
            Section cpan;
            Section anim;
            if (!ReadSection(b, o, dganEnd, "CPAN", cpan, true) ||
                !ReadSection(b, cpan.body, cpan.body + cpan.size, "ANIM", anim) || anim.size < 32) {
                return Stop(p, o,
                            {"an object of " + a.name + " is not where it should be",
                             "whyIfpObjectLost",
                             {a.name}});
            }
            a.objects.push_back({std::string(FieldText(b.data() + anim.body, 28)),
                                 Le32(b.data() + anim.body + 28)});
            o = cpan.next;
        }
        at = dgan.next;
    }
}

} // namespace

std::uint32_t Animation::frames() const {
    std::uint32_t most = 0;
    for (const AnimationObject& o : objects) {
        most = std::max(most, o.frames);
    }
    return most;
}

AnimationPackage ReadAnimationPackage(std::string_view bytes) {
    AnimationPackage p;
    if (bytes.size() < 8) {
        Stop(p, 0, {"the entry is too short for an animation package", "whyIfpShort", {}});
        return p;
    }
    p.format = std::string(bytes.substr(0, 4));
    if (p.format == "ANP3") {
        ReadAnp3(bytes, p);
    } else if (p.format == "ANPK") {
        ReadAnpk(bytes, p);
    } else {
        p.format.clear();
        Stop(p, 0, {"the entry is neither an ANPK nor an ANP3 package", "whyIfpNotPackage", {}});
    }
    return p;
}

} // namespace korvel
