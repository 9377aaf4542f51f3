// User maps: what a map may hold, and each mistake with its place.
#include "mapdoc/map_reader.h"

#include "core/list.h"
#include "core/text.h"
#include "testkit/testkit.h"

#include <algorithm>
#include <cstring>

namespace jmap::test {
namespace {

// Keys in any case and any order, properties given twice, every form of each property.
constexpr const char* kFullMap = R"({"datasets":[
  {"TablePath":"/x","TABLEPATH":"/root/a","DSNAME":"A table name of more than thirty-two bytes","VARIABLES":[
    {"name":"x","NAME":"First","type":"Character","PATH":"/x","PATH":"/root/a/s","LENGTH":-1,
     "CURRENT_LENGTH":7,"LABEL":"Label, kept in its case","OPTIONS":[],
     "FORMAT":["F",8,2],"FORMAT":["Fmt"],"INFORMAT":["i",9,9],"INFORMAT":["?Inf",4]},
    {"NAME":"Second","TYPE":"NUMERIC","PATH":"/root/a/n","LABLE":"y","LENGTH":-0,
     "FORMAT":["Fmt",10],"INFORMAT":["Inf",5],"OPTIONS":["NoRetain","retain"]},
    {"NAME":"Third","TYPE":"ordinal","PATH":"/root/a","OPTIONS":["RETAIN","NORETAIN"],
     "FORMAT":["Fmt",10,2],"INFORMAT":["?"]},
    {"note":"NAME","Fourth":"skip","TYPE":"NUMERIC"},
    {}]},
  {"DSNAME":"none","TABLEPATH":"","VARIABLES":[]}]} )";

// Name, kind, length, path, label, format, informat, flags.
constexpr const char* kFullMapColumns = R"(
First 2 -1 /root/a/s [Label, kept in its case] Fmt:0:0 Inf:4:0 ?
Second 1 0 /root/a/n [y] Fmt:10:0 Inf:5:0 R
Third 0 0 /root/a [] Fmt:10:2 :0:0 ?N
FOURTH 1 0  [] :0:0 :0:0 
 0 0  [] :0:0 :0:0 
)";

std::string columnText(JMAPColumnh column) {
    JMAPColumnInfo info{};
    jmapColumnInfo(column, &info);
    std::string path(static_cast<std::size_t>(info.pathLen), ' ');
    jmapColumnPath(column, path.data());
    const auto text = [](const JMAPFormat& f) {
        return std::string(view(f.name, f.nameLen)) + ":" + std::to_string(f.width) + ":" +
               std::to_string(f.decimals) + " ";
    };
    return std::string(view(info.name, info.nameLen)) + " " + std::to_string(info.type) + " " +
           std::to_string(static_cast<int64_t>(info.length)) + " " + slashes(path) + " [" +
           std::string(view(info.label, info.labelLen)) + "] " + text(info.format) +
           text(info.informat) + (info.informatNoError != 0 ? "?" : "") +
           (info.retain != 0 ? "R" : "") + (info.noretain != 0 ? "N" : "");
}

TEST(MapReader, TakesEveryPropertyInAnySplit) {
    for (const std::size_t split : {0, 1, 7}) {
        SCOPED_TRACE(split);
        const Scan scan("{}", {.debug = ",USERMAP,"});
        ERRORINFO e{};
        ASSERT_QV_OK(scan.readMap(kFullMap, split, &e));
        EXPECT_EQ(view(e.novardsname, e.novardsnameLen), "none");
        EXPECT_TRUE(e.novarCount == 1 && e.ordNoretain == 1 && e.rc == QV_OK);
        EXPECT_EQ(scan.p()->vstate, 29);  // the end
        std::string columns = "\n";
        for (VARINFO& column : each(scan.p()->usermap->dshead->vhead)) {
            columns += columnText(&column) + "\n";
        }
        EXPECT_EQ(columns, kFullMapColumns);
        JMAPTableInfo table{};
        jmapTableInfo(scan.p()->usermap->dshead, &table);
        EXPECT_EQ(table.columnCount, 5);
        const std::vector<std::string>& notes = scan.host().notes;
        EXPECT_EQ(notes.front(), "USER MAP DUMP");
        EXPECT_EQ(notes[1], " dataset     [A table name of more than thirty] 5 variables");
        EXPECT_EQ(notes[notes.size() - 3], " tablePath   []");
    }
}

