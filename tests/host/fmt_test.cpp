#include "tests/host/host_fixture.h"

#include <cstdlib>

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

TEST_F(Fmt, InformatsReadAWholeValueOrRefuseIt) {
    const struct {
        const char* name;
        uint64_t width, decimals;
        const char *read, *refused, *outOfRange;  // separated by "|"; read: text=value
    } cases[] = {
        {"NumBer", 0, 0, " \t12.5 \n=12.5|+.5=0.5|-007.=-7|1e999=inf", "|  |.|1 2|1e|inf|1,000|--1",
         ""},
        {"number", 0, 2, "0012345=123.45|12.5=12.5|1e3=10|5=.05|9007199254740993=90071992547409.93",
         "-", ""},
        {"number", 3, 0, "123456=123|1.2.3=1.2", "12a4", ""},
        {"comma", 0, 0, "-1,234,567.5=-1234567.5|1234=1234",
         "1,23|1234,567|,123|1,,234|1,234,|1.234,5", ""},
        {"percent", 0, 0, "12.5%=0.125|28.7 % =0.287|-.1%=-0.001", "12.5|%|1%%", ""},
        {"hex", 0, 0, "ff=255|-0xFF=-255|20000000000000=9007199254740992", "0x|fg|0x-1",
         "20000000000001|1ffffffffffffffff"},
        {"yesno", 0, 0, "YES=1|tRue=1|1=1| no =0|false=0|0=0", "10|y", ""},
        {"date", 0, 0,
         "1970-01-01=0|20240229=19782| 2000-02-29 =11016|1969-12-31=-1|"
         "0000-01-01=-719528|9999-12-31=2932896",
         "2023-02-29|1900-02-29|2024-04-31|2024-00-10|2024-1-2|2024-0102|2024-01-02x|24-01-02", ""},
        {"date", 10, 0, "2024-02-29T10:00=19782", "2024-02-3010", ""},
        {"datetime", 0, 0,
         "1970-01-01T00:00:01Z=1|1969-12-31t23:59:59.5z=-0.5|"
         "2024-02-29 13:05=1709211900|20240229T130500.000001=1709211900.000001|"
         "2024-02-29T13:05:00,9999995Z=1709211901|2024-03-01T01:00+02:00=1709247600|"
         "2023-12-31T23:30:00-0130=1704070800|2024-02-29 13:05:00 +01=1709208300|"
         "9999-12-31T23:59:59.999999Z=253402300799.999999",
         "2016-12-31T23:59:60Z|2024-02-29T24:00|2024-02-29T10:60|2024-02-29|2024-02-29T10:00.|"
         "2024-02-29T10:00+24:00|2024-02-29T10:00+01:|2024-02-29T10:00 CET",
         ""},
        {"time", 0, 0, "13:05=47100|130500.25=47100.25|23:59:59=86399", "24:00|1:05|13:05Z|13:0500",
         ""},
        {"unix", 0, 0, "1709211900.25=1709211900.25", "now", "1709211900001"},
        {"unixms", 0, 0, "1709211900001=1709211900.001|-1=-0.001", "1s", "1e18"},
        {"%d/%m/%Y", 0, 0, "29/02/2024=19782| 1/3/1970 =59",
         "30/02/2024|1/1/24|01/13/2024|1/1/1970 x|1/1", ""},
        {"%y%m%d", 0, 0, "680101=35794|690101=-365", "7001011", ""},
        {"%a, %e %B %Y", 0, 0, "Thu,  5  MARCH 1970=63|sunday, 1 mar 1970=59",
         "Fri, 1 mar 1970|Sun,1 mar 1970|Sun, 1 Marc 1970", ""},
        {"%Y%j", 0, 0, "2024366=20088", "2023366|2023000", ""},
        {"%n%F \t", 0, 0, "2024-02-29=19782", "2024-02-30", ""},
        {"%G-W%V-%u", 0, 0, "2020-W53-7=18630", "2021-W53-1|2020-W01-0", ""},
        {"%m%% %d. März %m %Y", 0, 0, "3% 1. März 3 1970=59", "2% 1. März 3 1970", ""},
        {"%I:%M %p", 0, 0, "12:05 am=300|12:05 PM=43500", "13:00 pm|0:00 am", ""},
        {"%w %T.%d%m%Y", 0, 0, "0 0:00:03.04011970=259203", "6 0:00:03.04011970", ""},
        {"%H.%M.%S.", 0, 0, "1.2.3.=3723", "1.2.3|24.0.0.", ""},
        {"%d/%b/%Y:%T %z", 0, 0, "10/Oct/2000:13:55:36.5 -0700=971211336.5",
         "10/Oct/2000:12:00:. -0700", ""},
        {"%c %Z", 0, 0, "Thu Jan  1 00:00:09 1970 UTC=9", "Thu Jan  1 00:00:09 1970 CET", ""}};
    for (const auto& c : cases) {
        QVInformath inf = informat(c.name, c.width, c.decimals);
        ASSERT_EQ(status, QV_OK) << c.name;
        const auto expect = [&](const std::string& text, QVStatus wanted, double wantedValue) {
            const double value = read(inf, text);
            EXPECT_TRUE(status == wanted && value == wantedValue)
                << c.name << " of \"" << text << "\": " << qvStatusName(status) << ' ' << value;
        };
        for (const std::string& item : split(c.read)) {
            const auto at = item.rfind('=');
            expect(item.substr(0, at), QV_OK, std::strtod(item.c_str() + at + 1, nullptr));
        }
        for (const std::string& text : split(c.refused)) {
            expect(text, QV_FMT_VALUE, 0);
        }
        for (const std::string& text : split(c.outOfRange)) {
            expect(text, QV_FMT_RANGE, 0);
        }
        EXPECT_STRNE(inf->refusal, "");
        EXPECT_QV_OK(destroy(inf));
    }
    EXPECT_EQ(host.leftovers(), "module qvefmt;");
}

