// User maps: what a map may hold, and each mistake with its place.
#include "mapdoc/map_reader.h"

#include "core/list.h"
#include "core/text.h"
#include "testkit/read_only_text.h"
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
    const auto text = [](const JMAPFormat& f) {
        return std::string(view(f.name, f.nameLen)) + ":" + std::to_string(f.width) + ":" +
               std::to_string(f.decimals) + " ";
    };
    return std::string(view(info.name, info.nameLen)) + " " + std::to_string(info.type) + " " +
           std::to_string(static_cast<int64_t>(info.length)) + " " +
           slashes(view(info.path, info.pathLen)) + " [" +
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

const Mistake kMistakes[] = {
    {"^[", JMAP_MAP_OBJECT, ""},
    {" ^-5", JMAP_MAP_OBJECT, "-5"},
    {"{^}", JMAP_MAP_DATASETS, ""},
    {R"({"^tables":[]})", JMAP_MAP_DATASETS, "TABLES"},
    {R"({"DATASETS":^{}})", JMAP_MAP_ARRAY, "DATASETS"},
    {R"({"DATASETS":["^a name that is longer than thirty-two bytes"]})", JMAP_MAP_OBJECT,
     "a name that is longer than thirt"},
    {R"({"DATASETS":[^]})", JMAP_MAP_EMPTY, "DATASETS"},
    {kTable + R"("DSNAME":"x","TABLEPATH":"/"}],"^more":1})", JMAP_MAP_TRAILING, "MORE"},

    {kTable + R"("^name":"x"}]})", JMAP_MAP_TABLEKEY, "NAME"},
    {kTable + R"("^a key that is longer than thirty-two bytes":1}]})", JMAP_MAP_TABLEKEY,
     "A KEY THAT IS LONGER THAN THIRTY"},
    {kTable + R"("DSNAME":^12}]})", JMAP_MAP_STRING, "12"},
    {kTable + R"("DSNAME":^1e2}]})", JMAP_MAP_INTEGER, "1e2"},
    {kTable + R"("TABLEPATH":nul^l}]})", JMAP_MAP_STRING, "TABLEPATH"},
    {kTable + R"("VARIABLES":"^x"}]})", JMAP_MAP_ARRAY, "x"},
    {kTable + R"("VARIABLES":[tru^e]}]})", JMAP_MAP_OBJECT, "VARIABLES"},
    {kTable + R"("TABLEPATH":"/"^}]})", JMAP_MAP_NONAME, "/"},
    {kTable + R"("DSNAME":"","TABLEPATH":"/"^}]})", JMAP_MAP_NONAME, "/"},
    {kTable + R"("DSNAME":"x"^}]})", JMAP_MAP_NOPATH, "x"},

    {kColumn + R"("^colour":1}]}]})", JMAP_MAP_COLUMNKEY, "COLOUR"},
    {kColumn + R"("NOTE":"note","NOTE":"^a note"}]}]})", JMAP_MAP_COLUMNKEY, "a note"},
    {kColumn + R"("NOTE":^1}]}]})", JMAP_MAP_COLUMNKEY, "1"},
    {kColumn + R"("NAME":^[]}]}]})", JMAP_MAP_STRING, "NAME"},
    {kColumn + R"("TYPE":fals^e}]}]})", JMAP_MAP_STRING, "TYPE"},
    {kColumn + R"("TYPE":"^Number"}]}]})", JMAP_MAP_TYPE, "Number"},
    {kColumn + R"("PATH":^7}]}]})", JMAP_MAP_STRING, "7"},
    {kColumn + R"("LABEL":^{}}]}]})", JMAP_MAP_STRING, "LABEL"},
    {kColumn + R"("LENGTH":"^8"}]}]})", JMAP_MAP_INTEGER, "8"},
    {kColumn + R"("CURRENT_LENGTH":^[]}]}]})", JMAP_MAP_INTEGER, "CURRENT_LENGTH"},
    {kColumn + R"("FORMAT":"^F"}]}]})", JMAP_MAP_ARRAY, "F"},
    {kColumn + R"("FORMAT":[^]}]}]})", JMAP_MAP_STRING, "FORMAT"},
    {kColumn + R"("FORMAT":["F","^8"]}]}]})", JMAP_MAP_INTEGER, "8"},
    {kColumn + R"("FORMAT":["F",8,^[]]}]}]})", JMAP_MAP_INTEGER, "8"},
    {kColumn + R"("FORMAT":["F",8,2,^3]}]}]})", JMAP_MAP_ELEMENTS, "3"},
    {kColumn + R"("INFORMAT":^1}]}]})", JMAP_MAP_ARRAY, "1"},
    {kColumn + R"("INFORMAT":[^1]}]}]})", JMAP_MAP_STRING, "1"},
    {kColumn + R"("INFORMAT":["I",^{}]}]}]})", JMAP_MAP_INTEGER, "I"},
    {kColumn + R"("INFORMAT":["I",8,"^2"]}]}]})", JMAP_MAP_INTEGER, "2"},
    {kColumn + R"("INFORMAT":["I",8,2,"^3"]}]}]})", JMAP_MAP_ELEMENTS, "3"},
    {kColumn + R"("OPTIONS":"^RETAIN"}]}]})", JMAP_MAP_ARRAY, "RETAIN"},
    {kColumn + R"("OPTIONS":[^1]}]}]})", JMAP_MAP_STRING, "1"},
    {kColumn + R"("OPTIONS":["RETAIN","^Keep"]}]}]})", JMAP_MAP_OPTION, "Keep"},

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

TEST(MapReader, TracesEventsStatesAndValues) {
    const Scan scan("{}", {.debug = ",MAPVAL,"});
    const QVStatus rc =
        scan.readMap(R"({"DATASETS":[{"dsname":"T","VARIABLES":[{"Note":"skip","LENGTH":3},)"
                     R"({"OPTIONS":["retain",true]}]}]})");
    EXPECT_QV(JMAP_MAP_STRING, rc);
    std::string trace;
    for (const std::string& note : scan.host().notes) {
        trace += note.starts_with("---") ? "\n" + note.substr(3) : "; " + note;
    }
    EXPECT_EQ(trace, R"(
Object Start; vstate to S_WANT_DATASETS
fstring [DATASETS]; vstate to S_WANT_DATASETS_OPEN
Array Start; vstate to S_IN_DATASETS
Object Start; vstate to S_IN_A_DATASET
fstring [DSNAME]; vstate to S_WANT_DSNAMESTR
fstring [T]; vstate to S_IN_A_DATASET;           DSNAME <- T
fstring [VARIABLES]; vstate to S_WANT_VARIABLES_OPEN
Array Start; vstate to S_IN_VARIABLES
Object Start; vstate to S_IN_A_VARIABLE
fstring [NOTE]
fstring [skip]
fstring [LENGTH]; vstate to S_WANT_LENGTHNUM
fnumber [3]; vstate to S_IN_A_VARIABLE;           LENGTH <- 3
Object End; vstate to S_IN_VARIABLES
Object Start; vstate to S_IN_A_VARIABLE
fstring [OPTIONS]; vstate to S_WANT_OPTIONS_OPEN
Array Start; vstate to S_WANT_OPTIONSTR
fstring [retain];           OPTION <- RETAIN
fboolean; IN VPROBLEM)");
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

TEST(MapReader, OnlyReadsTheCallersBuffer) {
    const ReadOnlyText map(R"({"datasets":[{"dsname":"t","tablepath":"/root"}]})");
    EXPECT_QV_OK(Scan("{}").readMap(map.view()));
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

TEST(MapReader, ReadsBackWhatWasWritten) {
    const auto rows = [](const Scan& scan) {
        std::string all;
        for (const DSINFO& ds : each(scan.p()->automap->dshead)) {
            all += scan.rows(view(ds.name, ds.nameLen));
        }
        return all;
    };
    const std::optional<std::string> events = sharedFile("github_events.json");
    for (const std::string& json :
         {std::string(
              R"({"a":[{"s":"x","n":[1,"é"],"o":{"b":true}},{"s":"longer","n":[2]}],"z":null})"),
          events.value_or("[1]")}) {
        const Scan scan(json);
        const std::string written = scan.mapDocument(), expected = rows(scan);
        ASSERT_QV_OK(scan.readMap(written, 4096));
        QVMemPtr map = nullptr;
        ASSERT_QV_OK(scan.engine()->GetUserMap(scan.doc(), &map, nullptr, nullptr));
        scan.p()->automap = static_cast<MAP*>(map);
        EXPECT_TRUE(scan.mapDocument() == written && rows(scan) == expected) << written;
    }
    if (!events) {
        GTEST_SKIP() << "../shared/data/github_events.json is not there";
    }
}

}  // namespace
}  // namespace jmap::test
