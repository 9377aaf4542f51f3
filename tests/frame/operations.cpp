// See operations.h.
#include "tests/frame/operations.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <utility>

namespace jmap::test {
namespace {

// A few of everything; `rows` makes more of it than a block holds.
std::string documentOf(int rows) {
    const std::string longName(rows < 10 ? 20 : 2000, 'n');
    std::string json = R"({"name":"x","tags":[1,"two",null],"rows":[)";
    for (int i = 0; i < rows; ++i) {
        json += R"({"id":)" + std::to_string(i) +
                R"(,"sub":{"v":true},"day":"2024-02-03","none":{},")" + longName + R"(":"text"},)";
    }
    return json + R"({"id":"other"}]})";
}

constexpr const char* kMap = R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/rows","VARIABLES":[
    {"NAME":"n","TYPE":"ORDINAL","PATH":"/root/rows"},
    {"NAME":"id","TYPE":"CHARACTER","PATH":"/root/rows/id","LENGTH":9,"LABEL":"a label",
     "OPTIONS":["RETAIN"]},
    {"NAME":"day","TYPE":"CHARACTER","PATH":"/root/rows/day","INFORMAT":["upper"]},
    {"NAME":"num","TYPE":"NUMERIC","PATH":"/root/rows/day","INFORMAT":["?date",10,0],
     "FORMAT":["date",10,0]}]},
   {"DSNAME":"u","TABLEPATH":"/root","VARIABLES":[{"NAME":"n","PATH":"/root/name","TYPE":"NUMERIC"}]}
]})";

QVStatus feed(Stage& s, std::string_view text, bool done) {
    QVBoolean caching = 0;
    // The engine only reads it.
    return s.ask([&] {
        return s.engine->JsonInput(s.doc, const_cast<char*>(text.data()), lengthOf(text),
                                   done ? 1 : 0, &caching, s.jnl);
    });
}

QVStatus jsonInit(Stage& s) {
    std::string debug = s.keeping.debug;
    char alldata[] = "ALLDATA";
    std::u32string file(s.file.begin(), s.file.end());
    QVEJMAPJsonInitParms parms = {};
    parms.inCEI = U_UTF8_CE;
    parms.debugString = debug.data();
    parms.debugStringLen = lengthOf(debug);
    std::memcpy(parms.desc, "sweep", 5);
    parms.descLen = 5;
    parms.tempName = file.data();
    parms.tempNameLen = static_cast<QVStrSize>(file.size());
    parms.memLeave = s.keeping.spill ? UINT64_MAX : 0;
    parms.compress = s.keeping.compress ? 1 : 0;
    parms.ordinalCount = UINT64_MAX;
    parms.alldataName = alldata;
    parms.alldataNameLen = 7;
    return s.ask([&] { return s.engine->JsonInit(&s.engine->exth, &parms, &s.doc, s.jnl); });
}

QVStatus feedAll(Stage& s) {
    const std::string json = documentOf(s.keeping.rows);
    constexpr size_t kPiece = 5003;
    for (size_t at = 0; at < json.size(); at += kPiece) {
        const QVStatus rc = feed(s, std::string_view(json).substr(at, kPiece), false);
        if (rc != QV_OK) {
            return rc;
        }
    }
    return QV_OK;
}

QVStatus getDsName(Stage& s) {
    for (uint64_t i = 0; i < 3; ++i) {
        char name[33] = {};
        int16_t nameLen = 0;
        const QVStatus rc =
            s.ask([&] { return s.engine->GetDsName(s.doc, s.automap, i, name, &nameLen); });
        if (rc != QV_OK) {
            return rc;
        }
        s.out.append(" ").append(name, static_cast<size_t>(nameLen));
    }
    return QV_OK;
}

QVStatus getAutoMapBuf(Stage& s) {
    char* text = nullptr;
    QVStrSize textLen = 0;
    const QVStatus rc =
        s.ask([&] { return s.engine->GetAutoMapBuf(s.doc, &text, &textLen, s.jnl); });
    s.writer = true;
    s.out += rc == QV_OK ? view(text, textLen) : "";
    return rc;
}

QVStatus getAutoMapBufFree(Stage& s) {
    s.writer = false;
    return s.ask([&] { return s.engine->GetAutoMapBufFree(s.doc); });
}

QVStatus mapInput(Stage& s) {
    const std::string_view text = kMap;
    for (size_t at = 0; at < text.size(); at += 101) {
        const std::string_view piece = text.substr(at, 101);
        const QVStatus rc = s.ask([&] {
            return s.engine->MapInput(s.mapContext, const_cast<char*>(piece.data()),
                                      lengthOf(piece), at + 101 >= text.size() ? 1 : 0, s.jnl);
        });
        if (rc != QV_OK) {
            return rc;
        }
    }
    return QV_OK;
}

