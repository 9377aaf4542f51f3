// Parts on several threads: order, failures, limits.
#include "client/parts/part_pipeline.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <thread>

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

// Gives each piece back, twice.
void echo(qvej::PieceSource& pieces, const Line::Put& put) {
    for (qvej::TextPart piece; pieces.next(piece);) {
        put(piece.partition.text);
        put(piece.partition.text);
    }
}

TEST(PartPipeline, GivesTheResultsInOrderWhateverItsThreadsDo) {
    for (const unsigned workers : {1U, 2U, 7U}) {
        Line line(numbered(40, 9), workers, echo);
        std::string result;
        for (int i = 0; i < 2 * 40 * 9; ++i) {
            ASSERT_TRUE(line.next(result));
            ASSERT_EQ(std::to_string(i / 2), result);
        }
        EXPECT_FALSE(line.next(result));
        EXPECT_FALSE(line.next(result));
    }
}

TEST(PartPipeline, ThrowsAFailureAfterWhatCameBeforeIt) {
    for (const unsigned workers : {1U, 2U, 7U}) {
        for (const int bad : {0, 1, 12, 19}) {
            Line line(numbered(20, 5), workers, [&](qvej::PieceSource& pieces, const auto& put) {
                for (qvej::TextPart piece; pieces.next(piece);) {
                    put(piece.partition.text);
                    if (piece.partition.text == std::to_string(5 * bad)) {
                        throw std::runtime_error("bad");
                    }
                }
            });
            std::string result;
            for (int i = 0; i <= 5 * bad; ++i) {
                ASSERT_TRUE(line.next(result));
                EXPECT_EQ(std::to_string(i), result);
            }
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
        2,
        [](qvej::PieceSource& pieces, const Line::Put& put) {
            for (qvej::TextPart piece; pieces.next(piece);) {
                put("");
            }
        });
    std::string result;
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(line.next(result));
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
    EXPECT_THROW(Line(numbered(40, 9), 100, echo), qvej::Error);
    ASSERT_EQ(0, ::setrlimit(RLIMIT_AS, &before));
}
#endif

}  // namespace
