// Golden cases of the tool: what it prints, to the letter.
//
// Each file of tests/tool/golden/ is a list of cases that run one after the other in one fresh
// folder, which holds examples/orders.json.  A first line "# needs FILE..." adds files of examples/
// or real documents; without these the file is skipped.
//
//     # a remark
//     $ lines of the shell
//     > that go together
//       the exact standard output, each line after two blanks; TAB, CR and other control
//       characters as \t, \r, \u001b, a backslash as \\; "\c" after a last line that has no end
//     ! a line of standard error
//     ? exit code, when it is not 0
//
// QVEJMAP_REFRESH=1 rewrites the files with what the tool does now; review the difference.
#include "client/escape.h"
#include "tests/testkit/split.h"
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <sstream>

namespace jmap::test {
namespace {

const std::string kDocuments = JMAP_SOURCE_DIR "/../shared/data/";
const std::string kFolder = JMAP_SOURCE_DIR "/tests/tool/golden/";

// The further files that a golden file needs, as paths.
std::vector<std::string> neededFiles(const std::string& file) {
    constexpr std::string_view kNeeds = "# needs ";
    std::vector<std::string> paths;
    if (file.starts_with(kNeeds)) {
        std::istringstream names(file.substr(kNeeds.size(), file.find('\n') - kNeeds.size()));
        for (std::string name; names >> name;) {
            const std::string example = JMAP_SOURCE_DIR "/examples/" + name;
            paths.push_back(std::filesystem::exists(example) ? example : kDocuments + name);
        }
    }
    return paths;
}

// What a command does, as a golden file shows it.
std::string shownResult(const Workplace::Result& result) {
    std::string text;
    for (const std::string& line : split(result.out, '\n')) {
        text += "  " + qvej::escaped(line) + "\n";
    }
    if (!result.out.empty() && result.out.back() != '\n') {
        text.insert(text.size() - 1, "\\c");
    }
    for (const std::string& line : split(result.err, '\n')) {
        text += "! " + line + "\n";
    }
    return text + (result.exitCode == 0 ? "" : "? " + std::to_string(result.exitCode) + "\n");
}

// Runs the cases of a golden file and returns the file as it should be.
std::string replay(const std::string& file) {
    const Workplace place;
    for (const std::filesystem::path needed : neededFiles(file)) {
        std::filesystem::copy_file(needed, std::filesystem::path(place.path()) / needed.filename());
    }
    std::string text;
    std::string command;
    for (const std::string& line : split(file + "\n#end", '\n')) {
        const std::string mark = line.substr(0, 2);
        if (!command.empty() && mark == "> ") {
            command += line.substr(2) + "\n";
        } else if (mark == "  " || mark == "! " || mark == "? ") {
            continue;  // a result
        } else {
            text += command.empty() ? "" : shownResult(place.run(command));
            command = mark == "$ " ? line.substr(2) + "\n" : "";
        }
        text += line + "\n";
    }
    return text.substr(0, text.size() - std::string("\n#end\n").size());
}

class ToolGolden : public testing::TestWithParam<std::string> {};

TEST_P(ToolGolden, PrintsWhatTheFileSays) {
    const std::string path = kFolder + GetParam() + ".t";
    const std::string written = readFile(path);
    for (const std::string& needed : neededFiles(written)) {
        if (!std::filesystem::exists(needed)) {
            GTEST_SKIP() << needed << " is not there";
        }
    }
    const std::string found = replay(written);
    if (std::getenv("QVEJMAP_REFRESH") != nullptr) {
        std::ofstream(path, std::ios::binary) << found;
        return;
    }
    EXPECT_EQ(written, found) << path;
}

INSTANTIATE_TEST_SUITE_P(Files, ToolGolden,
                         testing::Values("account", "automap", "carry", "cells", "check", "choice",
                                         "completion", "convert", "convert_again", "databases",
                                         "dictionary", "damage", "encodings", "events", "find",
                                         "formats", "input", "inputs", "interrupt", "map",
                                         "map_check", "map_explain", "map_diff", "map_merge",
                                         "map_merge_parts", "map_mistakes", "map_use", "naming",
                                         "notes", "pictures", "plan", "read", "records", "report",
                                         "shape", "shapes", "spill", "tables", "terminal", "usage"),
                         [](const auto& file) { return file.param; });

}  // namespace
}  // namespace jmap::test
