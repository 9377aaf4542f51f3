// Property: a text of JSON Lines is accepted exactly when Boost.JSON accepts each line that is not
// blank, with the events of one array of those values.  Any cut into buffers and any routine for
// scanning give the same status, place and events.
//
// Input: as in kit/parse_check.h.  Not compared is what fuzz_parser.cpp does not compare.
#include "fuzz_one.h"
#include "kit/parse_check.h"

#include <algorithm>

namespace {

using namespace jmap::fuzz;

// The events of all lines, or none when one of them is rejected.
std::optional<std::string> eventsOfLines(std::string_view text) {
    std::string events = "[ ";
    bool known = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.find_first_not_of(" \t\r") == line.npos) {
            continue;
        }
        const auto ofLine =
            referenceEvents(line, kMaxParseDepth);  // of a line: the array does not count
        if (!ofLine) {
            return std::nullopt;
        }
        known = known && *ofLine != kEventsUnknown;
        events += *ofLine;
    }
    return known ? events + "] " : kEventsUnknown;
}

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    checkParse(data, size, {.lines = true}, eventsOfLines);
    return 0;
}
