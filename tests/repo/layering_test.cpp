// Who may include whom.  To change the architecture, change the table here.
#include "repo/includes.h"
#include "testkit/testkit.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

namespace jmap::test {
namespace {

namespace fs = std::filesystem;

// A folder and what its files may include: paths relative to the root, or <standard headers>.
struct Layer {
    std::string folder;
    std::string allowed;  // a regular expression
};

// The headers of the engine need nothing of a run-time library.
const std::string kEngine =
    R"re(|include/qv(ehost|types|status|ejmap|ejmapx)\.h)re"
    "|<(algorithm|array|bit|cassert|charconv|climits|cmath|cstdarg|cstddef|cstdint|cstring"
    "|limits|span|string_view|type_traits|utility)>";

const Layer kLayers[] = {
    {"include/", "include/.*|<.*>"},
    {"src/core/", "src/core/.*" + kEngine},
    {"src/scan/", "src/(scan|core)/.*" + kEngine},
    {"src/automap/", "src/(automap|scan|core)/.*" + kEngine},
    {"src/mapdoc/", "src/(mapdoc|automap|scan|core)/.*" + kEngine},
    {"src/reader/", "src/(reader|automap|scan|core)/.*" + kEngine},
    {"src/frame/", "src/(frame|mapdoc|reader|automap|scan|core)/.*" + kEngine},
    {"src/host/", R"re(src/host/.*|include/qv(ehost|types|status|portable)\.h|<.*>)re"},
    {"client/input/",
     R"re(client/(input/.*|(cache_file|document|error|escape|excerpt|quiet_thread)\.h))re"
     R"re(|client/(text|text_consumer|text_form)\.h|include/.*|<.*>)re"},
    {"client/shape/",
     R"re(client/(shape/.*|(error|escape|handle|text|text_form|text_relay)\.h)|include/.*|<.*>)re"},
    {"client/partition/", R"re(client/(partition/.*|text_form\.h)|<.*>)re"},
    {"client/parts/", R"re(client/((parts|partition|input)/.*|[^/]*)|include/.*|<.*>)re"},
    {"client/open/", R"re(client/((open|maps|parts|input|shape)/.*|[^/]*)|include/.*|<.*>)re"},
    {"client/ranges/",
     R"re(client/((ranges|maps|parts|partition|input|shape)/.*|[^/]*)|include/.*|<.*>)re"},
    {"client/find/", R"re(client/((find|open|input|shape)/.*|[^/]*)|include/.*|<.*>)re"},
    {"client/maps/", R"re(client/(maps/.*|[^/]*)|include/.*|<.*>)re"},
    {"client/schema/",
     R"re(client/(schema/.*|(columns|document|error|pass_pipe|row|row_work|table_pass)\.h)|include/.*|<.*>)re"},
    {"client/",
     R"re(client/([^/]*|shape/(shape|reshaper)\.h|parts/(item_batch|part_records|walked_rows)\.h)|include/.*|<.*>)re"},
    {"formats/", "(formats|client)/.*|include/.*|<.*>"},
    {"bindings/", "(bindings|formats|client)/.*|include/.*|<.*>"},
    {"tools/", "(tools|formats|client)/.*|include/.*|<.*>"},
};

// What the file of that name may include; nothing in a folder that is in no layer.
std::string allowedIn(const std::string& name) {
    const auto* layer = std::find_if(std::begin(kLayers), std::end(kLayers),
                                     [&](const Layer& l) { return name.starts_with(l.folder); });
    return layer == std::end(kLayers) ? "nothing" : layer->allowed;
}

// One line for each include that breaks a rule, sorted.
std::vector<std::string> violations(const fs::path& root) {
    std::vector<std::string> found;
    for (const fs::path& file : productFiles(root)) {
        const std::string name = fs::relative(file, root).generic_string();
        const std::regex allowed(allowedIn(name));
        for (const std::string& include : includesOf(file)) {
            if (!std::regex_match(target(root, file, include), allowed)) {
                found.push_back(name + " includes " + include);
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

TEST(Layering, EveryIncludePointsDownwards) {
    EXPECT_EQ(violations(JMAP_SOURCE_DIR), std::vector<std::string>{});
}

TEST(Layering, TheCheckFindsWhatBreaksARule) {
    constexpr struct {
        const char *file, *line;
        bool breaks;
    } kCases[] = {
        {"bindings/python/above.cpp", "#include \"tools/part.h\"", true},
        {"client/below.cpp", "#include \"client/input/own.h\"", true},
        {"client/input/beside.cpp", "#include \"client/cursor.h\"", true},
        {"client/input/own.h", "#include \"client/document.h\"", false},
        {"client/inside.cpp", "#include \"scan/own.h\"", true},
        {"formats/above.cpp", "#include \"tools/part.h\"", true},
        {"include/qvejmap.h", "#include <stdint.h>", false},
        {"include/qvportable.h", "#include \"qvejmap.h\"", false},
        {"src/core/host.h", "#include \"qvportable.h\"", true},
        {"src/extra/new.cpp", "#include <span>", true},
        {"src/frame/library.cpp", "#include <string>", true},
        {"src/mapdoc/beside.cpp", "  # include \"../reader/own.h\"", true},
        {"src/reader/own.h", "#include \"scan/own.h\"", false},
        {"src/scan/above.cpp", "#include \"reader/own.h\"", true},
        {"src/scan/own.h", "#include \"own.h\"", false},
        {"tools/part.cpp", "#include <vector>", false},
    };
    const fs::path root = scratchFile("tree");
    std::vector<std::string> expected, found;
    for (const auto& c : kCases) {
        fs::create_directories((root / c.file).parent_path());
        std::ofstream(root / c.file) << c.line << "\n";
        expected.insert(expected.end(), c.breaks ? 1 : 0, c.file);
    }
    for (const std::string& line : violations(root)) {
        found.push_back(line.substr(0, line.find(' ')));
    }
    EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace jmap::test
