#include "EntryBytes.h"
#include "TestFolder.h"
#include "archive/Format.h"
#include "search/CollisionFile.h"
#include "search/TextureDictionary.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace korvel::test;

// A source that flags any read leaving the window the reader was given, and
// counts what it was asked for.
class WatchedSource : public ByteSource {
public:
    WatchedSource(std::string_view bytes, std::uint64_t start, std::uint64_t length)
        : inner_(bytes), start_(start), end_(start + length) {}
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) override {
        outside = outside || offset < start_ || offset + count > end_;
        ++reads;
        requested += count;
        return inner_.readAt(offset, buffer, count);
    }
    bool outside = false;
    int reads = 0;
    std::uint64_t requested = 0;

private:
    MemorySource inner_;
    std::uint64_t start_;
    std::uint64_t end_;
};

using Names = std::vector<std::pair<std::string, std::string>>;

// Guard bytes that look like chunk ids on both sides of the entry: a read
// outside it is flagged, and a header read there would look valid.
Names ReadTextures(const std::string& bytes, std::uint64_t length) {
    const std::string padded = std::string(64, 'G') + bytes + std::string(4096, '\x15');
    WatchedSource source(padded, 64, length);
    Names names;
    for (const TextureName& t : ReadTextureNames(source, 64, length)) {
        names.emplace_back(t.name, t.mask);
    }
    EXPECT_FALSE(source.outside) << "read outside the entry";
    return names;
}

std::vector<std::string> ReadModels(const std::string& bytes, std::uint64_t length) {
    const std::string padded = std::string(32, 'G') + bytes + std::string(256, 'C');
    WatchedSource source(padded, 32, length);
    auto names = ReadCollisionNames(source, 32, length);
    EXPECT_FALSE(source.outside) << "read outside the entry";
    return names;
}

TEST(TextureDictionaryReader, ReadsOnlyTheNameFieldsAndHeaders) {
    const std::string dict = Dictionary(3, 0, {Native("a", ""), Native("b", ""), Native("c", "")});
    WatchedSource source(dict, 0, dict.size());
    EXPECT_EQ(ReadTextureNames(source, 0, dict.size()).size(), 3u);
    EXPECT_EQ(source.reads, 4);
    EXPECT_EQ(source.requested, 28 + 3 * TextureHeadBytes);
}

