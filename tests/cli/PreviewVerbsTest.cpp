#include "CliRunner.h"
#include "EntryBytes.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::RunCli;

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

const fs::path Real = fs::path(KORVEL_SOURCE_DIR) / "../shared/testdata/real";

// The lines and exit codes of info and the exports; what the readers find
// is tested in the engine.
TEST(CliPreview, PrintsInfoLinesAndExports) {
    if (!fs::exists(Real / "nitro.dff")) {
        GTEST_SKIP() << "no third-party files beside the project";
    }
    test::TestFolder folder;
    const fs::path img = folder / "p.img";
    std::string cut = ReadAll(Real / "two-textures.txd");
    cut.resize(4300); // inside the second texture's header
    test::WriteArchiveOf(img, {{"nitro.dff", ReadAll(Real / "nitro.dff")},
                               {"nitro.txd", ReadAll(Real / "nitro.txd")},
                               {"mixed.col", ReadAll(Real / "mixed-multiple-2.col")},
                               {"cut.txd", cut},
                               {"notes.txt", "hello"}});
    const std::string p = img.string();
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string out;
        std::string err; // contained in stderr
    };
    const Case cases[] = {
        {{"info", p, "NITRO.TXD"}, 0, "texture\tnitro\t\t128\t128\tDXT1\t8\n", ""},
        {{"info", p, "nitro.dff"},
         0,
         "frame\tnitro\t-1\ngeometry\t1440\t480\t1\ntexture\tnitro\n",
         ""},
        {{"info", p, "mixed.col"},
         0,
         "model\tLARGE\tCOLL\t0\t0\t24\t12\nmodel\tTHREE\tCOL3\t0\t0\t24\t12\n",
         ""},
        {{"info", p, "nitro.txd", "--json"},
         0,
         "{\"entry\":\"nitro.txd\",\"size\":12288,\"textures\":[{\"name\":\"nitro\",\"mask\":\"\","
         "\"width\":128,\"height\":128,\"format\":\"DXT1\",\"mips\":8}],\"problems\":[]}\n",
         ""},
        {{"info", p, "cut.txd"},
         1,
         // The second texture's name is there; the rest of it is padding.
         "texture\twood\t\t64\t128\tDXT1\t1\ntexture\tleaves\t\t0\t0\tunknown\t0\n",
         "korvel-cli: cut.txd: reading stopped at byte 4252: "},
        {{"info", p, "notes.txt"}, 0, "other\t2048\t68656C6C6F" + std::string(502, '0') + "\n", ""},
        {{"info", p, "none.dff"}, 1, "", "korvel-cli: no entry is named \"none.dff\""},
        {{"info", p}, 2, "", ""},
        {{"export-model", p, "nitro.dff", (folder / "m.fbx").string()}, 1, "", "as .glb or .obj"},
        {{"export-model", p, "nitro.txd", (folder / "m.glb").string()}, 1, "", "is not a model"},
        {{"export-textures", p, "mixed.col", (folder / "t").string()},
         1,
         "",
         "not a texture dictionary"},
    };
    for (const Case& c : cases) {
        const auto r = RunCli(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode) << c.args[1 % c.args.size()] << " " << r.err;
        EXPECT_EQ(r.out, c.out) << c.args.back();
        EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }

    ASSERT_EQ(RunCli({"export-textures", p, "nitro.txd", (folder / "t").string()}).exitCode, 0);
    EXPECT_EQ(ReadAll(folder / "t" / "nitro.png").substr(1, 3), "PNG");
    ASSERT_EQ(RunCli({"export-model", p, "nitro.dff", (folder / "m.glb").string()}).exitCode, 0);
    const std::string glb = ReadAll(folder / "m.glb");
    EXPECT_EQ(glb.substr(0, 4), "glTF");
    EXPECT_NE(glb.find("\"mimeType\":\"image/png\""), std::string::npos); // texture embedded
    ASSERT_EQ(RunCli({"export-model", p, "nitro.dff", (folder / "o" / "m.obj").string()}).exitCode,
              1);
    fs::create_directory(folder / "o");
    ASSERT_EQ(RunCli({"export-model", p, "nitro.dff", (folder / "o" / "m.obj").string()}).exitCode,
              0);
    EXPECT_NE(ReadAll(folder / "o" / "m.mtl").find("map_Kd nitro.png"), std::string::npos);
    EXPECT_TRUE(fs::exists(folder / "o" / "nitro.png"));
    // Again: the MTL beside the OBJ is kept unless --overwrite; exit 1 if not chosen.
    const struct {
        const char* option;
        int exitCode;
        bool kept;
    } again[] = {{"", 1, true}, {"--no-overwrite", 0, true}, {"--overwrite", 0, false}};
    for (const auto& a : again) {
        test::WriteBytes(folder / "o" / "m.mtl", "mine");
        std::vector<std::string> args = {"export-model", p, "nitro.dff",
                                         (folder / "o" / "m.obj").string()};
        if (*a.option)
            args.push_back(a.option);
        const auto r = RunCli(args);
        EXPECT_EQ(r.exitCode, a.exitCode) << a.option << r.err;
        const std::string skipped = "skipped " + (folder / "o" / "m.mtl").string() + ": the file";
        EXPECT_EQ(r.err.find(skipped) != std::string::npos, a.kept) << r.err;
        EXPECT_EQ(ReadAll(folder / "o" / "m.mtl") == "mine", a.kept) << a.option;
    }

    // The texture is looked for in every dictionary, not only the one of the
    // model's name; one found nowhere is named, and the model still written.
    struct Lookup {
        std::vector<std::pair<std::string, std::string>> entries;
        bool embedded;
    };
    const std::string model = ReadAll(Real / "nitro.dff");
    const Lookup lookups[] = {
        {{{"pickup.dff", model},
          {"aaa.txd", ReadAll(Real / "boxes.txd")},
          {"zzz.txd", ReadAll(Real / "nitro.txd")}},
         true},
        {{{"pickup.dff", model}, {"pickup.txd", ReadAll(Real / "boxes.txd")}}, false},
    };
    for (const Lookup& l : lookups) {
        test::WriteArchiveOf(folder / "l.img", l.entries);
        const auto r = RunCli({"export-model", (folder / "l.img").string(), "pickup.dff",
                               (folder / "l.glb").string()});
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(ReadAll(folder / "l.glb").find("image/png") != std::string::npos, l.embedded);
        EXPECT_EQ(r.err, l.embedded ? ""
                                    : "korvel-cli: texture nitro is in no texture dictionary of "
                                      "the archive\n");
    }
}

} // namespace
} // namespace korvel
