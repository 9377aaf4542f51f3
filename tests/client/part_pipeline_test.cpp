// Parts on several threads: order, failures, limits.
#include "client/parts/part_pipeline.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

using Line = qvej::PartPipeline<std::string>;

// Parts of `pieces` pieces each, whose texts are numbers.
Line::Read numbered(int parts, int pieces) {
    return [=](const qvej::TakePart& take) {
        for (int i = 0; i < parts * pieces; ++i) {
            qvej::TextPart piece;
            piece.partition.text = std::to_string(i);
            piece.endsPart = i % pieces == pieces - 1;
            take(std::move(piece));
        }
    };
}

// Gives the text of each piece back, and again at the end of its part.
class Echo final : public Line::Worker {
   public:
    Echo(Line::Put put, std::string bad) : put_(std::move(put)), bad_(std::move(bad)) {}
    void feed(qvej::TextPart piece) override {
        texts_ += piece.partition.text;
        put_(piece.partition.text);
        if (piece.partition.text == bad_) {
            throw std::runtime_error("bad");
        }
    }
    void finish() override { put_("end " + texts_); }

   private:
    const Line::Put put_;
    const std::string bad_;  // a text that makes it fail
    std::string texts_;
};
Line::Make echo(const std::string& bad = "none") {
    return [bad](Line::Put put) { return std::make_unique<Echo>(std::move(put), bad); };
}

// What comes of that.
std::vector<std::string> echoed(int parts, int pieces) {
    std::vector<std::string> results;
    for (int i = 0; i < parts; ++i) {
        std::string texts;
        for (int k = 0; k < pieces; ++k) {
            texts += results.emplace_back(std::to_string(i * pieces + k));
        }
        results.push_back("end " + texts);
    }
    return results;
}

TEST(PartPipeline, GivesTheResultsInOrderWhateverItsThreadsDo) {
    for (const unsigned workers : {1U, 2U, 7U}) {
        Line line(numbered(40, 9), workers, echo());
        std::string result;
        for (const std::string& want : echoed(40, 9)) {
            ASSERT_TRUE(line.next(result));
            ASSERT_EQ(want, result);
        }
        EXPECT_FALSE(line.next(result));
        EXPECT_FALSE(line.next(result));
    }
    std::vector<std::string> alone;
    Line::run(numbered(40, 9), echo(), [&](std::string result) { alone.push_back(result); });
    EXPECT_EQ(echoed(40, 9), alone);
}

TEST(PartPipeline, ThrowsAFailureAfterWhatCameBeforeIt) {
    for (const unsigned workers : {1U, 2U, 7U}) {
        for (const int bad : {0, 1, 12, 19}) {
            Line line(numbered(20, 5), workers, echo(std::to_string(5 * bad)));
            std::string result;
            for (const std::string& want : echoed(bad, 5)) {
                ASSERT_TRUE(line.next(result));
                EXPECT_EQ(want, result);
            }
            ASSERT_TRUE(line.next(result));
            EXPECT_EQ(std::to_string(5 * bad), result);
            EXPECT_THROW((void)line.next(result), std::runtime_error);
            EXPECT_THROW((void)line.next(result), std::runtime_error);
        }
    }
}

TEST(PartPipeline, HoldsAFewParts) {
    std::atomic<int> taken = 0;
    Line line(
        [&](const qvej::TakePart& take) {
            for (int i = 0; i < 1000; ++i) {
                take({});
                ++taken;
            }
        },
        2, echo());
    std::string result;
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(line.next(result) && line.next(result));
        ASSERT_LE(taken, i + 1 + 5) << "two workers, and two more parts";
    }
}

#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
// Of so many workers the last ones get no memory for their stacks.
TEST(PartPipeline, FailsWithoutThreads) {
    rlimit before = {};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_AS, &before));
    std::size_t pages = 0;
    ASSERT_TRUE(std::ifstream("/proc/self/statm") >> pages);
    rlimit less = before;
    less.rlim_cur = pages * 4096 + (rlim_t{100} << 20);
    ASSERT_EQ(0, ::setrlimit(RLIMIT_AS, &less));
    EXPECT_THROW(Line(numbered(40, 9), 100, echo()), qvej::Error);
    ASSERT_EQ(0, ::setrlimit(RLIMIT_AS, &before));
}
#endif

}  // namespace
