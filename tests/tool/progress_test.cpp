// What is shown of a long run, and when, by a clock that the test sets.
#include "tools/cli/reports/progress.h"

#include <gtest/gtest.h>

namespace {

using qvej::cli::Progress;
using qvej::cli::ProgressForm;

struct Watched {
    explicit Watched(ProgressForm form, std::optional<uint64_t> total)
        : progress(
              form, total, [this] { return now; },
              [this](std::string_view text) { out += std::string(text) + "|"; }) {}

    // What is written until the next call.
    std::string at(double time, uint64_t bytes, uint64_t rows = 0) {
        out.clear();
        now = 100 + time;
        rows != 0 ? progress.addRows(rows) : progress.addBytes(bytes);
        return out;
    }

    double now = 100;
    std::string out;
    Progress progress;
};

TEST(Progress, DrawsALineAfterASecondAndTenTimesASecondAtMost) {
    Watched run(ProgressForm::LINE, 400'000'000);
    EXPECT_EQ(run.at(0.5, 1'000'000), "");
    EXPECT_EQ(run.at(0.99, 98'000'000), "");
    EXPECT_EQ(run.at(1, 1'000'000),
              "\r\033[Kqvejmap: 100.0 MB of 400.0 MB (25%), 100.0 MB/s, 3 s left|");
    EXPECT_EQ(run.at(1.09, 1), "");
    EXPECT_EQ(run.at(2, 300'000'000 - 1),
              "\r\033[Kqvejmap: 400.0 MB of 400.0 MB (100%), 200.0 MB/s|");
    run.now = 104;
    run.progress.begin(Progress::ROWS);
    EXPECT_EQ(run.at(4, 0, 1), "\r\033[Kqvejmap: 1 rows|");
    EXPECT_EQ(run.at(6, 0, 2'999'999), "\r\033[Kqvejmap: 3,000,000 rows, 1,500,000 rows/s|");
    run.out.clear();
    Progress::eraseAny();
    EXPECT_EQ(run.out, "\r\033[K|");
    Progress::eraseAny();
    run.progress.erase();
    EXPECT_EQ(run.out, "\r\033[K|");
}

TEST(Progress, TellsWhatIsKnown) {
    const struct {
        std::optional<uint64_t> total;
        double seconds;
        uint64_t bytes;
        const char* text;
    } cases[] = {
        {std::nullopt, 2, 1000, "1.0 kB, 500 B/s"},
        {1'000, 2, 999, "999 B of 1.0 kB (100%), 500 B/s, 0 s left"},
        {65'000'000'000, 10, 1'000'000'000, "1.0 GB of 65.0 GB (2%), 100.0 MB/s, 10:40 left"},
        {8'000'000, 2, 1'000, "1.0 kB of 8.0 MB (0%), 500 B/s, 4:26:38 left"},
        {10, 2, 30, "30 B of 10 B (300%), 15 B/s"},  // the file has grown
        {0, 2, 0, "0 B, 0 B/s"},
    };
    for (const auto& c : cases) {
        Watched run(ProgressForm::LINE, c.total);
        EXPECT_EQ(run.at(c.seconds, c.bytes), "\r\033[Kqvejmap: " + std::string(c.text) + "|");
    }
}

// Each walk counts from its own beginning; the bytes of the last one stay while rows are read.
TEST(Progress, SaysWhatIsDone) {
    const struct {
        Progress::Phase phase;
        const char* line;
        const char* json;
    } cases[] = {
        {Progress::FILES, "checking files, 40 B of 50 B (80%), 20 B/s, 1 s left",
         R"("files","bytes":40,"total":50,"rows":0)"},
        {Progress::SHAPE, "finding the shape, 40 B of 50 B (80%), 20 B/s, 1 s left",
         R"("shape","bytes":40,"total":50,"rows":0)"},
        {Progress::SCAN, "40 B of 50 B (80%), 20 B/s, 1 s left",
         R"("scan","bytes":40,"total":50,"rows":0)"},
        {Progress::TYPES, "finding types, 6 rows, 3 rows/s",
         R"("types","bytes":40,"total":50,"rows":6)"},
        {Progress::ROWS, "6 rows, 3 rows/s", R"("rows","bytes":40,"total":50,"rows":6)"},
    };
    Watched line(ProgressForm::LINE, 50);
    Watched json(ProgressForm::JSON, 50);
    double time = 10;
    for (const auto& c : cases) {
        for (Watched* run : {&line, &json}) {
            run->now = 100 + time;
            run->progress.begin(c.phase);
        }
        time += 2;
        const uint64_t bytes = c.phase < Progress::TYPES ? 40 : 0;
        const uint64_t rows = bytes == 0 ? 6 : 0;
        EXPECT_EQ(line.at(time, bytes, rows), "\r\033[Kqvejmap: " + std::string(c.line) + "|");
        const std::string text = json.at(time, bytes, rows);
        EXPECT_TRUE(text.starts_with(R"({"phase":)" + std::string(c.json))) << text;
    }
}

TEST(Progress, WritesALineOfJsonASecond) {
    Watched run(ProgressForm::JSON, 50);
    EXPECT_EQ(run.at(0.9, 10), "");
    EXPECT_EQ(run.at(1.25, 10),
              "{\"phase\":\"scan\",\"bytes\":20,\"total\":50,\"rows\":0,\"seconds\":1.2}\n|");
    EXPECT_EQ(run.at(2.2, 10), "");
    run.progress.begin(Progress::ROWS);
    EXPECT_EQ(run.at(2.5, 0, 7),
              "{\"phase\":\"rows\",\"bytes\":30,\"total\":50,\"rows\":7,\"seconds\":2.5}\n|");
    run.out.clear();
    run.progress.erase();
    EXPECT_EQ(run.out, "");

    Watched pipe(ProgressForm::JSON, std::nullopt);
    EXPECT_EQ(pipe.at(1, 3),
              "{\"phase\":\"scan\",\"bytes\":3,\"total\":null,\"rows\":0,\"seconds\":1.0}\n|");
    Watched none(ProgressForm::NONE, 50);
    EXPECT_EQ(none.at(9, 10) + none.at(10, 0, 10), "");
}

}  // namespace