struct Mistake {
    std::string text;  // "^" stands before the place that ERRORINFO tells
    QVStatus status;
    const char* badstring;
    QVStatus rc = status;
};

const std::string kTable = "{\"DATASETS\":[\n {";
const std::string kColumn = kTable + "\"VARIABLES\":[\n  {";

// All mistakes are seen in the tool; these are the words that it does not show, and places.
const Mistake kMistakes[] = {
    {" ^-5", JMAP_MAP_OBJECT, "-5"},
    {R"({"DATASETS":^{}})", JMAP_MAP_ARRAY, "DATASETS"},
    {R"({"DATASETS":["^a name that is longer than thirty-two bytes"]})", JMAP_MAP_OBJECT,
     "a name that is longer than thirt"},
    {kTable + R"("DSNAME":^1e2}]})", JMAP_MAP_INTEGER, "1e2"},
    {kTable + R"("TABLEPATH":nul^l}]})", JMAP_MAP_STRING, "TABLEPATH"},
    {kTable + R"("TABLEPATH":"/"^}]})", JMAP_MAP_NONAME, "/"},
    {kColumn + R"("NOTE":"note","NOTE":"^a note"}]}]})", JMAP_MAP_COLUMNKEY, "a note"},
    {kColumn + R"("FORMAT":["F",8,^[]]}]}]})", JMAP_MAP_INTEGER, "8"},
    {kColumn + R"("INFORMAT":["I",8,2,"^3"]}]}]})", JMAP_MAP_ELEMENTS, "3"},
    // The place is where the parser stands.
    {kColumn + R"("LENGTH":99999999999999999999^}]}]})", JMAP_PARSE, "99999999999999999999",
     QV_NOTNUM},
    {kTable + R"("DSNAME":^}]})", JMAP_PARSE, "DSNAME", QV_JSON_VALUE},
};

TEST(MapReader, TellsEachMistakeWithItsPlaceAndToken) {
    for (const Mistake& mistake : kMistakes) {
        SCOPED_TRACE(mistake.text);
        std::string text = mistake.text;
        const std::size_t place = text.find('^');
        text.erase(place, 1);
        const auto line = std::count(text.data(), text.data() + place, '\n') + 1;
        const auto lineStart = line == 1 ? 0 : text.rfind('\n', place) + 1;
        for (const std::size_t split : {0, 1}) {
            const Scan scan("{}");
            ERRORINFO e{};
            EXPECT_QV(mistake.status, scan.readMap(text, split, &e));
            EXPECT_QV(mistake.rc, e.rc);
            EXPECT_EQ(e.line, line);
            EXPECT_EQ(e.col, static_cast<int64_t>(place - lineStart + 1));
            EXPECT_EQ(view(e.badstring, e.badstringLen), mistake.badstring);
        }
    }
}

TEST(MapReader, RejectsEventsThatNoTextBringsAbout) {
    const Scan scan("{}", {.debug = ",MAPVAL,"});
    EXPECT_QV(JMAP_INCOMPLETE, scan.readMap(""));
    JSNParseCB* cb = &scan.p()->parseCB;  // still the map's
    scan.p()->vstate = 29;                // the end
    EXPECT_QV(JMAP_MAP_TRAILING, cb->objectStart(cb));
    for (const int32_t outside : {-1, 30}) {
        scan.p()->vstate = outside;
        scan.p()->vrc = QV_OK;
        EXPECT_QV(JMAP_PARSE, cb->nullx(cb));
        EXPECT_QV(QV_OK, scan.p()->vrc);
    }
    EXPECT_EQ(scan.host().notes.back(), "IN VPROBLEM");
}

