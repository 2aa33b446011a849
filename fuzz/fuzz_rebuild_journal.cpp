// libFuzzer target: the rebuild journal reader on arbitrary bytes. What it
// accepts must be exactly what the writer writes for the values it read, so
// no second spelling of a journal can ever be acted on.
#include "archive/RebuildJournal.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto journal = korvel::ParseRebuildJournal(text);
    if (!journal) {
        return 0;
    }
    if (text.size() > korvel::MaxJournalBytes || korvel::RebuildJournalText(*journal) != text ||
        korvel::ParseRebuildJournal(korvel::RebuildJournalText(*journal)) != journal) {
        std::abort();
    }
    return 0;
}
