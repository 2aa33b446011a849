#include "platform/FileCopy.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <numeric>

#ifdef __linux__
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvel {
namespace {

// Copying many spans must give exactly the bytes the spans name, whatever
// their order, gaps and sizes, through the pipe and through the buffer alike.
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
        {end - 2048, 2048},       // ends exactly at the end
        {1, 3 * 1024 * 1024 + 5}, // odd offset and length, fills a pipe
        {end - 3 * 1024 * 1024, 3 * 1024 * 1024 + 7},
    };
    std::string expected;
    for (const CopySpan& span : spans) {
        for (std::uint64_t b = span.inOffset; b < span.inOffset + span.count; ++b) {
            expected.push_back(b < end ? source[b] : '\0');
        }
    }

    struct Way {
        const char* name;
        CopyWay way;
        bool appendOnly; // a destination that refuses splice
        bool coldSource; // nothing of the source in the page cache
    };
    const Way ways[] = {
        {"fastest", CopyWay::Fastest, false, false},
        {"buffered", CopyWay::Buffered, false, false},
#ifdef __linux__
        {"fastest, no splice into the destination", CopyWay::Fastest, true, false},
        {"fastest, source read from the disk", CopyWay::Fastest, false, true},
#endif
    };
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        File in;
        File out;
        ASSERT_EQ(in.open(folder / "in", File::Mode::Read), "");
        ASSERT_EQ(out.open(folder / "out", File::Mode::CreateTruncate), "");
        // Something already at the start of the output stays.
        ASSERT_EQ(out.writeAt(0, "head"), "");
#ifdef __linux__
        // The kernel refuses to splice into a file open for appending; the
        // copy writes at its end anyway.
        if (way.appendOnly) {
            ASSERT_EQ(::fcntl(out.fd(), F_SETFL, O_APPEND), 0);
        }
        if (way.coldSource) {
            ASSERT_EQ(::fdatasync(in.fd()), 0);
            ASSERT_EQ(::posix_fadvise(in.fd(), 0, 0, POSIX_FADV_DONTNEED), 0);
        }
#endif
        std::vector<std::size_t> reported;
        EXPECT_EQ(CopySpansInOrder(
                      in, out, 4, spans, [&](std::size_t i) { reported.push_back(i); }, way.way),
                  "");
        ASSERT_EQ(out.close(), "");
        const std::string written = test::ReadBytes(folder / "out");
        ASSERT_EQ(written.size(), expected.size() + 4);
        EXPECT_TRUE(written == "head" + expected);
        std::vector<std::size_t> inOrder(spans.size());
        std::iota(inOrder.begin(), inOrder.end(), std::size_t{0});
        EXPECT_EQ(reported, inOrder);
    }
}

} // namespace
} // namespace korvel
