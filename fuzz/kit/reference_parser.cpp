// In a file of its own, which is built without instrumentation: its branches are not to be counted.
//
// Boost.JSON differs in one point.  It turns numbers into doubles while it parses, and takes an
// exponent of ten digits or so for a mistake, where our parser hands on the text.  Such a text it
// gets again, with no more than kExponentDigits digits after each "e"; what it says of that one
// counts, but its events do not.  Within strings the cut changes characters, but not what is valid:
// an escape has at most three digits after an "e".
#include "kit/reference_parser.h"

#include "tests/json/event_log.h"

#include <boost/json/basic_parser_impl.hpp>

namespace jmap::fuzz {
namespace {

constexpr std::size_t kExponentDigits = 6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string withShortExponents(std::string_view text) {
    std::string out;
    std::size_t digits = 0;  // after an "e"
    bool exponent = false;
    for (const char c : text) {
        const bool counts = exponent && isDigit(c);
        digits = counts ? digits + 1 : 0;
        const bool sign = (c == '+' || c == '-') && !out.empty() && (out.back() | 0x20) == 'e';
        exponent = counts || sign || (c | 0x20) == 'e';
        if (digits <= kExponentDigits) {
            out += c;
        }
    }
    return out;
}

using boost::json::error_code;
using boost::json::string_view;

// Callbacks that write the events down.
// NOLINTBEGIN(readability-identifier-naming): the names are the library's
struct Handler {
    static constexpr std::size_t max_object_size = SIZE_MAX;
    static constexpr std::size_t max_array_size = SIZE_MAX;
    static constexpr std::size_t max_key_size = SIZE_MAX;
    static constexpr std::size_t max_string_size = SIZE_MAX;

    std::string events;
    std::string token;  // its parts so far

    bool add(std::string_view event) {
        events += event;
        return true;
    }
    bool part(string_view text) {
        token.append(text.data(), text.size());
        return true;
    }
    bool text(const char* kind, string_view last) {
        part(last);
        add(kind + test::quoted(token));
        token.clear();
        return true;
    }
    bool number(string_view last) {
        part(last);
        const bool real = token.find_first_of(".eE") != token.npos;
        add((real ? "real " : "int ") + token + " ");
        token.clear();
        return true;
    }

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_object_begin(error_code&) { return add("{ "); }
    bool on_object_end(std::size_t, error_code&) { return add("} "); }
    bool on_array_begin(error_code&) { return add("[ "); }
    bool on_array_end(std::size_t, error_code&) { return add("] "); }
    bool on_key_part(string_view s, std::size_t, error_code&) { return part(s); }
    bool on_key(string_view s, std::size_t, error_code&) { return text("name ", s); }
    bool on_string_part(string_view s, std::size_t, error_code&) { return part(s); }
    bool on_string(string_view s, std::size_t, error_code&) { return text("", s); }
    bool on_number_part(string_view s, error_code&) { return part(s); }
    bool on_int64(int64_t, string_view s, error_code&) { return number(s); }
    bool on_uint64(uint64_t, string_view s, error_code&) { return number(s); }
    bool on_double(double, string_view s, error_code&) { return number(s); }
    bool on_bool(bool value, error_code&) { return add(value ? "true " : "false "); }
    bool on_null(error_code&) { return add("null "); }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }
};
// NOLINTEND(readability-identifier-naming)

}  // namespace

std::optional<std::string> referenceEvents(std::string_view text, uint64_t maxDepth) {
    boost::json::parse_options options;
    options.max_depth = maxDepth;
    boost::json::basic_parser<Handler> parser(options);
    error_code error;
    const std::size_t used = parser.write_some(false, text.data(), text.size(), error);
    if (error == boost::json::error::exponent_overflow) {
        const std::string shorter = withShortExponents(text);
        return shorter.size() < text.size() && referenceEvents(shorter, maxDepth)
                   ? std::optional<std::string>(kEventsUnknown)
                   : std::nullopt;
    }
    if (error || used < text.size()) {
        return std::nullopt;
    }
    return std::move(parser.handler().events);
}

}  // namespace jmap::fuzz