TEST(TextureDictionaryReader, StopsAtDamageWithoutLeavingTheEntry) {
    const std::string one = Native("one", "m1");
    const std::string two = Dictionary(2, 0, {one, Native("two", "m2")});
    const std::uint64_t firstEnd = 28 + one.size(); // where the second native starts
    std::string badStruct = two;
    badStruct[firstEnd + 12] = 0x02;
    std::string smallStruct = Dictionary(1, 0, {Native("x", "")});
    smallStruct.replace(44, 4, U32(71));
    std::string hugeNative = two;
    hugeNative.replace(32, 4, U32(0xFFFFFFFF));
    const std::string single = Dictionary(1, 0, {Native("one", "m1")});
    const std::string many = Dictionary(0xFFFF, 0, {one}) + std::string(500, '\0');

    struct Case {
        const char* what;
        std::string bytes;
        std::uint64_t length;
        Names names;
    };
    const Names both = {{"one", "m1"}, {"two", "m2"}};
    const Case cases[] = {
        {"whole", two, two.size(), both},
        {"sector padding after the last texture", two + std::string(2000, '\0'), two.size() + 2000,
         both},
        {"an extension inside a native is stepped over",
         Dictionary(2, 0, {Native("one", "m1", 20, std::string(16, 'E')), Native("two", "m2")}),
         two.size() + 16, both},
        {"count says more than there is", many, many.size(), {{"one", "m1"}}},
        {"count 0 still reads the first", Dictionary(0, 0, {one}), single.size(), {{"one", "m1"}}},
        {"device id 2 is not part of the count",
         Dictionary(1, 2, {one, Native("two", "m2")}),
         two.size(),
         {{"one", "m1"}}},
        {"empty dictionary", Dictionary(0, 0, {}), Dictionary(0, 0, {}).size(), {}},
        {"entry cut inside the second names", two, firstEnd + 42, {{"one", "m1"}}},
        {"first native runs exactly to the entry's end", two, firstEnd, {{"one", "m1"}}},
        {"first native runs one byte past the entry's end", two, firstEnd - 1, {{"one", "m1"}}},
        {"second header short by its last byte",
         two,
         firstEnd + TextureHeadBytes - 1,
         {{"one", "m1"}}},
        {"only header short by its last 8 bytes", single, 28 + TextureHeadBytes - 8, {}},
        {"entry shorter than the header", two, 27, {}},
        {"entry ends right after the count", two, 28, {}},
        {"wrong struct id in the second texture", badStruct, badStruct.size(), {{"one", "m1"}}},
        {"struct too small for the names", smallStruct, smallStruct.size(), {}},
        {"native size past the end", hugeNative, hugeNative.size(), {{"one", "m1"}}},
        {"names fill their fields",
         Dictionary(1, 0, {Native(std::string(32, 'N'), std::string(32, 'M'))}),
         single.size(),
         {{std::string(32, 'N'), std::string(32, 'M')}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ReadTextures(c.bytes, c.length), c.names) << c.what;
    }
}

TEST(CollisionFileReader, StopsAtDamageWithoutLeavingTheFile) {
    const std::string ab = ColModel("COLL", "alpha", 60) + ColModel("COL2", "beta", 100);
    std::string tooBig = ab;
    tooBig.replace(ab.size() - 124 - 8 + 4, 4, U32(125));
    using Models = std::vector<std::string>;
    struct Case {
        const char* what;
        std::string bytes;
        Models names;
    };
    const Case cases[] = {
        {"two models", ab, {"alpha", "beta"}},
        {"zero padding after them", ab + std::string(1000, '\0'), {"alpha", "beta"}},
        {"an empty name is passed over", ColModel("COLL", "", 8) + ab, {"alpha", "beta"}},
        {"size past the end", tooBig, {"alpha"}},
        {"size smaller than the name field", "COLL" + U32(23) + Field("x", 24) + ab, {}},
        {"a few bytes of rubbish at the end", ab + "COL", {"alpha", "beta"}},
        {"a header without its name", ab + "COLL" + U32(24), {"alpha", "beta"}},
        {"twenty characters, the id behind them",
         "COL3" + U32(24) + std::string(20, 'n') + "\x16\x05\x00\x00"s,
         {std::string(20, 'n')}},
        {"empty file", "", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ReadModels(c.bytes, c.bytes.size()), c.names) << c.what;
    }
}

// Files written by other tools, each as an archive entry: zero padding to
// whole sectors behind it.
TEST(NameReaders, ReadRealThirdPartyFiles) {
    const fs::path real = KORVEL_SOURCE_DIR "/../shared/testdata/real";
    if (!fs::exists(real)) {
        GTEST_SKIP() << "no " << real;
    }
    const auto entry = [&](const char* name) {
        std::string bytes = ReadBytes(real / name);
        bytes.resize(SectorsForFile(bytes.size()) * SectorSize, '\0');
        return bytes;
    };
    const std::pair<const char*, Names> dictionaries[] = {
        {"rw-parser_dxtDecoding.txd", {{"DXT1", ""}, {"DXT3", ""}, {"DXT5", ""}}},
        {"two-textures.txd", {{"wood", ""}, {"leaves", ""}}},
        {"nitro.txd", {{"nitro", ""}}},
        {"boxes.txd", {{"brickred2", ""}}},
    };
    for (const auto& [name, names] : dictionaries) {
        const std::string bytes = entry(name);
        EXPECT_EQ(ReadTextures(bytes, bytes.size()), names) << name;
    }
    const std::pair<const char*, std::vector<std::string>> collisions[] = {
        {"cube-1.col", {"LARGE" + std::string(15, ' ')}}, // padded with spaces, no zero
        {"mixed-multiple-2.col", {"LARGE", "THREE"}},
        {"col3-chunk.col", {"col"}},
        {"riot_shield.col", {"riot_shield"}},
    };
    for (const auto& [name, models] : collisions) {
        const std::string bytes = entry(name);
        EXPECT_EQ(ReadModels(bytes, bytes.size()), models) << name;
    }
}

} // namespace
} // namespace korvel
