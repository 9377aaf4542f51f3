// The C++ face: documents, tables, cells, and how failures come.
#include "qvportable.h"

#include "client/cursor.h"
#include "client/error.h"
#include "client/table_pass.h"
#include "core/context.h"
#include "core/list.h"
#include "tests/client/read_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace {

using jmap::test::ReadDocument;
using qvej::Cell;

TEST(Client, AnEngineIsOfTheVersionOfItsHeaders) {
    for (const int32_t headers : {0, QVEJMAPX_VERSION, QVEJMAPX_VERSION + 1}) {
        QVStatus status = QV_OK;
        try {
            const qvej::Engine engine(headers);
        } catch (const qvej::Error& error) {
            status = error.status();
        }
        EXPECT_EQ(status, headers == QVEJMAPX_VERSION ? QV_OK : QV_UNSUPPORTED) << headers;
    }
}

// The cells of the row, each after "|", "~" for missing.
std::string rowOf(const qvej::Cursor& cursor) {
    std::string text;
    for (std::size_t i = 0; i < cursor.columns().size(); ++i) {
        const Cell cell = cursor.cell(i);
        text += "|";
        text += cell.kind == Cell::MISSING  ? "~"
                : cell.kind == Cell::NUMBER ? std::to_string(static_cast<int>(cell.number))
                                            : std::string(cell.text);
    }
    return text;
}

// What `look` sees of a document that is fed in pieces of `size` bytes, the `failing`-th request
// for memory failing, or why it did not finish.
template <class Look>
std::string seen(qvej::Engine& engine, std::string_view text, std::size_t size, uint64_t failing,
                 const Look& look) {
    std::string found;
    try {
        qvej::Document document(engine);
        qvPortableFailAllocation(engine.host(), failing, 0);
        for (; !text.empty(); text.remove_prefix(std::min(size, text.size()))) {
            document.feed(text.substr(0, size));
        }
        document.finish();
        found = look(document);
    } catch (const qvej::Error& error) {
        found = error.what();
    }
    qvPortableFailAllocation(engine.host(), 0, 0);
    return found;
}

// Tables and columns.
std::string shapeOf(const qvej::Document& document) {
    std::string shape;
    for (const qvej::Table& table : document.tables()) {
        shape += table.name + ":";
        for (const qvej::Column& column : table.columns) {
            shape += " " + column.name;
        }
        shape += "\n";
    }
    return shape;
}

// Each request for memory fails in turn: what is missing has been told.
TEST(Client, ADocumentThatFinishesIsWhole) {
    std::string text = R"({"x\u0002y":{"p":1,"q":1},"x":{"y":{"q":2,"r":[{"s":3}]}},"wide":{)";
    for (int i = 0; i < 200; ++i) {
        text += (i == 0 ? "\"c" : ",\"c") + std::to_string(i) + "\":" + std::to_string(i);
    }
    text += R"(},"rows":[{"c1":1,"rows":{"v":true}},{"c2":"x"}]})";
    qvej::Engine engine;
    const std::string whole = seen(engine, text, text.size(), 0, shapeOf);
    std::map<std::string, int> failures;
    uint64_t failing = 1;
    for (int wholeInTurn = 0; wholeInTurn < 40; ++failing) {  // none is left to fail
        const std::string shape = seen(engine, text, text.size(), failing, shapeOf);
        wholeInTurn = shape == whole ? wholeInTurn + 1 : 0;
        failures[shape] += 1;
    }
    EXPECT_GT(failures[whole], 40);
    EXPECT_GT(failures["memory could not be obtained"], 10);
    EXPECT_GT(failures["memory ran out while the map was made: 1 table is missing"], 3);
    EXPECT_GT(failures["memory ran out while paths were looked up"], 1);
    EXPECT_EQ(failures.size(), 5U) << "besides: some number of tables is missing";
}

// Which values the last column of the first table has, after its ordinals.
std::string kindOf(const qvej::Document& document) {
    constexpr const char* kNames[] = {"BOOLEAN", "INTEGER", "DOUBLE", "TEXT", "MIXED"};
    const qvej::Columns& columns = document.tables().at(0).columns;
    EXPECT_EQ(columns[0].logicalType, qvej::LogicalType::INTEGER);
    return kNames[static_cast<std::size_t>(columns[columns.size() - 1].logicalType)];
}

TEST(Client, AColumnIsOfTheKindOfItsValues) {
    const struct {
        const char *text, *kind;
    } cases[] = {
        {R"([{"v":true},{"v":false},{"v":null}])", "BOOLEAN"},
        {R"([{"v":null}])", "DOUBLE"},
        {R"([{"v":1},{"v":null},{"v":2.5}])", "DOUBLE"},
        {R"([{"v":""},{"v":null}])", "TEXT"},
        {R"([{"v":true},{"v":1}])", "MIXED"},
        {R"([{"v":1},{"v":true}])", "MIXED"},
        {R"([{"v":true},{"v":"true"}])", "MIXED"},
        {R"([{"v":1},{"v":"1"}])", "MIXED"},
    };
    qvej::Engine engine;
    for (const auto& c : cases) {
        EXPECT_EQ(seen(engine, c.text, 1, 0, kindOf), c.kind) << c.text;
    }
}