QVStatus mapTerm(Stage& s) {
    return s.ask([&] { return s.engine->MapTerm(s.doc, &s.mapContext, s.jnl); });
}

QVStatus getUserMap(Stage& s) {
    INFORMATINFO* info = nullptr;  // in the document's pool: the caller's choice
    QVPoolh pool = contextOf(s.doc)->cpool;
    const QVStatus rc = s.ask([&] { return s.engine->GetUserMap(s.doc, &s.userMap, pool, &info); });
    for (; info != nullptr; info = info->next) {
        s.out += " informat";
    }
    return rc;
}

// Takes what `next` gives up to the end.
template <class Next, class Take>
QVStatus takeAll(Stage& s, Next next, Take take) {
    for (;;) {
        const QVStatus rc = s.ask(next);
        if (rc != QV_OK) {
            return rc == QV_EOF ? QV_OK : rc;
        }
        take();
    }
}

// All rows.  A text that could not be kept for an informat is told to an observer only.
QVStatus readRows(Stage& s) {
    const JMAPReadObserver observer = {&s, [](void*, QVStrSize, const char*, QVStrSize) {},
                                       [](void* stage, QVStrSize, int32_t, QVStatus status) {
                                           auto& told = static_cast<Stage*>(stage)->rawStatus;
                                           told = told == QV_OK ? status : told;
                                       }};
    jmapObserve(s.table, &observer);
    const auto next = [&] {
        const QVStatus rc = s.engine->Read(s.table);
        return rc == QV_OK ? s.rawStatus : rc;
    };
    return takeAll(s, next, [&] {
        s.out.append("\n|").append(view(s.table->obsbuf, s.table->obsbufLen));
        for (QVStrSize i = 0; i < s.table->varCount; ++i) {
            s.out.append(view(s.table->varinfo[i].rawdata, s.table->varinfo[i].rawdataLen));
        }
    });
}

QVStatus readTerm(Stage& s) {
    QVEJMAPReadContexth const table = std::exchange(s.table, nullptr);
    return s.ask([&] { return s.engine->ReadTerm(table); });
}

QVStatus readAlldata(Stage& s) {
    JMAPTableh alldata = nullptr;
    const QVStatus rc = jmapAlldataTable(s.doc, &alldata);
    return rc != QV_OK ? rc
                       : s.ask([&] { return jmapReadTable(s.doc, alldata, nullptr, &s.table); });
}

QVStatus recordsNext(Stage& s) {
    JMAPRecord record = {};
    return takeAll(
        s, [&] { return jmapRecordsNext(s.cursor, &record); },
        [&] { s.out.append("\nrecord ").append(view(record.bytes, record.bytesLen)); });
}

QVStatus recordsClose(Stage& s) {
    JMAPRecordCursorh const cursor = std::exchange(s.cursor, nullptr);
    return s.ask([&] { return jmapRecordsClose(cursor); });
}

// A table with an ordinal and each column of the last table of the user's map.
QVStatus newTable(Stage& s) {
    constexpr std::string_view kPath = "\x02root";
    JMAPTableh last = nullptr;
    while (jmapNextTable(s.userMap, &last) == QV_OK) {
    }
    QVStatus rc =
        s.ask([&] { return jmapNewTable(s.doc, kPath.data(), lengthOf(kPath), &s.newTable); });
    JMAPColumnh like = nullptr;
    do {
        rc = rc != QV_OK ? rc : s.ask([&] {
            return jmapNewColumn(s.doc, s.newTable, like, kPath.data(), lengthOf(kPath));
        });
    } while (jmapNextColumn(last, &like) == QV_OK);
    return rc;
}

QVStatus passOpen(Stage& s) {
    std::vector<JMAPTableh> tables = {nullptr, s.newTable};
    (void)jmapAlldataTable(s.doc, &tables[0]);
    for (QVMemPtr map : {s.automap, s.userMap}) {
        for (JMAPTableh table = nullptr; jmapNextTable(map, &table) == QV_OK;) {
            tables.push_back(table);
        }
    }
    const QVStrSize count = lengthOf({nullptr, tables.size()});
    return s.ask([&] { return jmapPassOpen(s.doc, tables.data(), count, 0, &s.pass); });
}

QVStatus passNext(Stage& s) {
    JMAPPassItem item = {};
    const auto next = [&] { return jmapPassNext(s.pass, &item); };
    return takeAll(s, next, [&] {
        s.out += "\nitem " + std::to_string(item.kind) + " of " + std::to_string(item.table);
        for (QVStrSize i = 0; i < item.cellCount + item.textCount; ++i) {
            const JMAPPassCell& cell = item.cells[i];
            s.out += " " + std::to_string(cell.kind);
            if (cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT) {
                s.out += view(cell.text, cell.textLen);
            }
        }
    });
}

