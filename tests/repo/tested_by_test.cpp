// The lines "Tested by PATH" of the sources are true: each path is there, and a test in C or C++
// uses the unit.
#include "repo/includes.h"
#include "testkit/testkit.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace jmap::test {
namespace {

namespace fs = std::filesystem;

// Units that are called through tables of functions, which no include leads to: the tests that do.
const std::pair<std::string, std::regex> kThroughTables[] = {
    {"src/frame/", std::regex("tests/(frame|abi|automap)/.*")},
    {"src/host/", std::regex("tests/(host|json|frame)/.*")},
    {"include/", std::regex("tests/.*")},
};

// The paths of the paragraph that begins with "Tested by"; a name alone is no path.
std::vector<std::string> testsNamed(const fs::path& file) {
    static const std::regex kPath(R"re([\w/]+(?:\.(?:cpp|c|t|py|sh)\b|/))re");
    std::ifstream lines(file);
    std::string paragraph, line;
    while (std::getline(lines, line) && line.find("Tested by ") == std::string::npos) {
    }
    static const std::regex kText(R"re(^ ?(//|\*) ?\S.*)re");
    while (std::regex_match(line, kText) && line.find("*/") == std::string::npos) {
        paragraph += line.substr(std::min<size_t>(line.size(), 3)) + "\n";
        if (!std::getline(lines, line)) {
            break;
        }
    }
    return {std::sregex_token_iterator(paragraph.begin(), paragraph.end(), kPath), {}};
}

class Tree {
   public:
    explicit Tree(fs::path root) : root_(std::move(root)) {}

    // One line for each claim that is not true, sorted.
    std::vector<std::string> falseClaims() {
        std::vector<std::string> found;
        for (const fs::path& file : productFiles(root_)) {
            const std::string unit = fs::relative(file, root_).generic_string();
            for (const std::string& test : testsNamed(file)) {
                if (!fs::exists(root_ / test)) {
                    found.push_back(unit + ": there is no " + test);
                } else if (!uses(test, unit)) {
                    found.push_back(unit + ": is not used by " + test);
                }
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }

   private:
    // Whether the test reaches the unit through what it includes and the sources of that.
    bool uses(const std::string& test, const std::string& unit) {
        const fs::path extension = fs::path(test).extension();
        if (!test.starts_with("tests/") || (extension != ".cpp" && extension != ".c")) {
            return true;
        }
        for (const auto& [units, tests] : kThroughTables) {
            if (unit.starts_with(units)) {
                return std::regex_match(test, tests) || reached(test).contains(unit);
            }
        }
        return reached(test).contains(unit);
    }

    const std::set<std::string>& reached(const std::string& test) {
        const auto [at, isNew] = reached_.try_emplace(test);
        if (isNew) {
            reach(test, at->second);
        }
        return at->second;
    }

    void reach(const std::string& file, std::set<std::string>& all) {
        if (!fs::is_regular_file(root_ / file) || !all.insert(file).second) {
            return;
        }
        for (const std::string& include : includesOf(root_ / file)) {
            const std::string header = target(root_, root_ / file, include);
            reach(header, all);
            reach(fs::path(header).replace_extension(".cpp").generic_string(), all);
        }
    }

    fs::path root_;
    std::map<std::string, std::set<std::string>> reached_;
};

TEST(TestedBy, EveryTestIsThereAndUsesTheUnit) {
    EXPECT_EQ(Tree(JMAP_SOURCE_DIR).falseClaims(), std::vector<std::string>{});
}

TEST(TestedBy, TheCheckFindsWhatIsNotTrue) {
    constexpr const char* kFiles[][2] = {
        {"tests/scan/a_test.cpp", "#include \"scan/a.h\"\n"},
        {"tests/tool/golden/a.t", ""},
        {"src/scan/a.h", "// Tested by tests/scan/a_test.cpp\n"},
        {"src/scan/a.cpp", "// Tested by tests/scan/a_test.cpp\n#include \"below.h\"\n"},
        {"src/scan/below.h", "// A.\n//\n// Tested by tests/scan/a_test.cpp and tests/tool/\n"},
        {"src/scan/beside.h", "// Tested by tests/scan/a_test.cpp\n"},
        {"src/scan/gone.h",
         "// Tested by tests/tool/golden/a.t and\n// tests/scan/gone_test.cpp\n"},
        {"src/host/own.cpp", "// Tested by tests/scan/a_test.cpp\n"},
        {"include/all.h", "/* A.\n *\n * Tested by tests/scan/\n */\n"},
    };
    const fs::path root = scratchFile("tree");
    for (const auto& [file, text] : kFiles) {
        fs::create_directories((root / file).parent_path());
        std::ofstream(root / file) << text;
    }
    EXPECT_EQ(Tree(root).falseClaims(),
              (std::vector<std::string>{"src/host/own.cpp: is not used by tests/scan/a_test.cpp",
                                        "src/scan/beside.h: is not used by tests/scan/a_test.cpp",
                                        "src/scan/gone.h: there is no tests/scan/gone_test.cpp"}));
}

}  // namespace
}  // namespace jmap::test
