#include "settings/TextForms.h"

#include "TestFolder.h"
#include "settings/Settings.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

TEST(TextForms, CaptionsArgumentsAndCounts) {
    const std::pair<const char*, const char*> plain[] = {
        {"Re&build", "Rebuild"}, {"Tom && Jerry", "Tom & Jerry"}, {"a && &B&", "a & B"}};
    for (const auto& [caption, shown] : plain)
        EXPECT_EQ(PlainCaption(caption), shown) << caption;
    EXPECT_EQ(FillArguments("%2, %1! 100%% %3 %", {"%2", "b"}), "b, %2! 100% %3 %");
    const std::tuple<const char*, std::uint64_t, const char*> counts[] = {
        {"english", 0, "nMany"}, {"english", 1, "nOne"},  {"Deutsch", 0, "nMany"},
        {"deutsch", 2, "nMany"}, {"FRANCAIS", 0, "nOne"}, {"francais", 2, "nMany"}};
    for (const auto& [language, count, key] : counts)
        EXPECT_EQ(PluralKey("n", language, count), key) << language << count;
}

// The first start writes the desktop's language; later starts never change it.
TEST(TextForms, FirstStartFollowsTheDesktopLocale) {
    const std::pair<const char*, const char*> cases[] = {
        {"de_DE.UTF-8", "deutsch"}, {"DE-at", "deutsch"}, {"fr", "francais"},
        {"fr@euro", "francais"},    {"fy_NL", "english"}, {"C", "english"}};
    for (const auto& [locale, language] : cases) {
        test::TestFolder folder;
        Settings settings(folder / "korvel.ini", KORVEL_LANG_INI);
        settings.setDesktopLocale(locale);
        settings.EnsureSettingsFile();
        EXPECT_EQ(settings.ReadSetting("language"), language) << locale;
        settings.WriteSetting("english", "language");
        settings.EnsureSettingsFile();
        EXPECT_EQ(settings.ReadSetting("language"), "english") << locale;
    }
}

} // namespace
} // namespace korvel
