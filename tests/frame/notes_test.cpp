// Every note of the engine, known by its format: each is seen in a scenario, and none is seen, or
// stands in a source, that is not in the list, notes.txt.
#include "automap/map_dump.h"
#include "core/note.h"
#include "core/text.h"
#include "scan/events.h"
#include "scan/nesting.h"
#include "scan/record_block.h"
#include "scan/record_stream.h"
#include "testkit/testkit.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

namespace jmap::test {
namespace {

using Texts = std::set<std::string>;

template <class... Text>
Texts texts(Text... text) {
    return {text...};
}

// In one of the sets only.
Texts difference(const Texts& a, const Texts& b) {
    Texts found;
    std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(),
                                  std::inserter(found, found.end()));
    return found;
}

void readEverything(const Scan& scan) {
    JMAPTableh table = nullptr;
    while (jmapNextTable(scan.automap(), &table) == QV_OK) {
        QVEJMAPReadContexth rctx = nullptr;
        ASSERT_QV_OK(jmapReadTable(scan.doc(), table, nullptr, &rctx));
        (void)(Scan::rowsOf(scan.engine(), rctx) + Scan::rowsOf(scan.engine(), rctx));
        EXPECT_QV_OK(scan.engine()->ReadReset(rctx));
        EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    }
}

// Brings about what only damage and a user's map would.
void damage(const Scan& scan) {
    JMAP_PRIVATE* p = scan.p();
    VARINFO* column = p->automap->dshead->vtail;
    USERVARINFO user{};
    user.label = user.format;
    user.labelLen = user.formatLen = user.informatLen = 1;
    column->user = &user;
    column->retain = true;
    EXPECT_QV_OK(dumpMap2(p, p->automap, "TEST"));
    column->user = nullptr;
    column->type = VAR_FAKEVARIABLE;
    EXPECT_QV_OK(dumpMap(p));
    p->debugLevel = true;
    ASSERT_QV_OK(newLevel(p, static_cast<WHAT>(9)));
    ASSERT_QV_OK(newLevel(p, WHAT_ARRAY));
    EXPECT_QV(QV_NOMEM, Events<RecordSink>::gotValue(p, "x", static_cast<VALTYPE>(9)));
    BLOCKREADER reader{};
    reader.p = p;
    std::string block(kBlockBytes, '\0');
    p->chead->uncompressedLen -= 1;
    EXPECT_QV_OK(uncompressPathBuffer(&reader, p->chead, block.data()));
    p->chead->bufLen -= 1;
    EXPECT_QV(QV_NOMEM, uncompressPathBuffer(&reader, p->chead, block.data()));
    p->zlibh->deflate = [](QVZStream*, int) { return 0; };  // never comes to an end
    p->cBufi = 1;
    EXPECT_QV(QV_NOMEM, compressPathBuffer(p));
}

// A map whose second character column is too short, then one with a mistake.
void readMaps(const Scan& scan) {
    const std::string column = R"({"NAME":"c","TYPE":"CHARACTER","PATH":"/root/s")";
    const std::string map = R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[)" +
                            column + R"(,"INFORMAT":["I"]},)" + column + R"(,"LENGTH":1},)";
    EXPECT_QV_OK(scan.readMap(map + R"({"NAME":"n","TYPE":"NUMERIC","OPTIONS":["RETAIN"]}]}]})"));
    QVMemPtr user = nullptr;
    EXPECT_QV_OK(scan.engine()->GetUserMap(scan.doc(), &user, nullptr, nullptr));
    EXPECT_QV(JMAP_MAP_COLUMNKEY, scan.readMap(map + "{\"NOTE\":null"));
    EXPECT_QV(JMAP_MAP_COLUMNKEY, scan.readMap(map + "{\"NOTE\":true"));
}

struct Scenario {
    const char* name;
    std::string json;
    void (*use)(const Scan& scan) = readEverything;
    const char* keywords = ",ALL,";
};

const Scenario kScenarios[] = {
    {"scalars", R"({"s":"x","i":1,"t":true,"f":false,"n":null,"a":[1,2],"o":{}})"},
    {"mixed", R"([{},{"v":1},{"v":"x"}])"},
    {"rows", R"([{"a":{"x":1,"c":{"y":2}},"b":{"x":{"z":1}}},{"a":{}},{"a":{"x":2}}])"},
    {"sibling", R"([{"a":{"x":1},"bc":{"x":1},"b":{"x":1}}])"},
    {"deep", std::regex_replace(std::string(31, 'l'), std::regex("l"), R"({"l":)") + "1" +
                 std::string(31, '}')},
    {"mistake", "{]"},
    {"path only", R"({"a":1})", readEverything, ",PATH,"},
    {"user maps", R"({"s":"xy"})", readMaps},
    {"damage", R"({"a":1,"b":"y"})", damage, ""},
};

// No notes: names of pools, modules, trackers and of the device, words in notes, formats of names.
const Texts kOtherTexts = texts(
    "qvejmap", "qvejmap context", "qvejmap read pool", "qvejmap record cursor", "qvejson",
    "qvezlib", "qvefmt", "qvioe", "DISK    ", "pathinfo tracker", "pathinfo sub tracker",
    "dsname tracker", "path tree tracker", "qvejmap pass", "qvejmap pass tracker", "qvejmap walk",
    "NOVAL", "NUMBER", "STRING", "NULL", "BOOLEAN", "FAKE_VARIABLE", "UNKNOWN?", "TRUE", "FALSE",
    "ORDINAL", "DOUBLE", "CHAR", "UNKNOWN", "CHARACTER", "NUMERIC", "%d", "P%d");

// The host texts of a source, neighbours joined.
Texts hostTexts(const std::string& file) {
    static const std::regex kNeighbours(R"re("\s*\n\s*(U?)")re"), kText(R"re(U"([^"]*)")re");
    std::ifstream stream(file);
    const std::string source(std::istreambuf_iterator<char>(stream), {});
    const std::string joined = std::regex_replace(source, kNeighbours, "");
    return {std::sregex_token_iterator(joined.begin(), joined.end(), kText, 1), {}};
}

TEST(Notes, AreThoseOfTheListAndEachIsSeen) {
    std::ifstream list(JMAP_SOURCE_DIR "/tests/frame/notes.txt");
    Texts listed, produced, found;
    for (std::string format; std::getline(list, format);) {
        listed.insert(format);
    }
    for (const Scenario& scenario : kScenarios) {
        SCOPED_TRACE(scenario.name);
        FakeHost host;
        scenario.use(Scan(host, scenario.json, {.debug = scenario.keywords, .compress = true}));
        produced.insert(host.formats.begin(), host.formats.end());
    }
    EXPECT_EQ(difference(listed, produced), Texts{});
    produced.insert(kOtherTexts.begin(), kOtherTexts.end());
    for (const std::string folder : {"core", "scan", "automap", "mapdoc", "reader", "frame"}) {
        for (const auto& entry :
             std::filesystem::directory_iterator(JMAP_SOURCE_DIR "/src/" + folder)) {
            found.merge(hostTexts(entry.path()));
        }
    }
    EXPECT_EQ(difference(produced, found), Texts{});
}

TEST(Notes, AreWrittenToTheJournalOfTheDocumentOrNowhere) {
    static int flushes;
    flushes = 0;
    FakeHost host;
    const Scan scan(host, "{}");
    host.journal()->flush = [](QVJnlh) -> QVStatus { return ++flushes, QV_OK; };
    myLogNote(scan.p(), U"%.*hs|%d", noteLen(3), "abcdef", 7);
    scan.p()->jnl = nullptr;
    myLogNote(scan.p(), U"unheard");
    EXPECT_TRUE(host.notes == std::vector<std::string>{"abc|7"} && flushes == 1);
}

}  // namespace
}  // namespace jmap::test
