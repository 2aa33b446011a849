#include "platform/LocalTime.h"

#include <ctime>

namespace korvel {

std::string LocalTimeText(const char* strftimeFormat) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    char buffer[64] = {};
    std::strftime(buffer, sizeof buffer, strftimeFormat, &local);
    return buffer;
}

} // namespace korvel