// When there is no memory to note a second kind, the first is not taken for all.
TEST(Client, AColumnOfKindsThatWereLostIsOfNone) {
    qvej::Engine engine;
    std::map<std::string, int> kinds;
    for (uint64_t failing = 1; failing < 200; ++failing) {
        ++kinds[seen(engine, R"([{"v":true},{"v":1},{"v":true}])", 1, failing, kindOf)];
    }
    EXPECT_EQ(kinds["BOOLEAN"], 0);
    EXPECT_GT(kinds["DOUBLE"], 0);
    EXPECT_GT(kinds["MIXED"], 0);
}

TEST(Client, CursorsStandBesideEachOtherEndAndRewind) {
    const ReadDocument read(R"({"a":[{"x":7},{"x":null}],"b":[{"y":"v "},{"y":4}]})");
    qvej::Cursor a(read.document, *read.tables()[0]);
    qvej::Cursor b(read.document, *read.tables()[1]);
    ASSERT_TRUE(a.next() && b.next() && a.next());
    EXPECT_EQ(rowOf(a), "|1|2|~");
    EXPECT_EQ(rowOf(b), "|1|1|v");
    EXPECT_FALSE(a.next());
    EXPECT_FALSE(a.next());
    a.reset();
    ASSERT_TRUE(a.next());
    EXPECT_EQ(rowOf(a), "|1|1|7");
}

// What is alive in the engine's host, sorted, but for the engine itself and its modules.
std::multiset<std::string> objectsOf(qvej::Engine& engine) {
    std::multiset<std::string> objects;
    qvPortableLeftovers(
        engine.host(),
        [](void* arg, const char* kind, const char* name) {
            if (std::string_view(kind) != "module") {
                static_cast<std::multiset<std::string>*>(arg)->insert(std::string(kind) + " " +
                                                                      name);
            }
        },
        &objects);
    return objects;
}

// The cache file and the hash tables of a document that ends too soon end with it.
TEST(Client, ADocumentThatFailsLeavesNothing) {
    std::string text = R"([{"name":"x")";
    for (int i = 0; i < 200; ++i) {  // more than are found without a hash table
        text += ",\"m" + std::to_string(i) + "\":1";
    }
    text += "}";
    while (text.size() < 3'000'000) {
        text += R"(,{"name":"some text that makes records long","number":1})";
    }
    qvej::Engine engine;
    const std::multiset<std::string> before = objectsOf(engine);
    for (const char* end : {"}", "", "]"}) {
        SCOPED_TRACE(end);
        for (const bool finish : {false, true}) {
            qvej::Document document(engine, {.keepFree = UINT64_MAX});
            try {
                document.feed(text + end);
                if (finish) {
                    document.finish();
                }
            } catch (const qvej::Error&) {
                EXPECT_NE(*end, ']');
            }
            EXPECT_TRUE(finish || objectsOf(engine).contains("file json cache file"));
        }
        EXPECT_EQ(objectsOf(engine), before);
    }
}

// How many times `next` can be called, and what the calls after a failure throw.
struct Walk {
    uint64_t steps = 0;
    std::vector<QVStatus> failures;

    explicit Walk(
        const std::function<bool()>& next, const std::function<void()>& onFailure = [] {}) {
        while (failures.size() < 3) {
            try {
                if (!next()) {
                    break;
                }
                ++steps;
            } catch (const qvej::Error& error) {
                failures.push_back(error.status());
                onFailure();
            }
        }
    }
};

// Whichever of the blocks does not inflate, once, what follows it does not come as if nothing were
// missing.
TEST(Client, NothingGoesOnAfterABlockThatCannotBeLoaded) {
    std::string text = "[{}";
    for (int i = 0; i < 40'000; ++i) {
        text +=
            R"(,{"name":"some text that makes records long","number":)" + std::to_string(i) + "}";
    }
    const ReadDocument read(text + "]", {.compress = true});
    const qvej::Document& document = read.document;
    ASSERT_GT(document.totals().blocks, 3U);
    const qvej::Table& table = *read.tables()[0];
    std::string garbage(1 << 20, '\xFF');
    for (COMPPATHS& block : jmap::each(jmap::contextOf(document.handle())->chead)) {
        qvej::Cursor cursor(document, table);
        qvej::RecordCursor records(document);
        qvej::TablePass pass(document, {&table});
        qvej::Record record = {};
        qvej::PassItem item = {};
        const auto walk = [&](const std::function<bool()>& next, uint64_t whole) {
            char* const kept = std::exchange(block.buf, garbage.data());
            const Walk walked(next, [&] { block.buf = kept; });
            EXPECT_EQ(walked.failures, std::vector<QVStatus>(3, QV_NOMEM));
            EXPECT_LT(walked.steps, whole);
        };
        walk([&] { return cursor.next(); }, 40'000);
        walk([&] { return records.next(record); }, document.totals().records);
        walk([&] { return pass.next(item); }, 40'000);
        cursor.reset();
        EXPECT_EQ(Walk([&] { return cursor.next(); }).steps, 40'000U);
    }
}

}  // namespace
