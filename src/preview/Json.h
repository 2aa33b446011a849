// JSON text for the exports and the command line's --json output.
#pragma once

#include <string>
#include <string_view>

namespace korvel {

// `utf8` as a JSON string, quotes included.
std::string JsonQuoted(std::string_view utf8);

// A float as JSON takes it: finite numbers in the shortest form that reads
// back the same; NaN and infinities (which JSON cannot hold) as 0.
std::string JsonNumber(float value);

} // namespace korvel
