// Numbers that a double keeps and numbers that it does not.
#include "scan/exact_number.h"

#include "testkit/open_document.h"
#include "testkit/split.h"

#include <string>

namespace jmap::test {
namespace {

TEST(ExactNumber, TellsWhatADoubleLoses) {
    const std::string zeros = "0." + std::string(320, '0'), nines(310, '9');
    Names keeps = split(
        "0|-0.0e999|9007199254740992|9007199254740994|18014398509481984|18014398509481982|"
        "9223372036854775808|100000000000000000000|10000000000000000000000|1000000000000000|"
        "0.12345678901234567|12345678.901234567|-12345678.901234567|"
        "-1.23456789012345670000000000|0.00000000000000000000000012345678901234567|"
        "1.50000000000000000000000000000|1.7976931348623157e308|1e308|9e-324|0e-400|"
        "12345678901234567e-5");
    keeps.push_back(zeros + "1");  // 1e-321 is small, but not 0
    Names loses = split(
        "9007199254740993|-9007199254740993|18014398509481983|9223372036854775807|"
        "12345678901234567890|100000000000000000000000|999999999999999999|"
        "0.123456789012345678|-1.23456789012345678|1e309|-1E999|1e-400|123456789012345678e-5");
    loses.insert(loses.end(),
                 {nines, nines + ".5", "1" + std::string(310, '0') + ".0", zeros + "00000000001"});
    HandDocument doc;
    for (const std::string& number : keeps) {
        EXPECT_FALSE(losesDigits(doc.p.smh, number)) << number;
    }
    for (const std::string& number : loses) {
        EXPECT_TRUE(losesDigits(doc.p.smh, number) && mayLoseDigits(number)) << number;
    }
    EXPECT_FALSE(losesDigits(nullptr, "1e309"));
    for (const char* usual : {"1", "-1.5", "123456789012345", "-65.613616999999977", "12345.6"}) {
        EXPECT_FALSE(mayLoseDigits(usual)) << "the slow look is not for " << usual;
    }
}

TEST(ExactNumber, IsCountedForThePathWithItsFirstPlace) {
    HandDocument doc;
    ASSERT_QV_OK(
        doc.document.feed("[{\"a\":1,\"b\":\"9007199254740993\"},\n"
                          " {\"a\":9007199254740993},{\"a\":1e999,\"b\":0.5}]",
                          false));
    const PATHINFO* a = doc.p.pathInfoHead;
    ASSERT_NE(nullptr, a);
    EXPECT_EQ(2, a->inexact);
    EXPECT_EQ(2, a->firstInexact.line);
    EXPECT_EQ(7, a->firstInexact.column);
    ASSERT_NE(nullptr, a->down);
    EXPECT_EQ(0, a->down->inexact);
}

}  // namespace
}  // namespace jmap::test
