// Speed of the engine in process, one thread, the document in memory: scan to the automatic map,
// reading each table, and the rows of all tables.
//
//   BM_Scan/orders         bytes of document a second, buffers of 1 MiB, records kept, uncompressed
//   BM_Count/orders        the same without records: statistics and map alone
//   BM_Read/orders/TABLE   bytes of records a second
//   BM_Pass/orders         the rows of all tables of the automatic map, by a scan and a pass over
//                          its records: bytes of document a second
//   BM_Walk/orders         the same rows by a walk
//
// The first scan of each document touches fresh memory; it is timed apart and shown as "cold_MBps".
#include "qvejmapx.h"

#include "bench/documents.h"
#include "bench/engine.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace jmap::bench {
namespace {

constexpr std::size_t kTablesShown = 6;  // of each document

// A document, scanned once: its tables are read from `doc`.
struct Prepared {
    const Document* document;
    QVEJMAPJsonContexth doc;
    double coldRate;  // MB a second of the first scan
};

Prepared prepare(const Document& document) {
    const auto start = std::chrono::steady_clock::now();
    QVEJMAPJsonContexth doc = scan(document.text);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return {&document, doc, static_cast<double>(document.text.size()) / 1e6 / seconds};
}

void scanDocument(benchmark::State& state, const Prepared& prepared) {
    const std::string& text = prepared.document->text;
    check(engine()->Term(scan(text), nullptr), "Term");  // its memory serves the timed scans
    for (auto _ : state) {
        QVEJMAPJsonContexth doc = scan(text);
        state.PauseTiming();
        check(engine()->Term(doc, nullptr), "Term");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["cold_MBps"] = prepared.coldRate;
}

void countDocument(benchmark::State& state, const Document& document) {
    for (auto _ : state) {
        QVEJMAPJsonContexth doc = open();
        jmapCountOnly(doc, 0);
        input(doc, document.text);
        finish(doc);
        check(engine()->Term(doc, nullptr), "Term");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
}

void readTable(benchmark::State& state, QVEJMAPJsonContexth doc, JMAPTableh table) {
    JMAPTotals totals = {};
    jmapTotals(doc, &totals);
    int64_t rows = 0;
    for (auto _ : state) {
        QVEJMAPReadContexth rctx = nullptr;
        check(jmapReadTable(doc, table, nullptr, &rctx), "jmapReadTable");
        QVStatus status = QV_OK;
        while ((status = engine()->Read(rctx)) == QV_OK) {
            benchmark::DoNotOptimize(rctx->obsbuf);
            ++rows;
        }
        check(status == QV_EOF ? QV_OK : status, "Read");
        check(engine()->ReadTerm(rctx), "ReadTerm");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * totals.recordBytes));
    state.counters["rows"] =
        benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
}

std::vector<JMAPTableh> tablesOf(QVEJMAPJsonContexth doc) {
    QVMemPtr map = nullptr;
    check(engine()->GetAutoMap(doc, &map), "GetAutoMap");
    std::vector<JMAPTableh> tables;
    JMAPTableh table = nullptr;
    while (jmapNextTable(map, &table) == QV_OK) {
        tables.push_back(table);
    }
    return tables;
}

QVStatus countItem(void* count, const JMAPPassItem* item) {
    benchmark::DoNotOptimize(item);
    ++*static_cast<int64_t*>(count);
    return QV_OK;
}

// Scans the text, and gives each row to `countItem`.
void rowsOfPass(const std::string& text, int64_t* count) {
    QVEJMAPJsonContexth doc = scan(text);
    const std::vector<JMAPTableh> tables = tablesOf(doc);
    JMAPPassh pass = nullptr;
    check(jmapPassOpen(doc, tables.data(), static_cast<QVStrSize>(tables.size()), 0, &pass),
          "jmapPassOpen");
    for (JMAPPassItem item; jmapPassNext(pass, &item) == QV_OK;) {
        (void)countItem(count, &item);
    }
    check(jmapPassClose(pass), "jmapPassClose");
    check(engine()->Term(doc, nullptr), "Term");
}

void rowsOfWalk(const std::string& text, QVEJMAPJsonContexth tablesFrom, int64_t* count) {
    const std::vector<JMAPTableh> tables = tablesOf(tablesFrom);
    QVEJMAPJsonContexth doc = open();
    JMAPPassh walk = nullptr;
    check(jmapWalkOpen(doc, tablesFrom, tables.data(), static_cast<QVStrSize>(tables.size()), 0,
                       countItem, count, &walk),
          "jmapWalkOpen");
    input(doc, text);
    finish(doc);
    check(jmapPassClose(walk), "jmapPassClose");
    check(engine()->Term(doc, nullptr), "Term");
}

template <class Rows>
void registerRows(const char* name, const Document& document, Rows rows) {
    benchmark::RegisterBenchmark((name + document.name).c_str(), [&document,
                                                                  rows](benchmark::State& state) {
        int64_t count = 0;
        for (auto _ : state) {
            rows(document.text, &count);
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
        state.counters["rows"] =
            benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsRate);
    })->Unit(benchmark::kMillisecond);
}

void registerScan(const Prepared& prepared) {
    benchmark::RegisterBenchmark(
        ("BM_Scan/" + prepared.document->name).c_str(),
        [prepared](benchmark::State& state) { scanDocument(state, prepared); })
        ->Unit(benchmark::kMillisecond);
}

void registerCount(const Document& document) {
    benchmark::RegisterBenchmark(
        ("BM_Count/" + document.name).c_str(),
        [&document](benchmark::State& state) { countDocument(state, document); })
        ->Unit(benchmark::kMillisecond);
}

void registerTables(const Prepared& prepared) {
    QVMemPtr map = nullptr;
    check(engine()->GetAutoMap(prepared.doc, &map), "GetAutoMap");
    JMAPTableh table = nullptr;
    for (std::size_t i = 0; i < kTablesShown && jmapNextTable(map, &table) == QV_OK; ++i) {
        JMAPTableInfo info = {};
        jmapTableInfo(table, &info);
        const std::string name = "BM_Read/" + prepared.document->name + "/" +
                                 std::string(info.name, static_cast<std::size_t>(info.nameLen));
        benchmark::RegisterBenchmark(name.c_str(), [prepared, table](benchmark::State& state) {
            readTable(state, prepared.doc, table);
        })->Unit(benchmark::kMillisecond);
    }
}

}  // namespace
}  // namespace jmap::bench

int main(int argc, char** argv) {
    using namespace jmap::bench;
    benchmark::Initialize(&argc, argv);
    const std::vector<Document> documents = loadDocuments();
    std::vector<Prepared> prepared;
    prepared.reserve(documents.size());
    for (const Document& document : documents) {
        prepared.push_back(prepare(document));
    }
    for (const Prepared& one : prepared) {
        registerScan(one);
        registerCount(*one.document);
    }
    for (const Prepared& one : prepared) {
        registerTables(one);
    }
    for (const Prepared& one : prepared) {
        registerRows("BM_Pass/", *one.document, rowsOfPass);
        registerRows("BM_Walk/", *one.document, [doc = one.doc](const auto& text, int64_t* count) {
            rowsOfWalk(text, doc, count);
        });
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