TEST_F(Fmt, CharacterInformatsKeepCharactersWhole) {
    const struct {
        const char* name;
        uint64_t width;
        const char* read;  // text=out, separated by "|"
    } cases[] = {
        {"trim", 0, " \t a b \n=a b|  ="},         {"trim", 3, "  abc=a"},
        {"upper", 0, "straße ŉé i=STRASSE ʼNÉ I"}, {"UPPER", 2, "éàü=ÉÀ"},
        {"lower", 0, "ÀİΣ\xFF=ài̇ς\xFF"},           {"left", 2, "a😀z=a😀|\xC3\xC3z=\xC3\xC3|a=a"},
        {"left", 1, "\xE2\x82=\xE2\x82"}};
    for (const auto& c : cases) {
        QVInformath inf = informat(c.name, c.width, 0, false);
        for (const std::string& item : split(c.read)) {
            const auto at = item.find('=');
            const char* out = nullptr;
            QVStrSize outLen = 0;
            ASSERT_QV_OK(inf->toText(inf, item.data(), static_cast<QVStrSize>(at), &out, &outLen));
            EXPECT_EQ(std::string(out, out + outLen), item.substr(at + 1));
        }
    }
}

TEST_F(Fmt, FormatsShowEveryNumber) {
    const struct {
        const char* name;
        uint64_t width, decimals;
        const char *shown, *unsuited, *outOfRange;  // value=text, separated by "|"
    } cases[] = {
        {"number", 6, 0, "-12.5= -12.5|1e22= 1e+22|-0=    -0|1e15=1000000000000000", "", ""},
        {"FIXED", 6, 2, "2.675=  2.67|-3= -3.00|inf=   inf|nan=      ", "", ""},
        {"fixed", 0, 25, "0.1=0.1000000000000000055511151", "", ""},
        {"comma", 0, 2, "-1234567.5=-1,234,567.50|999=999.00|-inf=-inf", "", ""},
        {"comma", 0, 0, "2.5=2|123456=123,456|1234=1,234", "", ""},
        {"percent", 0, 1, "0.125=12.5%|0.0875=8.7%|0=0.0%|-0.1=-10.0%", "", ""},
        {"percent", 0, 0, "-0.004=-0%|12=1200%|inf=inf%", "", ""},
        {"hex", 3, 0, "255= ff|-16=-10", "1.5=1.5", "1e17=100000000000000000|inf=inf"},
        {"date", 0, 0, "19782=2024-02-29|-719528=0000-01-01|2932896=9999-12-31", "0.5=0.5",
         "2932897=2932897|-719529=-719529|-inf=-inf"},
        {"datetime", 0, 0, "-0.5=1969-12-31T23:59:59", "", "253402300800=253402300800"},
        {"datetime", 0, 6, "1709211900.000001=2024-02-29T13:05:00.000001", "", ""},
        {"datetime", 0, 3, "0.9996=1970-01-01T00:00:00.999", "", ""},
        {"time", 0, 1, "47100.25=13:05:00.2", "", "86400=86400|-1=-1|86399.9999999=86399.9999999"},
        {"%d. März", 10, 0, "59=  01. März", "0.5=       0.5", ""},
        {"%a %e %b, %j, %V/%G, %U %C", 0, 0, "0=Thu  1 Jan, 001, 01/1970, 00 19", "", ""},
        {"%F %R %p %Z %z", 0, 0, "-60=1969-12-31 23:59 PM UTC +0000", "", "inf=inf"}};
    for (const auto& c : cases) {
        QVFormath made = format(c.name, c.width, c.decimals);
        ASSERT_EQ(status, QV_OK) << c.name;
        const auto expect = [&](const char* items, QVStatus wanted) {
            for (const std::string& item : split(items)) {
                const auto at = item.find('=');
                EXPECT_EQ(write(made, std::strtod(item.c_str(), nullptr)), item.substr(at + 1));
                EXPECT_EQ(status, wanted) << c.name << ' ' << item;
            }
        };
        expect(c.shown, QV_OK);
        expect(c.unsuited, QV_FMT_VALUE);
        expect(c.outOfRange, QV_FMT_RANGE);
        EXPECT_QV_OK(destroy(made));
    }
}

