// Dates and times in texts.
#include "client/schema/iso_time.h"

#include <gtest/gtest.h>

namespace {

// "U 3 11016 47100250000000": kind, digits of the fraction, days, nanoseconds of the day; "-" none.
std::string dump(std::string_view text) {
    const std::optional<qvej::IsoTime> time = qvej::parseIsoTime(text);
    if (!time) {
        return "-";
    }
    return std::string(1, "DNU"[time->kind]) + " " + std::to_string(time->fraction) + " " +
           std::to_string(time->days) + " " + std::to_string(time->nanoseconds);
}

TEST(IsoTime, TakesWholeTextsOnly) {
    constexpr struct {
        const char *text, *expected;
    } kCases[] = {
        {"1970-01-01", "D 0 0 0"},
        {"2000-02-29", "D 0 11016 0"},
        {"0001-01-01", "D 0 -719162 0"},
        {"9999-12-31", "D 0 2932896 0"},
        {"2000-02-29T13:05", "N 0 11016 47100000000000"},
        {"2000-02-29T13:05:01", "N 0 11016 47101000000000"},
        {"2000-02-29T13:05:01Z", "U 0 11016 47101000000000"},
        {"2000-02-29T13:05Z", "U 0 11016 47100000000000"},
        {"2000-02-29T13:05:00.250Z", "U 3 11016 47100250000000"},
        {"2000-02-29T23:59:59.999999999", "N 9 11016 86399999999999"},
        {"2000-02-29T00:00:00.000000001", "N 9 11016 1"},
        // Dates that do not exist, and other ways to write them.
        {"1900-02-29", "-"},
        {"2000-13-01", "-"},
        {"2000-00-10", "-"},
        {"2000-04-31", "-"},
        {"2000-01-00", "-"},
        {"0000-01-01", "-"},
        {"2000-1-01", "-"},
        {"20000101", "-"},
        {"2000-01-01 ", "-"},
        {" 2000-01-01", "-"},
        {"+2000-01-01", "-"},
        {"2000-01-01T", "-"},
        {"2000-01-01 10:00:00", "-"},
        {"2000-01-01t10:00:00", "-"},
        {"2000-01-01T24:00:00", "-"},
        {"2000-01-01T10:60:00", "-"},
        {"2000-01-01T10:00:60Z", "-"},
        {"2000-01-01T10", "-"},
        {"2000-01-01T10:0", "-"},
        {"2000-01-01T10:00:", "-"},
        {"2000-01-01T10:00:00.", "-"},
        {"2000-01-01T10:00:00.Z", "-"},
        {"2000-01-01T10:00:00.1234567890", "-"},
        {"2000-01-01T10:00:00z", "-"},
        {"2000-01-01T10:00:00+00:00", "-"},
        {"2000-01-01T10:00:00ZZ", "-"},
        {"", "-"},
        {"2000", "-"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(dump(c.text), c.expected) << c.text;
    }
    EXPECT_EQ(dump(std::string_view("2000-01-01\0", 11)), "-");
}

TEST(IsoTime, UnitsAreExactOrNone) {
    constexpr struct {
        const char* text;
        int digits;
        int64_t units;
    } kCases[] = {
        {"1970-01-01T00:00:01Z", 0, 1},
        {"1969-12-31T23:59:59Z", 0, -1},
        {"1969-12-31T23:59:59.999Z", 3, -1},
        {"2000-02-29T13:05:00.25", 6, 951829500250000},
        {"2262-04-11T23:47:16.854775807Z", 9, INT64_MAX},
        {"1677-09-21T00:12:43.145224192Z", 9, INT64_MIN},
        {"0001-01-01T00:00:00Z", 6, -62135596800000000},
        {"9999-12-31T23:59:59.999999Z", 6, 253402300799999999},
    };
    for (const auto& c : kCases) {
        const auto units = qvej::unitsSince1970(*qvej::parseIsoTime(c.text), c.digits);
        ASSERT_TRUE(units) << c.text;
        EXPECT_EQ(*units, c.units) << c.text;
        // A text of as many digits, and in UTC, comes back.
        const std::string again = qvej::isoText(*units, c.digits);
        EXPECT_EQ(qvej::unitsSince1970(*qvej::parseIsoTime(again), c.digits), units) << again;
    }
    for (const char* text : {"2262-04-11T23:47:16.854775808", "1677-09-21T00:12:43.145224191"}) {
        EXPECT_FALSE(qvej::unitsSince1970(*qvej::parseIsoTime(text), 9)) << text;
    }
    EXPECT_EQ(qvej::isoText(-1, 3), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(qvej::isoText(0, 0), "1970-01-01T00:00:00Z");
}

}  // namespace
