#include "EditorHarness.h"
#include "archive/NameFilter.h"
#include "platform/Folders.h"
#include "window/EntryExport.h"

namespace korvel {
namespace {

TEST(NameFilter, MatchesAnywhereIgnoringCaseWithWildcardsAndKind) {
    struct Case {
        const char* typed;
        std::optional<EntryKind> kind;
        const char* name;
        bool shown;
    };
    const Case cases[] = {
        {"CAR", std::nullopt, "mycar.dff", true},
        {"car", std::nullopt, "bus.dff", false},
        {"*c?r*", std::nullopt, "MYCOR.TXD", true},
        {"c?r", std::nullopt, "cor.txd", false}, // a wildcard asks for the whole name
        {"*.txd", std::nullopt, "a.txd.bak", false},
        {"a*b*c*d", std::nullopt, "aXbYbZcd", true},
        {"\xC3\xA9t\xC3\xA9", std::nullopt, "\xC9T\xC9.dff", true}, // é in Windows-1252
        {"\xE4\xB8\xAD", std::nullopt, "anything", false},          // no Windows-1252 form
        {"", EntryKind::Texture, "atxd", false}, // the extension rule, not the icon rule
        {"car", EntryKind::Model, "car.txd", false},
        {"", EntryKind::Other, MarkerName.data(), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(NameFilter(c.typed, c.kind).matches(c.name), c.shown)
            << c.typed << " / " << c.name;
    }
}

class ListFilter : public test::EditorHarness {
protected:
    void SetUp() override {
        openArchive("a.img", {{0, 1, "car.dff"}, {1, 1, "car.txd"}, {2, 1, "bus.dff"}}, 3 * 2048);
    }
    std::string selected() const {
        std::string rows;
        for (const Entry& e : editor.table().rows())
            rows += e.selected ? '1' : '0';
        return rows;
    }
    EntryTable& table() { return editor.table(); }
};

TEST_F(ListFilter, HiddenRowsAreNeverSelectedAndTheirSelectionComesBack) {
    table().setSelection({true, true, false});
    table().setFilter(NameFilter("", EntryKind::Model));
    EXPECT_EQ(selected(), "100");
    EXPECT_EQ(table().shownCount(), 2u);
    // Whoever selects, a hidden row stays unselected.
    table().setSelected(1, true);
    table().selectAll();
    EXPECT_EQ(selected(), "101");
    // The person's selection before the filter comes back when nothing
    // changed it in between...
    table().setSelection({true, false, false});
    table().setFilter(NameFilter("car", std::nullopt));
    table().setFilter(NameFilter("car", EntryKind::Model));
    table().setFilter({});
    EXPECT_EQ(selected(), "100");
    // ...and not when it did.
    table().setFilter(NameFilter("bus", std::nullopt));
    table().clearSelection();
    table().setFilter({});
    EXPECT_EQ(selected(), "000");
    // A selected row renamed out of the filter's view gives up its selection.
    table().setFilter(NameFilter("car", std::nullopt));
    table().selectAll();
    table().setName(0, "van.dff");
    EXPECT_EQ(selected(), "010");
}

TEST_F(ListFilter, ExportExtractsIntoAFreshFolderAndSkipsUnsafeNames) {
    EntryExport exports(editor);
    table().setSelection({true, false, true});
    const std::vector<std::filesystem::path> first = exports.ExportSelected();
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].filename(), "car.dff");
    EXPECT_EQ(first[0].parent_path().parent_path(), TempsFolder());
    // A name that would leave the folder is skipped and named; the folder of
    // the hand-over before is gone.
    table().setName(1, "../x.txd");
    table().setSelection({false, true, true});
    const std::vector<std::filesystem::path> second = exports.ExportSelected();
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0].filename(), "bus.dff");
    EXPECT_FALSE(std::filesystem::exists(first[0]));
    ASSERT_EQ(desktop.conversation.size(), 1u);
    EXPECT_NE(desktop.conversation[0].find("../x.txd"), std::string::npos);
}

TEST(Settings, ListColumnWidthsAcceptOnlyPlausibleWidths) {
    const std::pair<const char*, std::optional<std::vector<int>>> cases[] = {
        {"220,100,90", std::vector<int>{220, 100, 90}},
        {"", std::nullopt},
        {"220,,90", std::nullopt},
        {"220,x", std::nullopt},
        {"220,3", std::nullopt},
        {"220,99999", std::nullopt},
    };
    Settings settings = Settings::InMemory({});
    for (const auto& [stored, widths] : cases) {
        settings.WriteSetting(stored, "listColumns");
        EXPECT_EQ(settings.ListColumnWidths(), widths) << stored;
    }
}

} // namespace
} // namespace korvel
