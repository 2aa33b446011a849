#include "archive/NameFilter.h"

#include "platform/Cp1252.h"

namespace korvel {
namespace {

// Whether `pattern` (lower-cased) matches all of `name` as a wildcard pattern.
// Greedy with one backtrack point: the last `*` seen takes one more character
// whenever the rest fails, which is linear enough for names of 24 bytes and
// never recursive however many stars were typed.
bool WildcardMatches(std::string_view pattern, std::string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t star = std::string_view::npos;
    std::size_t resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || pattern[p] == LowerCp1252(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') {
        ++p;
    }
    return p == pattern.size();
}

} // namespace

NameFilter::NameFilter(std::string_view typed, std::optional<EntryKind> kind) : kind_(kind) {
    const std::optional<std::string> raw = Utf8ToCp1252(typed);
    impossible_ = !raw;
    if (raw && !raw->empty()) {
        // Plain text is looked for anywhere in the name, which is the whole
        // name with a star on each side. A typed wildcard asks for the shape
        // of the whole name, as file managers take it: "*.txd" ends in .txd.
        const bool wildcards = raw->find_first_of("*?") != std::string::npos;
        pattern_ = wildcards ? ToLowerCp1252(*raw) : "*" + ToLowerCp1252(*raw) + "*";
    }
}

bool NameFilter::matches(std::string_view rawName) const {
    if (impossible_) {
        return false;
    }
    if (kind_ && !IsNameOfKind(*kind_, rawName)) {
        return false;
    }
    return pattern_.empty() || WildcardMatches(pattern_, rawName);
}

} // namespace korvel
