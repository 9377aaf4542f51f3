// What words lead to: files, folders, patterns.
#include "client/input/input_list.h"

#include "client/error.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Names = std::vector<std::string>;

TEST(InputList, IsWhatTheWordsLeadTo) {
    const jmap::test::ScratchFolder scratch;
    const std::string base = std::string(scratch.path) + "/";
    namespace fs = std::filesystem;
    fs::create_directories(base + "logs/deep");
    fs::create_directories(base + "none");
    fs::create_directories(base + "logs/folder.json");
    for (const char* name :
         {"b.json", "a.json", "B.JSON", "x[1].json", "x1.json", "logs/z.jsonl", "logs/note.txt",
          "logs/a.json.gz", "logs/deep/y.ndjson.zst", "logs/json", "none/readme"}) {
        (void)scratch.write(name, "{}");
    }
    fs::create_directory_symlink("..", base + "logs/deep/around");
    const struct {
        Names words;
        Names files;  // empty: a failure
        bool several;
    } cases[] = {
        {{"a.json"}, {"a.json"}, false},
        {{"missing.json"}, {"missing.json"}, false},
        {{"b.json", "a.json", "b.json"}, {"b.json", "a.json", "b.json"}, true},
        {{"?.json"}, {"a.json", "b.json"}, true},
        {{"a.*"}, {"a.json"}, true},
        {{"[aB].*"}, {"B.JSON", "a.json"}, true},
        {{"x[1].json"}, {"x[1].json"}, false},
        {{"x[12].json"}, {"x1.json"}, true},
        {{"log*", "a.json"},
         {"logs/a.json.gz", "logs/deep/y.ndjson.zst", "logs/z.jsonl", "a.json"},
         true},
        {{"logs/"}, {"logs/a.json.gz", "logs/deep/y.ndjson.zst", "logs/z.jsonl"}, true},
        {{"none"}, {}, true},
        {{"*.csv"}, {}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.words[0]);
        Names words;
        for (const std::string& word : c.words) {
            words.push_back(base + word);
        }
        try {
            const qvej::InputList list = qvej::inputList(words);
            Names files;
            for (const std::string& file : list.files) {
                EXPECT_TRUE(file.starts_with(base));
                files.push_back(file.substr(base.size()));
            }
            EXPECT_EQ(files, c.files);
            EXPECT_EQ(list.several, c.several);
        } catch (const qvej::Error& error) {
            EXPECT_TRUE(c.files.empty()) << error.what();
            EXPECT_EQ(error.file(), words[0]);
        }
    }
    EXPECT_EQ(qvej::inputList({"-"}).files, Names{"-"});
    EXPECT_FALSE(qvej::inputList({"-"}).several);
}

}  // namespace
