#include "EntryBytes.h"
#include "TestFolder.h"
#include "archive/Format.h"
#include "search/CollisionFile.h"
#include "search/TextureDictionary.h"

#include <gtest/gtest.h>

#include <map>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace korvel::test;

// A source that records every read and flags any that leaves the window the
// reader was given.
class WatchedSource : public ByteSource {
public:
    WatchedSource(std::string_view bytes, std::uint64_t start, std::uint64_t length)
        : inner_(bytes), start_(start), end_(start + length) {}
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) override {
        if (offset < start_ || offset + count > end_) {
            outside = true;
        }
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

Names ReadTextures(const std::string& bytes, std::uint64_t length, bool* outside = nullptr) {
    // Guard bytes on both sides catch a read outside the entry.
    const std::string padded = std::string(64, 'G') + bytes + std::string(4096, '\x15');
    WatchedSource source(padded, 64, length);
    Names names;
    for (const TextureName& t : ReadTextureNames(source, 64, length)) {
        names.emplace_back(t.name, t.mask);
    }
    if (outside) {
        *outside = source.outside;
    }
    EXPECT_FALSE(source.outside);
    return names;
}

std::vector<std::string> ReadModels(const std::string& bytes, std::uint64_t length) {
    const std::string padded = std::string(32, 'G') + bytes + std::string(256, 'C');
    WatchedSource source(padded, 32, length);
    auto names = ReadCollisionNames(source, 32, length);
    EXPECT_FALSE(source.outside);
    return names;
}

// The demo archive's entries by name (first of each name).
std::map<std::string, std::string> DemoEntries() {
    const fs::path img = KORVEL_DEMO_ARCHIVE;
    const std::string data = test::ReadBytes(img);
    const auto records = DecodeDirectory(test::ReadBytes(fs::path(img).replace_extension(".dir")));
    std::map<std::string, std::string> entries;
    for (const DirRecord& r : records) {
        entries.emplace(r.name, data.substr(SectorToOffset(r.startSector),
                                            std::uint64_t{r.sizeSectors} * SectorSize));
    }
    return entries;
}

TEST(TextureDictionaryReader, ReadsEveryTextureOfTheDemoDictionaries) {
    const auto entries = DemoEntries();
    const std::map<std::string, Names> expected = {
        {"Player.txd", {{"playerTorso", ""}, {"playerFace", "playerFaceA"}}},
        // The middle texture has a 16-byte extension: stepping by chunk sizes
        // still finds the third.
        {"cheetah.txd",
         {{"cheetah92body", "cheetah92bodyA"},
          {"cheetah92interior", ""},
          {"cheetah92wheel", "cheetah92wheelA"}}},
        // Device id 2 in the count's high half.
        {"infernus.txd", {{"infernusBody", "infernusBodyA"}, {"infernusLights", ""}}},
        {"particle.txd", {{"sparkBlue", ""}, {"smokePuff", "smokePuffA"}, {"waterDrop", ""}}},
        {"generic.txd",
         {{"vehiclegrunge256", ""},
          {"vehiclelights128", "vehiclelightson128"},
          {"vehicleshatter128", ""},
          {"platecharset", "platecharsetA"}}},
    };
    for (const auto& [name, names] : expected) {
        const std::string& bytes = entries.at(name);
        EXPECT_EQ(ReadTextures(bytes, bytes.size()), names) << name;
    }
}

TEST(TextureDictionaryReader, ReadsOnlyTheNameFieldsAndHeaders) {
    const std::string dict = Dictionary(3, 0, {Native("a", ""), Native("b", ""), Native("c", "")});
    WatchedSource source(dict, 0, dict.size());
    EXPECT_EQ(ReadTextureNames(source, 0, dict.size()).size(), 3u);
    EXPECT_EQ(source.reads, 4);
    EXPECT_EQ(source.requested, 28 + 3 * TextureHeadBytes);
}

TEST(TextureDictionaryReader, StopsAtDamageWithoutLeavingTheEntry) {
    const std::string two = Dictionary(2, 0, {Native("one", "m1"), Native("two", "m2")});
    const std::size_t secondNames = 28 + Native("one", "m1").size() + 32;
    std::string badStruct = two;
    badStruct[28 + Native("one", "m1").size() + 12] = 0x02;
    std::string smallStruct = Dictionary(1, 0, {Native("x", "")});
    smallStruct.replace(44, 4, U32(71));
    std::string hugeNative = two;
    hugeNative.replace(32, 4, U32(0xFFFFFFFF));
    std::string longName = Dictionary(1, 0, {Native(std::string(32, 'N'), std::string(32, 'M'))});

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
        {"count says more than there is",
         Dictionary(0xFFFF, 0, {Native("one", "m1")}) + std::string(500, '\0'),
         Dictionary(0xFFFF, 0, {Native("one", "m1")}).size() + 500,
         {{"one", "m1"}}},
        {"count 0 still reads the first",
         Dictionary(0, 0, {Native("one", "m1")}),
         Dictionary(0, 0, {Native("one", "m1")}).size(),
         {{"one", "m1"}}},
        {"device id 2 is not part of the count",
         Dictionary(1, 2, {Native("one", "m1"), Native("two", "m2")}),
         two.size(),
         {{"one", "m1"}}},
        {"empty dictionary", Dictionary(0, 0, {}), Dictionary(0, 0, {}).size(), {}},
        {"entry cut inside the second names", two, secondNames + 10, {{"one", "m1"}}},
        {"entry shorter than the header", two, 27, {}},
        {"entry ends right after the count", two, 28, {}},
        {"wrong struct id in the second texture", badStruct, badStruct.size(), {{"one", "m1"}}},
        {"struct too small for the names", smallStruct, smallStruct.size(), {}},
        {"native size past the end", hugeNative, hugeNative.size(), {{"one", "m1"}}},
        {"names fill their fields",
         longName,
         longName.size(),
         {{std::string(32, 'N'), std::string(32, 'M')}}},
    };
    for (const Case& c : cases) {
        bool outside = false;
        EXPECT_EQ(ReadTextures(c.bytes, c.length, &outside), c.names) << c.what;
        EXPECT_FALSE(outside) << c.what;
    }
}

