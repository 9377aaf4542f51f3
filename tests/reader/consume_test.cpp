// What single records do to a row.
#include "reader/consume.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

// A table "t" at /r/t in an engine that notes what it reads.
struct Consume : testing::Test {
    Consume() : scan("{}", options()) { hand.table("t", "/r/t"); }
    static ScanOptions options() {
        ScanOptions o;
        o.debug = ",READ,-READINIT,";
        return o;
    }
    void open() {
        table.emplace(scan, &hand.map, "t");
        ASSERT_QV_OK(table->status);
        std::memset(table->rctx->obsbuf, '#', static_cast<size_t>(table->rctx->obsbufLen));
    }
    // Offers a marker; whether it ended the row.
    bool only(std::string_view path) {
        const std::string text = internalPath(path);
        bool done = false;
        EXPECT_QV_OK(consumePathOnly(table->rctx, text.data(), lengthOf(text), &done));
        return done;
    }
    QVStatus var(std::string_view path, std::string_view value, VALTYPE kind) {
        const std::string text = internalPath(path);
        bool done = false;
        const QVStatus rc = consumePathVar(table->rctx, text.data(), lengthOf(text), value.data(),
                                           lengthOf(value), &done, kind);
        EXPECT_FALSE(done);
        return rc;
    }
    Names& notes() { return scan.host().notes; }

    Scan scan;
    HandMap hand;
    std::optional<OpenTable> table;
};

TEST_F(Consume, MarkersDecideAboutTheRowAndSayWhy) {
    hand.column("x", VAR_DOUBLE, "/r/t/x");
    open();
    const struct {
        const char* path;
        bool seen, inVariables, done;
        std::string note;
    } cases[] = {
        {"/r/t/x", false, true, false, ""},
        {"/r", true, false, true, "path [/r] < tablePath [/r/t] so DONE"},
        {"/r/t/x", true, true, false, "path [/r/t/x] contains tablePath [/r/t] so NOT DONE"},
        {"/r/tx", true, true, true, "path [/r/tx] doesn't contain tablePath [/r/t] so DONE"},
        {"/r/ux", true, true, true, "path [/r/ux] doesn't contain tablePath [/r/t] so DONE"},
        {"/r/t", false, false, false, "tablePath [/r/t] seen ONCE"},
        {"/r/t", true, true, true, "tablePath [/r/t] seen TWICE so DONE"},
        {"/r/t", true, false, false, "tablePath [/r/t] seen TWICE but not inVariables"},
        {"/r/u", false, false, false, ""},
        {"/r/u", true, false, true, "path [/r/u] doesn't contain tablePath [/r/t] so DONE"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.path << " " << c.seen << c.inVariables);
        notes().assign(1, "");
        table->rp()->tablePathSeen = c.seen;
        table->rp()->inVariables = c.inVariables;
        EXPECT_EQ(only(c.path), c.done);
        EXPECT_EQ(notes().back(), c.note.empty() ? "" : "consumePathOnly[t] " + c.note);
        EXPECT_EQ(table->rp()->tablePathSeen, c.seen || std::string_view(c.path) == "/r/t");
        EXPECT_EQ(table->rp()->inVariables, c.inVariables);
    }
}

TEST_F(Consume, MarkersCountTheOrdinalsOfTheirPath) {
    for (const char* name : {"a", "b"}) {
        hand.column(name, VAR_ORDINAL, "/r/t");
    }
    open();
    EXPECT_FALSE(only("/r/t"));
    EXPECT_TRUE(table->rp()->inVariables);  // in a table of ordinals counting is a value
    hand.column("x", VAR_DOUBLE, "/r/t");
    hand.column("c", VAR_ORDINAL, "/r");
    open();
    EXPECT_FALSE(only("/r/t"));
    EXPECT_FALSE(only("/r/t"));
    EXPECT_TRUE(only("/r"));  // ends the row, so it is not counted yet
    EXPECT_EQ(table->cell(0) + table->cell(1), "22");
    EXPECT_EQ(table->rp()->varinfo[3].ordinalValue, 0u);
    EXPECT_FALSE(table->rp()->inVariables);
}

