// One document, or which sequence: by the beginning of a text.
#include "client/text_form.h"

#include <gtest/gtest.h>

namespace {

using qvej::TextForm;

TEST(TextForm, IsKnownByTheSecondValue) {
    constexpr TextForm kDocument = TextForm::DOCUMENT;
    constexpr TextForm kLines = TextForm::LINES;
    constexpr TextForm kSequence = TextForm::SEQUENCE;
    const struct {
        std::string_view text;
        TextForm form;
    } cases[] = {
        {"", kDocument},
        {" \n", kDocument},
        {"{\"a\":1}\n", kDocument},
        {"12\n", kDocument},
        {"{\"a\":1} x", kDocument},
        {"{\"a\":1}\nx", kDocument},
        {"{\"a\":1},{\"a\":2}", kDocument},
        {"{\"a\":1}]\n{}", kDocument},
        {"{\"a\":\"}{\\\"}{\",\n\"b\":[{}]}", kDocument},
        {"{\"a\":[1,\n", kDocument},
        {"\"a\n\"{}", kDocument},
        {"1,2", kDocument},
        {"nul\n1\n", kDocument},
        {"1\n-x\n", kDocument},
        {"{}\n\"open\n{}", kDocument},

        {"{}\n{}", kLines},
        {"\n\n{\"a\":\"\\\\\"} \r\n\n  {}\n", kLines},
        {"1\n\"x\"\nnull\n", kLines},
        {"{}\n{\"a\":1", kLines},        // it may go on in its line
        {"{}\n{\"a\":1\n{}\n", kLines},  // a line that lacks its end
        {"{}\n{}\nx\n{} {}", kLines},    // after a mistake nothing counts
        {"{}\n{\"a\":}\n{} \n", kLines},
        {"{}\n{}\n\"cut", kLines},

        {"{}{}", kSequence},
        {"{} {}\n", kSequence},
        {"1 2", kSequence},
        {"\"a\"\"b\"", kSequence},
        {"true[", kSequence},
        {"{\n}\n{\n}\n", kSequence},
        {"{}\n{\n}\n", kSequence},
        {"{\n}\n{}\n", kSequence},
        {"{}\n{} {}", kSequence},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(qvej::textFormOf(c.text), c.form) << c.text;
    }
}

}  // namespace
