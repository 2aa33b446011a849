// libFuzzer target: the animation package reader on arbitrary bytes. Each
// object read takes at least 36 bytes, so there can be no more of them than
// that many bytes allow.
#include "preview/Animation.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::size_t objects = 0;
    for (const korvel::Animation& a : korvel::ReadAnimationPackage(bytes).animations) {
        objects += a.objects.size();
    }
    if (objects * 36 > size) {
        std::abort();
    }
    return 0;
}
