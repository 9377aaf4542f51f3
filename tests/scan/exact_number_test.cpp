// Numbers that a double keeps and numbers that it does not.
#include "scan/exact_number.h"

#include "testkit/open_document.h"

#include <string>

namespace jmap::test {
namespace {

TEST(ExactNumber, TellsWhatADoubleLoses) {
    const std::string long0 = "0." + std::string(320, '0');
    const struct {
        std::string number;
        bool loses;
    } kCases[] = {
        {"0", false},
        {"-0.0e999", false},
        {"9007199254740992", false},
        {"9007199254740993", true},
        {"-9007199254740993", true},
        {"9007199254740994", false},
        {"18014398509481984", false},
        {"18014398509481982", false},
        {"18014398509481983", true},
        {"9223372036854775807", true},
        {"9223372036854775808", false},
        {"12345678901234567890", true},
        {"100000000000000000000", false},
        {"10000000000000000000000", false},
        {"100000000000000000000000", true},
        {"1000000000000000", false},
        {"999999999999999999", true},
        {"0.12345678901234567", false},
        {"12345678.901234567", false},
        {"-12345678.901234567", false},
        {"0.123456789012345678", true},
        {"-1.23456789012345678", true},
        {"-1.23456789012345670000000000", false},
        {"0.00000000000000000000000012345678901234567", false},
        {"1.50000000000000000000000000000", false},
        {"1.7976931348623157e308", false},
        {"1e308", false},
        {"1e309", true},
        {"-1E999", true},
        {"9e-324", false},
        {"1e-400", true},
        {"0e-400", false},
        {"123456789012345678e-5", true},
        {"12345678901234567e-5", false},
        {std::string(310, '9'), true},
        {std::string(310, '9') + ".5", true},
        {"1" + std::string(310, '0') + ".0", true},
        {long0 + "1", false},  // 1e-321 is small, but not 0
        {long0 + std::string(10, '0') + "1", true},
    };
    HandDocument doc;
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.number);
        EXPECT_EQ(test.loses, losesDigits(doc.p.smh, test.number));
        EXPECT_TRUE(mayLoseDigits(test.number) || !test.loses);
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
