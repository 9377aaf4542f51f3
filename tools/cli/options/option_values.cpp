// See option_values.h.
#include "tools/cli/options/option_values.h"

#include "tools/cli/failure.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace qvej::cli {

namespace {

// What may stand between the commas of the engine's keyword string; each but ALL also with "-".
constexpr std::string_view kDebugKeywords[] = {
    "RLMEM",  "MAP",        "MAPGEN", "MAPVAL",   "LEVEL",     "PARSE",   "PATH",    "COMPRESSION",
    "MEMORY", "INSERTPATH", "READ",   "READINIT", "READRESET", "USERMAP", "ALLDATA", "ALL"};

}  // namespace

void usageError(const std::string& what) {
    throw Failure(WRONG_USAGE, what + " (qvejmap --help tells more)");
}

std::string inQuotes(std::string_view text) {
    return "'" + std::string(text) + "'";
}

std::optional<uint64_t> parseCount(std::string_view text) {
    uint64_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(count) : std::nullopt;
}

uint64_t countOf(const char* option, std::string_view text) {
    const std::optional<uint64_t> count = parseCount(text);
    if (!count) {
        usageError(std::string(option) + ": " + inQuotes(text) + " is not a whole number");
    }
    return *count;
}

std::optional<uint64_t> parseSize(std::string_view text) {
    unsigned shift = 0;
    if (!text.empty()) {
        switch (text.back()) {
            case 'K':
            case 'k':
                shift = 10;
                break;
            case 'M':
            case 'm':
                shift = 20;
                break;
            case 'G':
            case 'g':
                shift = 30;
                break;
            case 'T':
            case 't':
                shift = 40;
                break;
            default:
                break;
        }
    }
    text.remove_suffix(shift == 0 ? 0 : 1);
    const std::optional<uint64_t> count = parseCount(text);
    if (!count || *count > std::numeric_limits<uint64_t>::max() >> shift) {
        return std::nullopt;
    }
    return *count << shift;
}

std::string debugString(std::string_view keywords) {
    std::string result = ",";
    while (!keywords.empty()) {
        const std::size_t comma = keywords.find(',');
        std::string word(keywords.substr(0, comma));
        keywords.remove_prefix(comma == std::string_view::npos ? keywords.size() : comma + 1);
        if (word.empty()) {
            continue;
        }
        const std::string given = word;
        for (char& c : word) {
            c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        }
        const std::string_view name = std::string_view(word).substr(word[0] == '-' ? 1 : 0);
        const bool known = std::find(std::begin(kDebugKeywords), std::end(kDebugKeywords), name) !=
                           std::end(kDebugKeywords);
        if (!known || word == "-ALL") {
            std::string all;
            for (const std::string_view keyword : kDebugKeywords) {
                all += (all.empty() ? "" : ", ") + std::string(keyword);
            }
            usageError("--debug: " + inQuotes(given) + " is none of " + all);
        }
        result += word + ",";
    }
    return result == "," ? std::string() : result;
}

}  // namespace qvej::cli
