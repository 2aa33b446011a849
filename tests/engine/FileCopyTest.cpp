#include "platform/FileCopy.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

// Copying many spans through the shared buffer must give exactly the bytes
// the spans name, whatever their order, gaps and sizes.
TEST(CopySpansInOrder, GivesTheSameBytesAsCopyingEachSpan) {
    test::TestFolder folder;
    std::string source(3 * SpanWindow / 2, '\0');
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<char>(i * 7 + i / 4096);
    }
    test::WriteBytes(folder / "in", source);
    const std::uint64_t end = source.size();
    const std::vector<CopySpan> spans = {
        {0, 2048},                       // the first span
        {2048, 4096},                    // touching the previous span
        {8192 + 65536, 2048},            // after a gap
        {4096, 2048},                    // backwards
        {SpanWindow - 2048, 4096},       // fills the buffer past its size
        {100, 0},                        // empty
        {end - 1024, 4096},              // runs past the end: zeros
        {end + SpanWindow, 2048},        // wholly past the end
        {SectorSize, SpanWindow + 2048}, // larger than the window
        {10 * 2048, 2048},
    };
    std::string expected;
    for (const CopySpan& span : spans) {
        for (std::uint64_t b = span.inOffset; b < span.inOffset + span.count; ++b) {
            expected.push_back(b < end ? source[b] : '\0');
        }
    }

    File in;
    File out;
    ASSERT_EQ(in.open(folder / "in", File::Mode::Read), "");
    ASSERT_EQ(out.open(folder / "out", File::Mode::CreateTruncate), "");
    std::vector<std::size_t> reported;
    EXPECT_EQ(CopySpansInOrder(in, out, 0, spans, [&](std::size_t i) { reported.push_back(i); }),
              "");
    ASSERT_EQ(out.close(), "");
    const std::string written = test::ReadBytes(folder / "out");
    ASSERT_EQ(written.size(), expected.size());
    EXPECT_TRUE(written == expected);
    EXPECT_EQ(reported.size(), spans.size());
    for (std::size_t i = 0; i < reported.size(); ++i) {
        EXPECT_EQ(reported[i], i);
    }
}

} // namespace
} // namespace korvel
