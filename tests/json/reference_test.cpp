// Against a reference parser: the same documents accepted, on all small texts over alphabets that
// reach every rule, and the same events however it is cut.
#include "tests/json/event_log.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace jmap::test {
namespace {

// Parses by both; from buffers of one byte, too, where every token goes the collectors' way.
void agreeOn(const std::string& text) {
    boost::json::error_code error;
    boost::json::parse(text, error);
    const std::string result = parseIn(text, 0);
    EXPECT_EQ(!error, result.starts_with("QV_OK ")) << testing::PrintToString(text) << result;
    EXPECT_EQ(result, parseIn(text, 1)) << testing::PrintToString(text);
}

// All texts of up to `maxParts` parts of an alphabet, between `before` and `after`.
void agreeOnAll(const std::vector<std::string>& alphabet, std::size_t maxParts,
                const std::string& before, const std::string& after) {
    agreeOn(before + after);
    for (const std::string& part : alphabet) {
        if (maxParts != 0 && !testing::Test::HasFailure()) {
            agreeOnAll(alphabet, maxParts - 1, before + part, after);
        }
    }
}

TEST(Reference, AgreesOnAllSmallTexts) {
    agreeOnAll({"{", "}", "[", "]", ",", ":", "\"a\"", "1", " "}, 5, "", "");
    agreeOnAll({"0", "1", "9", "-", "+", ".", "e", "E"}, 4, "[", "]");
    agreeOnAll({"0", "1", "-", "+", ".", "e", " "}, 4, "", "");
    agreeOnAll({"t", "r", "u", "e", "true", "false", "null", "fals", "nul", ","}, 3, "[", "]");
    agreeOnAll({"\\", "\"", "u", "n", "/", "x", "\x1F", "\x7F"}, 4, "[\"", "\"]");
    agreeOnAll({"\\ud800", "\\udbff", "\\udc00", "\\udfff", "\\u0041", "\\uD8", "x"}, 3, "[\"",
               "\"]");
}

// Each first byte that is special with bytes at and next to every bound after it.
TEST(Reference, AgreesOnUtf8) {
    for (const char* first : {"\xC0", "\xC1", "\xC2", "\xDF", "\xE0", "\xE1", "\xEC", "\xED",
                              "\xEE", "\xEF", "\xF0", "\xF1", "\xF3", "\xF4", "\xF5", "\xFF"}) {
        agreeOnAll({"\x7F", "\x80", "\x8F", "\x90", "\x9F", "\xA0", "\xBF", "\xC3"}, 3,
                   "[\"\xC3\xA9" + std::string(first), "\"]");
    }
}

}  // namespace
}  // namespace jmap::test
