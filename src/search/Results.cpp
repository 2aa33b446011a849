#include "search/Results.h"

namespace korvel {

std::optional<std::size_t> SelectFoundRows(EntryTable& table,
                                           const std::vector<std::size_t>& rows) {
    table.clearSelection();
    std::optional<std::size_t> last;
    for (std::size_t row : rows) {
        if (row == 0 || row > table.size()) {
            break;
        }
        table.setSelected(row - 1, true);
        last = row - 1;
    }
    return last;
}

} // namespace korvel
