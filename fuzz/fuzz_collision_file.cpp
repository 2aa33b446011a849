// libFuzzer target: the collision file name reader on arbitrary bytes.
#include "GuardedSource.h"
#include "search/CollisionFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Filler: a model of the smallest size, so straying reads look real.
    static const char model[] = "COLL\x18\0\0\0fillerfillerfillerfiller";
    const std::string filler(model, sizeof model - 1);
    korvel::fuzz::GuardedSource source = korvel::fuzz::EntryFromInput(data, size, filler);
    const std::uint64_t length = source.length();
    const auto names = korvel::ReadCollisionNames(source, source.start(), length);
    // Every model listed takes at least 32 bytes; names are at most 20.
    if (names.size() * 32 > length) {
        std::abort();
    }
    for (const std::string& name : names) {
        if (name.empty() || name.size() > 20) {
            std::abort();
        }
    }
    return 0;
}