QVStatus passClose(Stage& s) {
    JMAPPassh const pass = std::exchange(s.pass, nullptr);
    return s.ask([&] { return jmapPassClose(pass); });
}

QVStatus statistics(Stage& s) {
    for (JMAPPathh path = nullptr; s.ask([&] { return jmapNextPath(s.doc, &path); }) == QV_OK;) {
        JMAPPathInfo info = {};
        jmapPathInfo(path, &info);
        std::string text(static_cast<std::size_t>(info.pathLen), ' ');
        jmapPathText(path, text.data());
        s.out.append("\npath ").append(text) += std::to_string(info.count);
    }
    double number = 0;
    return s.ask([&] { return jmapToNumber(s.doc, "1.5", 3, &number); });
}

}  // namespace

QVStatus Stage::end() {
    if (doc == nullptr) {
        return QV_OK;
    }
    if (table != nullptr) {
        (void)readTerm(*this);
    }
    if (cursor != nullptr) {
        (void)recordsClose(*this);
    }
    if (pass != nullptr) {
        (void)passClose(*this);
    }
    if (mapContext != nullptr) {
        (void)mapTerm(*this);
    }
    if (writer) {
        (void)getAutoMapBufFree(*this);
    }
    QVEJMAPJsonContexth const ended = std::exchange(doc, nullptr);
    return ask([&] { return engine->Term(ended, jnl); });
}

bool Stage::lossTold() const {
    JMAPTotals totals = {};
    if (doc != nullptr && automap != nullptr) {  // before, the open block is not stored yet
        jmapTotals(doc, &totals);
    }
    return totals.unstoredBytes + totals.droppedTables + totals.lostLookups != 0;
}

const std::vector<Operation>& operations() {
    static const std::vector<Operation> kAll = {
        {"JsonInit", jsonInit},
        {"JsonInput", feedAll},
        {"JsonInput, the last", [](Stage& s) { return feed(s, "", true); }},
        {"GetAutoMap",
         [](Stage& s) { return s.ask([&] { return s.engine->GetAutoMap(s.doc, &s.automap); }); }},
        {"GetAlldataInfo",
         [](Stage& s) {
             int32_t* levels = nullptr;
             return s.ask([&] { return s.engine->GetAlldataInfo(s.doc, &levels); });
         }},
        {"GetDsName", getDsName},
        {"GetAutoMapBuf", getAutoMapBuf},
        {"GetAutoMapBufFree", getAutoMapBufFree},
        {"MapInit",
         [](Stage& s) {
             return s.ask([&] { return s.engine->MapInit(s.doc, nullptr, &s.mapContext, s.jnl); });
         }},
        {"MapInput", mapInput},
        {"MapTerm", mapTerm},
        {"GetUserMap", getUserMap},
        {"ReadInit",
         [](Stage& s) {
             char name[] = "t";
             return s.ask(
                 [&] { return s.engine->ReadInit(s.doc, s.userMap, name, 1, nullptr, &s.table); });
         }},
        {"Read", readRows},
        {"ReadReset", [](Stage& s) { return s.ask([&] { return s.engine->ReadReset(s.table); }); }},
        {"Read again", readRows},
        {"ReadTerm", readTerm},
        {"jmapReadTable", readAlldata},
        {"Read of ALLDATA", readRows},
        {"jmapRecordsOpen",
         [](Stage& s) { return s.ask([&] { return jmapRecordsOpen(s.doc, &s.cursor); }); }},
        {"jmapRecordsNext", recordsNext},
        {"jmapRecordsClose", recordsClose},
        {"jmapNewTable, jmapNewColumn", newTable},
        {"jmapPassOpen", passOpen},
        {"jmapPassNext", passNext},
        {"jmapPassClose", passClose},
        {"jmapNextPath, jmapToNumber", statistics},
        {"Term", [](Stage& s) { return s.end(); }},
    };
    return kAll;
}

Played play(Stage& stage, const std::function<void(size_t at, bool begins)>& around) {
    Played played;
    for (size_t i = 0; i < operations().size() && played.failed == SIZE_MAX; ++i) {
        around(i, true);
        played.status = operations()[i].run(stage);
        around(i, false);
        played.told = stage.lossTold();
        played.failed = played.status != QV_OK || played.told ? i : SIZE_MAX;
    }
    EXPECT_EQ(stage.end(), QV_OK);
    played.out = stage.out;
    return played;
}

void Tally::add(const std::string& fault, const Played& played) {
    ++outcomes_[fault][played.status != QV_OK ? 0 : played.told ? 1 : 2];
}

void Tally::print() const {
    for (const auto& [fault, o] : isLong() ? outcomes_ : std::map<std::string, Outcomes>()) {
        std::cout << fault << ": " << o[0] << " failed, " << o[1] << " told, " << o[2]
                  << " whole\n";
    }
}

}  // namespace jmap::test
