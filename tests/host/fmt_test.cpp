// Informats and formats where the tool does not show them: statuses, bytes that are no text, all
// dates.
#include "tests/host/host_fixture.h"

#include <cmath>

namespace qvhost::test {
namespace {

class Fmt : public testing::Test {
   protected:
    QVInformath informat(std::string_view name, uint64_t width = 0, uint64_t decimals = 0,
                         bool numeric = true) {
        return opened<QVInformath>(fmt->openInformat, name, width, decimals, numeric);
    }
    QVFormath format(std::string_view name, uint64_t width = 0, uint64_t decimals = 0,
                     bool numeric = true) {
        return opened<QVFormath>(fmt->openFormat, name, width, decimals, numeric);
    }
    template <class Handle>
    Handle opened(auto open, std::string_view name, uint64_t width, uint64_t decimals,
                  bool numeric) {
        Handle result = nullptr;
        status = open(fmt, numeric, name.data(), lengthOf(name), width, decimals, &result);
        return result;
    }
    double read(QVInformath inf, std::string_view text) {
        double value = 0;
        status = inf->toNumber(inf, text.data(), lengthOf(text), &value);
        return value;
    }
    std::string write(QVFormath from, double value) {
        const char* out = "";
        QVStrSize outLen = 0;
        status = from->toText(from, value, &out, &outLen);
        return {out, static_cast<std::size_t>(outLen)};
    }

    RunningHost host;
    QVFMTh fmt = host.load<QVFMT>(U"qvefmt");
    QVStatus status = QV_OK;
};

TEST_F(Fmt, CharacterInformatsTakeBytesThatAreNoCharacterAsOne) {
    constexpr struct {
        const char* name;
        uint64_t width;
        std::string_view read, expected;
    } kCases[] = {{"lower", 0, "\xC3\x80\xFF", "\xC3\xA0\xFF"},
                  {"left", 2, "\xC3\xC3z", "\xC3\xC3"},
                  {"left", 1, "\xE2\x82", "\xE2\x82"}};
    for (const auto& c : kCases) {
        QVInformath inf = informat(c.name, c.width, 0, false);
        const char* out = nullptr;
        QVStrSize outLen = 0;
        ASSERT_QV_OK(inf->toText(inf, c.read.data(), lengthOf(c.read), &out, &outLen));
        EXPECT_EQ(std::string_view(out, static_cast<std::size_t>(outLen)), c.expected);
    }
}

TEST_F(Fmt, FormatsShowWhatTheyAreNotForAsItIs) {
    const struct {
        const char* name;
        uint64_t width, decimals;
        double value;
        const char* shown;
        QVStatus status;
    } cases[] = {{"fixed", 6, 2, std::nan(""), "      ", QV_OK},
                 {"hex", 0, 0, 1e17, "100000000000000000", QV_FMT_RANGE},
                 {"date", 0, 0, 0.5, "0.5", QV_FMT_VALUE},
                 {"datetime", 0, 0, 253402300800, "253402300800", QV_FMT_RANGE},
                 {"time", 0, 1, -1, "-1", QV_FMT_RANGE},
                 {"%d. März", 10, 0, 0.5, "       0.5", QV_FMT_VALUE},
                 {"%F", 0, 0, HUGE_VAL, "inf", QV_FMT_RANGE}};
    for (const auto& c : cases) {
        EXPECT_EQ(write(format(c.name, c.width, c.decimals), c.value), c.shown) << c.name;
        EXPECT_QV(c.status, status) << c.name;
    }
}

TEST_F(Fmt, WhatAFormatWritesItsInformatReads) {
    const struct {
        const char *format, *informat;
        uint64_t decimals;
        int64_t first, last, step;
    } cases[] = {{"date", "date", 0, -719528, 2932896, 97},
                 {"%d/%m/%Y", "%d/%m/%Y", 0, -719528, 2932896, 97},
                 {"%j %Y", "%j %Y", 0, -719528, 2932896, 97},
                 {"%A %B %e %y %C", "%A %B %e %y 20", 0, 10957, 36000, 97},
                 {"%c", "%c", 0, -3'000'000'000, 6'000'000'000, 1234567},
                 {"%F %r", "%F %r", 0, -3'000'000'000, 6'000'000'000, 1234567},
                 {"datetime", "datetime", 6, -3'000'000'000, 6'000'000'000, 1234567}};
    for (const auto& c : cases) {
        QVFormath out = format(c.format, 0, c.decimals);
        QVInformath in = informat(c.informat);
        for (int64_t at = c.first; at < c.last; at += c.step) {
            const double value = static_cast<double>(at) + (c.decimals == 0 ? 0 : 0.123457);
            ASSERT_EQ(read(in, write(out, value)), value) << write(out, value);
        }
    }
}

TEST_F(Fmt, EveryEntryOfTheCatalogueCanBeOpened) {
    QVFMTEntry entry{};
    QVStrSize count = 0;
    for (; fmt->informatAt(fmt, count, &entry) == QV_OK; ++count) {
        QVInformath inf = informat(entry.name, 1, 0, entry.numeric != 0);
        ASSERT_EQ(status, QV_OK) << entry.name;
        const char* out = nullptr;  // the other type's routine
        double value = 0;
        EXPECT_EQ(entry.numeric != 0 ? inf->toText(inf, "", 0, &out, &count)
                                     : inf->toNumber(inf, "", 0, &value),
                  QV_FMT_TYPE);
    }
    EXPECT_EQ(count, 14);
    for (count = 0; fmt->formatAt(fmt, count, &entry) == QV_OK; ++count) {
        EXPECT_NE(format(entry.name), nullptr) << entry.name;
    }
    EXPECT_EQ(count, 8);
    EXPECT_EQ(fmt->formatAt(fmt, -1, &entry), QV_EOF);
}

}  // namespace
}  // namespace qvhost::test
