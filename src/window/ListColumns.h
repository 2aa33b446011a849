// The archive list's columns, in order: the lang.ini key of each header and
// its width in twips. The window adds them at start-up and again when the
// language changes.
#pragma once

#include <array>
#include <string_view>

namespace korvel {

struct ColumnSpec {
    std::string_view textKey;
    int widthTwips;
};

inline constexpr std::array<ColumnSpec, 3> ArchiveColumns = {
    ColumnSpec{"head1", 2200}, ColumnSpec{"head2", 1000}, ColumnSpec{"head3", 1000}};

} // namespace korvel