TEST(TextureDictionaryReader, ReadsARealThirdPartyDictionary) {
    const fs::path file = KORVEL_SOURCE_DIR "/../shared/testdata/real/rw-parser_dxtDecoding.txd";
    if (!fs::exists(file)) {
        GTEST_SKIP() << "no " << file;
    }
    // As an archive entry it is followed by zero padding to its sectors.
    std::string bytes = test::ReadBytes(file);
    bytes.resize(SectorsForFile(bytes.size()) * SectorSize, '\0');
    EXPECT_EQ(ReadTextures(bytes, bytes.size()), (Names{{"DXT1", ""}, {"DXT3", ""}, {"DXT5", ""}}));
}

TEST(CollisionFileReader, ReadsEveryModelOfTheDemoFiles) {
    const auto entries = DemoEntries();
    const std::map<std::string, std::vector<std::string>> expected = {
        {"vehicles.col", {"cheetah", "infernus", "banshee"}},
        {"generic.col", {"lamppost1", "trafficlight1", "bench_park"}},
        {"Bridges.COL", {"bridge_sec01"}},
        // COL3 then COL2: other bodies, the name field in the same place.
        {"sa_props.col", {"vendmach_sa", "phonebooth_sa"}},
    };
    for (const auto& [name, models] : expected) {
        const std::string& bytes = entries.at(name); // sector-padded with zeros
        EXPECT_EQ(ReadModels(bytes, bytes.size()), models) << name;
    }
}

TEST(CollisionFileReader, StopsAtDamageWithoutLeavingTheFile) {
    const std::string ab = ColModel("COLL", "alpha", 60) + ColModel("COL2", "beta", 100);
    std::string tooBig = ab;
    tooBig.replace(ab.size() - 124 - 8 + 4, 4, U32(125));
    using Names = std::vector<std::string>;
    struct Case {
        const char* what;
        std::string bytes;
        Names names;
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

} // namespace
} // namespace korvel