TEST_F(Consume, ValuesReachEveryColumnOfThePathAsNumberAndAsText) {
    hand.column("x", VAR_DOUBLE, "/r/t/x");
    hand.column("o", VAR_ORDINAL, "/r/t/x");
    hand.column("c", VAR_CHAR, "/r/t/x", 3);
    hand.column("y", VAR_CHAR, "/r/t/y", 1);
    hand.column("f", VAR_FAKEVARIABLE, "/r/t/x", 4);
    open();
    EXPECT_QV_OK(var("/r/t/x", "VAR", VAL_FAKEVARIABLE));
    EXPECT_QV_OK(var("/r/t/X", "5", VAL_NUMBER));
    EXPECT_FALSE(table->rp()->inVariables);
    const struct {
        std::string value;
        VALTYPE kind;
        const char *number, *text, *note;
        QVStatus status = QV_NOTNUM;
        bool bad = false;
    } cases[] = {
        {"-1.5e2", VAL_NUMBER, "-150", "-1.", "[-1.5e2]", QV_OK},
        {"12", VAL_STRING, "12", "12 ", "[12]", QV_OK},
        {"1e999", VAL_NUMBER, "inf", "1e9", "[1e999]", QV_OK},
        {"true", VAL_BOOLEAN, "1", "tru", "1 (true)"},
        {"true", VAL_STRING, "1", "tru", "1 (true)"},
        {"false", VAL_BOOLEAN, "0", "fal", "0 (false)"},
        {"null", VAL_NULL, "~", "   ", "MISSING (null)"},
        {"null", VAL_STRING, "~", "nul", "MISSING (null)"},
        {"True", VAL_STRING, "0", "Tru", "[True]", QV_NOTNUM, true},
        {" 1", VAL_STRING, "0", " 1 ", "[ 1]", QV_NOTNUM, true},
        {"", VAL_STRING, "0", "   ", "[]", QV_NOTNUM, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        notes().clear();
        table->rp()->inVariables = false;
        table->rctx->varinfo[0].badNumData = 0;
        EXPECT_QV(c.status, var("/r/t/x", c.value, c.kind));
        EXPECT_EQ(table->cell(0), c.number);
        EXPECT_EQ(table->cell(2), c.text);
        EXPECT_EQ(table->rctx->varinfo[0].badNumData != 0, c.bad);
        const std::string who = "consumePathVar [t] ";
        EXPECT_EQ(notes(),
                  (Names{who + "[x] set to " + c.note, who + "[c] set to [" + c.value + "]"}));
        EXPECT_TRUE(table->rp()->inVariables);
    }
    EXPECT_EQ(table->cell(3) + table->cell(4), "#####");
    EXPECT_EQ(table->rp()->varinfo[1].ordinalValue, 0u);
}

TEST_F(Consume, AnotherFailureOfTheConversionEndsTheCall) {
    hand.column("x", VAR_DOUBLE, "/r/t/x");
    hand.column("c", VAR_CHAR, "/r/t/x", 4);
    open();
    QVStringServiceh smh = scan.p()->smh;
    const auto toDouble = smh->toDouble;
    smh->toDouble = [](QVStringServiceh, const char*, QVStrSize, double*, QVStrSize*) {
        return QV_INTERNAL;
    };
    EXPECT_QV(QV_INTERNAL, var("/r/t/x", "5", VAL_NUMBER));
    EXPECT_EQ(table->cell(0), "0");
    EXPECT_EQ(table->cell(1), "####");
    EXPECT_QV(QV_INTERNAL, var("/r/t/x", "true", VAL_BOOLEAN));  // a word goes on
    EXPECT_EQ(table->cell(1), "true");
    smh->toDouble = toDouble;
}

TEST_F(Consume, AnInformattedColumnKeepsTheRawText) {
    HandMap::informat(hand.column("x", VAR_DOUBLE, "/r/t/x"));
    open();
    VARIABLEINFO& info = table->rctx->varinfo[0];
    EXPECT_QV_OK(var("/r/t/x", "2001-01-01", VAL_STRING));
    EXPECT_EQ(view(info.rawdata, info.rawdataLen), "2001-01-01");
    EXPECT_EQ(info.rawdataAlloc, 20);
    EXPECT_QV_OK(var("/r/t/x", "", VAL_STRING));
    EXPECT_EQ(info.rawdataLen, 0);
    EXPECT_EQ(info.rawdataAlloc, 20);
    EXPECT_TRUE(table->rp()->inVariables);
    EXPECT_EQ(std::string(table->rctx->obsbuf, 8), "########");
    scan.host().failAllocation(1);
    EXPECT_QV(QV_NOMEM, var("/r/t/x", std::string(21, 'x'), VAL_STRING));
    EXPECT_QV_OK(var("/r/t/x", "again", VAL_STRING));
    EXPECT_EQ(view(info.rawdata, info.rawdataLen), "again");
}

TEST(ConsumeAlldata, ReadsLabelsNoFurtherThanTheTextAndSkipsPlaceholdersAndTheRoot) {
    // Longest labels 3 and 2, longest value 4.
    const Scan scan(R"({"abc":{"de":"wxyz"}})");
    const OpenTable table(scan, "ALLDATA");
    ASSERT_QV_OK(table.status);
    JMAP_PRIVATE* p = scan.p();
    const struct {
        const char* text;
        std::string_view value;
        std::vector<int32_t> labelLens;
        VALTYPE kind;
        const char* row;  // cells with blanks; '#' is what the row held
    } cases[] = {
        {"/root/abc/de wxyz", "wxyz", {3, 2}, VAL_STRING, "2|abc|de|1|wxyz"},
        {"/root/a 12", "12", {1}, VAL_NUMBER, "1|a##|##|1|12##"},
        {"/root/ab", "", {2}, VAL_NOVAL, "1|ab#|##|0|####"},
        {"/root/ab x", "x", {9, 9}, VAL_STRING, "2|ab |##|1|x###"},  // a length past the end
        {"/root x", "x", {1, 1}, VAL_STRING, "2|x##|##|1|x###"},     // too many labels
        {"/root", "", {1}, VAL_NOVAL, "1|###|##|0|####"},            // not even a first label
        // More labels than columns.
        {"/root/a/b/c/dd x", "x", {1, 1, 1, 2}, VAL_STRING, "4|a##|b#|1|x###"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::memset(table.rctx->obsbuf, '#', static_cast<size_t>(table.rctx->obsbufLen));
        p->labelCount = static_cast<int32_t>(c.labelLens.size());
        std::copy(c.labelLens.begin(), c.labelLens.end(), p->labelCurLens);
        const std::string text = internalPath(c.text);
        bool done = false;
        EXPECT_QV_OK(consumePathAlldata(table.rctx, text.data(), lengthOf(text), c.value.data(),
                                        lengthOf(c.value), &done, c.kind));
        EXPECT_TRUE(done);
        std::string row;
        for (int64_t i = 0; i < table.rctx->varCount; ++i) {
            row += (i == 0 ? "" : "|") + table.cell(i);
        }
        EXPECT_EQ(row, c.row);
    }
    p->labelCount = 0;
    bool done = true;
    EXPECT_QV_OK(consumePathAlldata(table.rctx, "", 0, "", 0, &done, VAL_FAKEVARIABLE));
    EXPECT_TRUE(done);  // a placeholder: not touched
    EXPECT_QV_OK(consumePathAlldata(table.rctx, "\2root", 5, nullptr, 0, &done, VAL_NOVAL));
    EXPECT_FALSE(done);  // the root
}

}  // namespace
}  // namespace jmap::test
