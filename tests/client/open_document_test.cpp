// Documents that stay open: the ways of reading them, against records.
#include "client/open/open_document.h"

#include "client/error.h"
#include "tests/client/parts_document.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace jmap::test {
namespace {

using qvej::OpenDocument;
using qvej::OpenOptions;

// More bytes than are recorded.
std::string largeText(const char* between) {
    std::string text;
    for (int i = 0; text.size() < 5'000'000; ++i) {
        text += (i == 0 ? "" : between) + std::string(R"({"id":)") + std::to_string(i) +
                R"(,"name":")" + std::string(500, 'n') +
                R"(","items":[{"sku":"x","of":{"a":1.5}},{"sku":null}]})";
    }
    return text;
}

Lines rowsOf(const OpenDocument& open) {
    return itemsOf(open.document(), false);
}

class OpenDocuments : public ::testing::Test {
   protected:
    OpenDocuments() : folder_(std::filesystem::temp_directory_path() / "qvejmap-open-XXXXXX") {
        std::string name = folder_.string();
        folder_ = ::mkdtemp(name.data());
    }
    ~OpenDocuments() override { std::filesystem::remove_all(folder_); }
    std::string file(const std::string& name, const std::string& text) const {
        const std::string path = folder_ / name;
        std::ofstream(path) << text;
        return path;
    }
    std::filesystem::path folder_;
};

TEST_F(OpenDocuments, AreReadInTheWayThatSuitsThem) {
    const std::string array = "[" + largeText(",") + "]";
    const std::string path = file("a.json", array);
    const Lines want = rowsOf(OpenDocument({.inputs = qvej::inputList({path}), .records = true}));
    ASSERT_GT(want.size(), 10'000U);
    struct Case {
        OpenOptions options;
        const char* plan;
    };
    std::size_t at = 0;
    const qvej::Pull pull = [&]() -> std::string_view {
        const std::string_view piece =
            std::string_view(array).substr(std::min(at, array.size()), 70'000);
        at += piece.size();
        return piece;
    };
    const Case cases[] = {
        {{.inputs = qvej::inputList({path}), .threads = 2}, "counted in parts on 2 threads"},
        {{.inputs = qvej::inputList({path}), .threads = 1}, "counted as one, since --threads is 1"},
        {{.memory = array, .threads = 2}, "counted in parts on 2 threads"},
        {{.memory = array, .memoryBudget = 200'000'000, .threads = 2},
         "counted as one, since --mem"},
        {{.memory = array, .shape = "drop /root/nothing", .threads = 2},
         "counted as one, since a shape"},
        {{.pull = pull, .name = "<pipe>"}, "records, since <pipe> cannot be read again"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.plan);
        const OpenDocument open(one.options);
        EXPECT_EQ(0U, open.plan().find(one.plan)) << open.plan();
        const Lines rows = rowsOf(open);
        EXPECT_TRUE(want == rows) << rows.size();
        EXPECT_TRUE(want == rowsOf(open) || one.options.pull) << "a second walk";
    }
}

TEST_F(OpenDocuments, SayWhichInputComesOnce) {
    const std::string pipe = folder_ / "pipe";
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    std::thread writer([&] { std::ofstream(pipe) << "{}"; });
    const OpenDocument open({.inputs = {{file("a.json", R"({"a":1})"), pipe}, true}});
    writer.join();
    EXPECT_EQ("records, since " + pipe + " cannot be read again", open.plan());
}

TEST_F(OpenDocuments, TakeTheOptionsOfATool) {
    const OpenDocument lines({.memory = "{\"a\":1}\n{\"a\":2}\n", .text = {.lines = true}});
    EXPECT_EQ(2, lines.document().totals().values);
    const OpenDocument shaped(
        {.memory = R"({"x":{"k1":{"v":1},"k2":{"v":2}}})", .shape = "rows /root/x as name"});
    ASSERT_EQ(1U, shaped.document().tables().size());
    EXPECT_EQ("x", shaped.document().tables()[0].name);
    const OpenDocument mapped({.memory = R"({"a":1})", .map = R"({"DATASETS":[{"DSNAME":"t",
        "TABLEPATH":"/root","VARIABLES":[{"NAME":"b","TYPE":"NUMERIC","PATH":"/root/a"}]}]})"});
    ASSERT_EQ(1U, mapped.document().tables().size());
    EXPECT_EQ("t", mapped.document().tables()[0].name);
    const OpenDocument several(
        {.inputs = qvej::inputList({file("1.json", R"({"a":1})"), file("2.json", R"({"a":2})")})});
    ASSERT_EQ(1U, several.document().tables().size());
    EXPECT_EQ("source", several.document().tables()[0].columns[0].name);
}

