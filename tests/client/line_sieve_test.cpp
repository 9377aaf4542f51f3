// Bad lines are found and become blanks, however the text is cut.
#include "client/line_sieve.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Keeps what it gets, and must not get half a line before the end.
class Kept : public qvej::TextConsumer {
   public:
    void feed(std::string_view piece) override {
        whole = whole && (text.empty() || text.back() == '\n');
        text += piece;
    }
    void finish() override { finished = true; }
    [[nodiscard]] qvej::Place end() const override { return {}; }

    std::string text;
    bool whole = true;
    bool finished = false;
};

TEST(LineSieve, BlanksBadLinesAndTellsThem) {
    const struct {
        std::string_view text;
        std::string_view kept;
        std::string_view told;  // line:column text
    } cases[] = {
        {"", "", ""},
        {"{}\n\n 1 \r\nnull", "{}\n\n 1 \r\nnull", ""},
        {"x\n{}\n", " \n{}\n", "1:1 x|"},
        {"{}\n{\"a\":1\n{} {}\n{}\n", "{}\n      \n     \n{}\n", "2:7 {\"a\":1|3:4 {} {}|"},
        {"{}\n[1,2", "{}\n    ", "2:5 [1,2|"},
        {"\"open\n\n\"\xff\"\n1", "     \n\n   \n1", "1:6 \"open|3:2 \"\xff\"|"},
        {"1\n2 ,\r\n\n3\n}", "1\n    \n\n3\n ", "2:3 2 ,\r|5:1 }|"},
        {"[[[[]]]]\n]\n", "[[[[]]]]\n \n", "2:1 ]|"},  // too deep, but JSON
    };
    const qvej::Engine engine;
    for (const auto& c : cases) {
        for (const std::size_t piece : {1, 2, 3, 5, 100}) {
            SCOPED_TRACE(std::string(c.text) + " by " + std::to_string(piece));
            Kept kept;
            std::string told;
            const auto onBad = [&](const qvej::BadLine& bad) {
                told += std::to_string(bad.line) + ":" + std::to_string(bad.column) + " " +
                        std::string(bad.text) + "|";
                EXPECT_FALSE(bad.reason.empty());
            };
            qvej::LineSieve sieve(engine, kept, onBad, 3);
            for (std::size_t at = 0; at < c.text.size(); at += piece) {
                sieve.feed(c.text.substr(at, piece));
            }
            EXPECT_FALSE(kept.finished);
            sieve.finish();
            EXPECT_EQ(kept.text, c.kept);
            EXPECT_EQ(told, c.told);
            EXPECT_TRUE(kept.whole);
            EXPECT_TRUE(kept.finished);
        }
    }
}

}  // namespace
