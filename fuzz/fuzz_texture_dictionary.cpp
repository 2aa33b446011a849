// libFuzzer target: the texture dictionary name reader on arbitrary bytes.
#include "GuardedSource.h"
#include "search/TextureDictionary.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Filler: a valid texture native header, so straying reads look real.
    static const char native[] = "\x15\0\0\0\xFF\0\0\0\0\0\0\0\x01\0\0\0\x48\0\0\0";
    const std::string filler(native, sizeof native - 1);
    korvel::fuzz::GuardedSource source = korvel::fuzz::EntryFromInput(data, size, filler);
    const std::uint64_t length = source.length();
    const auto names = korvel::ReadTextureNames(source, source.start(), length);
    // Every texture needs at least its head bytes after the 28-byte header.
    if (!names.empty() && 28 + names.size() * korvel::TextureHeadBytes > length) {
        std::abort();
    }
    return 0;
}