TEST_F(OpenDocuments, SayWhatIsWrongAndWhere) {
    const std::string broken = "[" + largeText(",\n") + ",]";
    const std::string path = file("b.json", broken);
    struct Case {
        OpenOptions options;
        const char* file;
        bool placed;
    };
    const Case cases[] = {
        {{.inputs = qvej::inputList({path})}, "b.json", true},
        {{.inputs = qvej::inputList({path}), .shape = "auto"}, "b.json", true},
        {{.memory = broken, .threads = 1}, "<memory>", true},
        {{.memory = R"({"a":1)", .name = "text"}, "text", true},
        {{.memory = "{}", .shape = "row /root"}, "shape", true},
        {{.memory = "{}", .shape = "row /root", .shapeName = "my.rules"}, "my.rules", true},
        {{.inputs = {{path, "/dev/null"}, true}, .shape = "auto"}, "/dev/null", false},
        {{.inputs = {{path + "x", "-"}, true}, .shape = "auto"}, "<stdin>", false},
        {{.inputs = {{path + "x"}}, .shape = "auto"}, "b.jsonx", false},
        {{.pull = [] { return std::string_view(); }, .shape = "auto"}, "<memory>", false},
    };
    for (const Case& one : cases) {
        try {
            const OpenDocument open(one.options);
            ADD_FAILURE() << one.file;
        } catch (const qvej::Error& error) {
            EXPECT_NE(std::string::npos, error.file().find(one.file)) << error.file();
            EXPECT_EQ(one.placed, error.line() != 0) << error.what();
            EXPECT_EQ(one.file == std::string("b.jsonx"), error.status() == QV_IO_OPEN);
        }
    }
}

// Whenever it is stopped, it ends so, and a walk that is stopped leaves the document as it was.
TEST_F(OpenDocuments, EndWhenTheyAreStopped) {
    const std::string array = "[" + largeText(",") + "]";
    std::atomic<int> left = INT_MAX;
    const auto stopped = [&, asking = std::this_thread::get_id()] {
        return std::this_thread::get_id() == asking && --left < 0;
    };
    const OpenOptions ways[] = {
        {.memory = array, .threads = 2, .stopped = stopped},
        {.memory = array, .threads = 1, .stopped = stopped},
        {.memory = array, .shape = "auto", .stopped = stopped},
        {.memory = array, .records = true, .stopped = stopped},
    };
    const auto stops = [&](const std::function<void()>& work) {
        int count = 0;
        for (left = 0;; left = ++count * 3) {
            try {
                work();
                return count;
            } catch (const qvej::Error& error) {
                EXPECT_EQ(QV_STOPPED, error.status()) << error.what();
            }
        }
    };
    for (const OpenOptions& way : ways) {
        EXPECT_GT(stops([&] { const OpenDocument open(way); }), 0) << way.threads;
        left = INT_MAX;
        const OpenDocument open(way);
        const Lines want = rowsOf(open);
        const int stoppedWalks = stops([&] { (void)rowsOf(open); });
        EXPECT_TRUE(way.records || stoppedWalks > 0);  // of so few records none may be
        left = INT_MAX;
        EXPECT_EQ(want, rowsOf(open));
    }
}

}  // namespace
}  // namespace jmap::test
