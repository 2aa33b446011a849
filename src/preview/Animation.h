// What an animation package (.ifp) holds: its animations, each with its
// objects (bones) and their frame counts. GTA III and Vice City write ANPK
// (tagged sections), San Andreas ANP3 (fixed records). Pure over bytes.
#pragma once

#include "platform/Reason.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct AnimationObject {
    std::string name;
    std::uint32_t frames = 0;
};

struct Animation {
    std::string name;
    std::vector<AnimationObject> objects;
    // The most frames any of its objects has: the animation's length in keys.
    std::uint32_t frames() const;
};

struct AnimationPackage {
    std::string format; // "ANPK" or "ANP3"
    std::string name;   // the package's own name
    std::vector<Animation> animations;
    Reason stopped; // empty when every animation was read
    std::uint64_t stoppedAt = 0;
};

AnimationPackage ReadAnimationPackage(std::string_view bytes);

} // namespace korvel