TEST_F(Fmt, UnusableOnesAreRefusedWhenTheyAreOpened) {
    const struct {
        const char* names;  // separated by "|"
        bool numeric;
        uint64_t width, decimals;
        QVStatus informat, format;
    } cases[] = {
        {"|dates", true, 0, 0, QV_FMT_NAME, QV_FMT_NAME},
        {"date|%F", false, 0, 0, QV_FMT_TYPE, QV_FMT_TYPE},
        {"trim", true, 0, 0, QV_FMT_TYPE, QV_FMT_NAME},
        {"left", false, 0, 0, QV_FMT_WIDTH, QV_FMT_TYPE},
        {"datetime", true, 40000, 0, QV_OK, QV_FMT_WIDTH},
        {"datetime|%F", true, 0, 7, QV_FMT_WIDTH, QV_FMT_WIDTH},
        {"number", true, 0, 100, QV_FMT_WIDTH, QV_FMT_WIDTH},
        {"%|%%|%Y-%m-%|%Q|%Ey-%m-%d|%3Y-%m-%d", true, 0, 0, QV_FMT_PATTERN, QV_FMT_PATTERN},
        {"%Y-%m|%F %U|%I:%M|%p:%H|%m %H:%M|%R %z|%F %H %S|%F %V|%Y/%j.%b|%Y %j %d", true, 0, 0,
         QV_FMT_PATTERN, QV_OK}};
    for (const auto& c : cases) {
        for (const std::string& name : split(c.names)) {
            (void)informat(name, c.width, c.decimals, c.numeric);
            EXPECT_EQ(status, c.informat) << name;
            (void)format(name, c.width, c.decimals, c.numeric);
            EXPECT_EQ(status, c.format) << name;
        }
    }
}

TEST_F(Fmt, WhatAFormatWritesItsInformatReads) {
    const struct {
        const char *format, *informat;
        uint64_t decimals;
        double first, last, step;
    } cases[] = {{"date", "date", 0, -719528, 2932896, 97},
                 {"%d/%m/%Y", "%d/%m/%Y", 0, -719528, 2932896, 97},
                 {"%j %Y", "%j %Y", 0, -719528, 2932896, 97},
                 {"%A %B %e %y %C", "%A %B %e %y 20", 0, 10957, 36000, 97},
                 {"%c", "%c", 0, -3e9, 6e9, 1234567},
                 {"%F %r", "%F %r", 0, -3e9, 6e9, 1234567},
                 {"datetime", "datetime", 6, -3e9, 6e9, 1234567}};
    for (const auto& c : cases) {
        QVFormath out = format(c.format, 0, c.decimals);
        QVInformath in = informat(c.informat);
        for (double whole = c.first; whole < c.last; whole += c.step) {
            const double value = c.decimals == 0 ? whole : whole + 0.123457;
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