TEST(MapReader, CarriesResultsOfOneMapIntoTheNext) {
    const std::string table = R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root"}]})";
    const Scan scan("{}");
    ERRORINFO e{};
    ASSERT_QV_OK(scan.readMap(table));
    const MAP* first = scan.p()->usermap;
    EXPECT_QV(JMAP_MAP_TYPE, scan.readMap(kColumn + R"("TYPE":"x")"));
    EXPECT_TRUE(scan.p()->usermap != first && scan.p()->usermap->dshead->varcount == 1);
    // A mistake of the JSON gets the code of the map before it, and the place is moved.
    EXPECT_QV(JMAP_MAP_TYPE, scan.readMap(R"({"DATASETS" 1)", 0, &e));
    EXPECT_TRUE(e.rc == QV_JSON_COLON && e.col == 13 - 9);
    EXPECT_EQ(view(e.badstring, e.badstringLen), "DATASETS");
    EXPECT_QV(JMAP_INCOMPLETE, scan.readMap("{"));
    ASSERT_QV_OK(scan.readMap(table, 0, &e));
    EXPECT_TRUE(e.novarCount == 2 && e.novardsnameLen == 1 && e.ordNoretain == 0);
    EXPECT_EQ(view(first->dshead->name, first->dshead->nameLen), "t");
}

TEST(MapReader, TreatsEachAnswerOfTheParser) {
    static QVStatus answer;
    const Scan scan("{}", {.debug = ",LEVEL,"});
    QVEJMAPMapInitParms parms{};
    std::memcpy(parms.desc, "a name of twenty-one", 20);
    parms.descLen = 21;
    QVEJMAPMapContexth ctx = nullptr;
    ASSERT_QV_OK(scan.engine()->MapInit(scan.doc(), &parms, &ctx, nullptr));
    EXPECT_EQ(scan.host().notes.back(), "Parsing of a name of twenty-one begins");
    scan.p()->mapParser->parse = [](JSNParserh, const void*, QVStrSize, QVBoolean) {
        return answer;
    };
    const auto outcome = [&](QVBoolean done, QVStatus parserAnswers) {
        answer = parserAnswers;
        scan.host().notes = {"x"};
        const QVStatus rc = scan.engine()->MapInput(ctx, nullptr, 0, done, nullptr);
        const bool ends = scan.host().notes.back() == "Parsing of a name of twenty-one ends";
        return std::string(qvStatusName(rc)) + (ends ? ", ends" : "");
    };
    EXPECT_EQ(outcome(0, QV_OK), "QV_OK");
    EXPECT_EQ(outcome(0, QV_EOF), "QV_OK");
    EXPECT_EQ(outcome(0, QV_NEEDMORE), "JMAP_PARSE");
    EXPECT_EQ(outcome(1, QV_OK), "QV_OK, ends");
    EXPECT_EQ(outcome(1, QV_NEEDMORE), "QV_OK, ends");
    EXPECT_EQ(outcome(1, QV_EOF), "JMAP_INCOMPLETE");
    EXPECT_EQ(outcome(1, QV_JSON_VALUE), "JMAP_PARSE");
    EXPECT_QV_OK(scan.engine()->MapTerm(scan.doc(), nullptr, nullptr));
    EXPECT_EQ(outcome(1, QV_OK), "QV_NOMEM");  // no parser
    scan.p()->jsonh->createParser = [](QVJSONh, const JSNParserParms*) -> JSNParserh {
        return nullptr;
    };
    EXPECT_QV(QV_NOMEM, scan.readMap("{}"));
}

TEST(MapReader, TellsWhichMemoryWasMissing) {
    // Context; scratch for keys, map, table, its path, column, its name, its path.
    const QVStatus statuses[] = {QV_NOMEM, QV_NOMEM, QV_NOMEM, JMAP_MAP_NOMEM,
                                 QV_NOMEM, QV_NOMEM, QV_NOMEM, QV_NOMEM};
    for (std::size_t n = 0; n <= std::size(statuses); ++n) {
        SCOPED_TRACE(n);
        const Scan scan("{}");
        ERRORINFO e{};
        scan.host().failAllocation(n + 1);
        const QVStatus rc = scan.readMap(
            kTable + R"("TABLEPATH":"/r","DSNAME":"t","VARIABLES":[{"NAME":"n","PATH":"p"}]}]})", 0,
            &e);
        scan.host().failAllocation(0);
        EXPECT_QV(n == 0 ? QV_NOMEM : n == std::size(statuses) ? QV_OK : JMAP_PARSE, rc);
        EXPECT_QV(n == 0 || n == std::size(statuses) ? QV_OK : statuses[n], e.rc);
        QVMemPtr map = nullptr;
        EXPECT_QV_OK(scan.engine()->GetUserMap(scan.doc(), &map, nullptr, nullptr));
        EXPECT_EQ(map == nullptr, n <= 2);
    }
}

}  // namespace
}  // namespace jmap::test
