#include "settings/Settings.h"
#include "../golden/Golden.h"
#include "TestFolder.h"
#include "platform/TextFile.h"
#include "settings/IniFile.h"

#include <gtest/gtest.h>

#include <regex>

namespace korvel {
namespace {

namespace fs = std::filesystem;

TEST(IniFile, ReadsLikeTheProfileFunctions) {
    const std::string content = "stray=before any section\r\n"
                                "  [Korvel]  \r\n"
                                "  l1r = 233  \r\n"
                                "// Line colors RGB format\r\n"
                                "Path=C:\\games\\gta3.img\r\n"
                                "quoted=\"  spaced  \"\r\n"
                                "equals=a=b\r\n"
                                "dup=first\r\n"
                                "dup=second\r\n"
                                "[other]\n"
                                "l1r=1\n";
    struct Case {
        const char* section;
        const char* key;
        std::optional<std::string> value;
    };
    const Case cases[] = {
        {"korvel", "l1r", "233"},
        {"KORVEL", "L1R", "233"},
        {"korvel", "path", "C:\\games\\gta3.img"},
        {"korvel", "quoted", "  spaced  "},
        {"korvel", "equals", "a=b"},
        {"korvel", "dup", "first"},
        {"korvel", "stray", std::nullopt},
        {"korvel", "// Line colors RGB format", std::nullopt},
        {"other", "l1r", "1"},
        {"missing", "l1r", std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(LookupInContent(content, c.section, c.key), c.value) << c.section << "/" << c.key;
    const std::string longValue = "[k]\nkey=" + std::string(300, 'v') + "\n";
    EXPECT_EQ(LookupInContent(longValue, "k", "key"), std::string(254, 'v'));
}

TEST(IniFile, WritesReplaceInPlaceAndKeepEverythingElse) {
    const std::string content = "header line\r\n"
                                "[Korvel]\r\n"
                                "recent1=none\r\n"
                                "sort=offset\r\n"
                                "\r\n"
                                "// Line colors RGB format\r\n"
                                "l1r = 233\r\n"
                                "[next]\r\n"
                                "x=1\r\n";
    EXPECT_EQ(WriteInContent(content, "korvel", "SORT", "name"),
              "header line\r\n[Korvel]\r\nrecent1=none\r\nSORT=name\r\n\r\n"
              "// Line colors RGB format\r\nl1r = 233\r\n[next]\r\nx=1\r\n");
    // A new key goes to the end of its section, before the next one.
    EXPECT_EQ(WriteInContent(content, "korvel", "lastAdd", "none"),
              "header line\r\n[Korvel]\r\nrecent1=none\r\nsort=offset\r\n\r\n"
              "// Line colors RGB format\r\nl1r = 233\r\nlastAdd=none\r\n[next]\r\nx=1\r\n");
    // A missing section is created at the end; an empty file gets CRLF lines.
    EXPECT_EQ(WriteInContent("[a]\nk=v\n", "b", "k", "w"), "[a]\nk=v\n[b]\nk=w\n");
    EXPECT_EQ(WriteInContent("", "korvel", "k", "v"), "[korvel]\r\nk=v\r\n");
    // A value holding line breaks stays one line: it adds no key or section.
    EXPECT_EQ(WriteInContent("[korvel]\r\n", "korvel", "recent1", "a\r\n[x]\nk=v"),
              "[korvel]\r\nrecent1=a  [x] k=v\r\n");
}

TEST(IniFile, EveryReadSeesTheFileAsItIsNow) {
    test::TestFolder folder;
    const fs::path file = folder / "x.ini";
    EXPECT_EQ(ReadProfileString(file, "s", "k"), SettingsError);
    test::WriteBytes(file, "[s]\nk=A\n");
    EXPECT_EQ(ReadProfileString(file, "s", "k"), "A");
    // Another program rewrites the file in place with the same size: the
    // cached copy must not hide the change.
    const auto stamp = fs::last_write_time(file);
    test::WriteBytes(file, "[s]\nk=B\n");
    fs::last_write_time(file, stamp + std::chrono::seconds(2));
    EXPECT_EQ(ReadProfileString(file, "s", "k"), "B");
    ASSERT_TRUE(WriteProfileString(file, "S", "k", "C"));
    EXPECT_EQ(ReadProfileString(file, "s", "K"), "C");
    fs::remove(file);
    EXPECT_EQ(ReadProfileString(file, "s", "k"), SettingsError);
}

TEST(Settings, BooleanWords) {
    const std::pair<const char*, std::optional<bool>> cases[] = {
        {"True", true}, {"FALSE", false}, {"0", false},           {"-1", true},
        {"", {}},       {"yes", {}},      {"Settings error", {}}, {"1x", {}}};
    for (const auto& [word, value] : cases)
        EXPECT_EQ(BooleanWord(word), value) << word;
}

// Regenerate the golden korvel.ini after a deliberate change with:
//   KORVEL_UPDATE_GOLDEN=1 build/bin/korvel_engine_tests --gtest_filter='Settings.Default*'
TEST(Settings, DefaultFileMatchesTheGoldenFileAndIsWrittenOnce) {
    test::TestFolder folder;
    ASSERT_TRUE(
        WriteLines(folder / "fixed.ini", Settings::DefaultFileLines("01/02/2003", "04:05:06"))
            .ok());
    const std::string golden = test::ReadBytes(folder / "fixed.ini");
    test::ExpectGolden("korvel.ini", golden);

    // The file written on first run is the same but for its date line.
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    const std::regex created(R"(Created(\.+): [^\r]+ @ [^\r]+\r\n)");
    EXPECT_EQ(std::regex_replace(test::ReadBytes(folder / "korvel.ini"), created,
                                 "Created$1: 01/02/2003 @ 04:05:06\r\n"),
              golden);
    EXPECT_EQ(settings.ReadSetting("l1r"), "233"); // colours read without the spaces

    // An existing file is never written whole again.
    settings.WriteSetting("name", "sort");
    settings.EnsureSettingsFile();
    EXPECT_EQ(settings.ReadSetting("sort"), "name");
}

TEST(Settings, SectionHeaderCaseMissingLanguageAndInMemory) {
    test::TestFolder folder;
    test::WriteBytes(folder / "korvel.ini", "[KORVEL]\r\nlanguage=ENGLISH\r\nsort=name\r\n");
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    EXPECT_EQ(settings.ReadSetting("sort"), "name");
    EXPECT_NE(settings.LookupText("ready"), SettingsError); // section names ignore case
    settings.WriteSetting("klingon", "language");
    EXPECT_EQ(settings.LookupText("ready"), SettingsError);
    settings.WriteSetting("english", "language");
    fs::remove(folder / "lang.ini");
    EXPECT_EQ(settings.LookupText("ready"), SettingsError);

    // Settings held in memory never touch the disk.
    fs::remove(folder / "korvel.ini");
    Settings memory = Settings::InMemory(folder / "lang.ini");
    memory.EnsureSettingsFile();
    memory.WriteSetting("a.img", "recent1");
    EXPECT_EQ(memory.ReadSetting("recent1"), "a.img");
    EXPECT_EQ(memory.ReadSetting("RECENT2"), "none");
    EXPECT_FALSE(fs::exists(folder / "korvel.ini"));
}

} // namespace
} // namespace korvel
