// How the cost of each step grows with the document: processor time for n, 2n and 4n of bytes,
// paths, tables, columns of one table, depth and columns of a user map, with the exponent fitted to
// the three.  1 is linear.  Above 1.1 for all steps together a line says so, and the program ends
// with 1; a single step may seem steeper, where n fits into a cache and 4n does not.
//
//   bench_growth [SCALE [AXIS...]]   SCALE times as many of everything, default 1
//
// Documents are made here.  Each time is the least of a few runs, warm; times below a millisecond
// are shown without an exponent.
#include "qvejmapx.h"

#include "bench/engine.h"
#include "bench/shapes.h"
#include "bench/timing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace jmap::bench {
namespace {

constexpr int kSizes = 3;  // n, 2n, 4n
constexpr int kRuns = 3;
constexpr double kLeastSeconds = 1e-3;
constexpr double kLinear = 1.1;

// ---- Steps --------------------------------------------------------------------------------------

QVMemPtr mapOf(QVEJMAPJsonContexth doc) {
    QVMemPtr map = nullptr;
    check(engine()->GetAutoMap(doc, &map), "GetAutoMap");
    return map;
}

// Calls use(name, nameLen) for each table, as a caller of the operation table lists them.
template <class Use>
void eachName(QVEJMAPJsonContexth doc, Use use) {
    QVMemPtr map = mapOf(doc);
    char name[40];
    for (uint64_t i = 0;; ++i) {
        int16_t nameLen = sizeof name;
        if (engine()->GetDsName(doc, map, i, name, &nameLen) != QV_OK) {
            return;
        }
        use(name, nameLen);
    }
}

void list(QVEJMAPJsonContexth doc, const std::string& /*text*/) {
    eachName(doc, [](char* /*name*/, int16_t /*nameLen*/) {});
}

void findMembers(QVEJMAPJsonContexth doc, const std::string& /*text*/) {
    eachName(doc, [&, map = mapOf(doc)](char* name, int16_t nameLen) {
        check(engine()->MemberExist(doc, map, nameLen, name), "MemberExist");
    });
}

QVEJMAPReadContexth open(QVEJMAPJsonContexth doc, QVMemPtr map, char* name, int16_t nameLen) {
    QVEJMAPReadContexth rctx = nullptr;
    check(engine()->ReadInit(doc, map, name, nameLen, nullptr, &rctx), "ReadInit");
    return rctx;
}

void openAll(QVEJMAPJsonContexth doc, const std::string& /*text*/) {
    eachName(doc, [&, map = mapOf(doc)](char* name, int16_t nameLen) {
        check(engine()->ReadTerm(open(doc, map, name, nameLen)), "ReadTerm");
    });
}

// Opens the first table and reads all of its rows.
void readFirst(QVEJMAPJsonContexth doc, QVMemPtr map) {
    char name[40];
    int16_t nameLen = sizeof name;
    check(engine()->GetDsName(doc, map, 0, name, &nameLen), "GetDsName");
    QVEJMAPReadContexth rctx = open(doc, map, name, nameLen);
    while (engine()->Read(rctx) == QV_OK) {
    }
    check(engine()->ReadTerm(rctx), "ReadTerm");
}

void readRows(QVEJMAPJsonContexth doc, const std::string& /*text*/) {
    readFirst(doc, mapOf(doc));
}

QVMemPtr userMap(QVEJMAPJsonContexth doc) {
    QVMemPtr map = nullptr;
    check(engine()->GetUserMap(doc, &map, nullptr, nullptr), "GetUserMap");
    return map;
}

void parseMap(QVEJMAPJsonContexth doc, const std::string& mapText) {
    QVEJMAPMapContexth context = nullptr;
    QVEJMAPMapInitParms parms = {};
    check(engine()->MapInit(doc, &parms, &context, nullptr), "MapInit");
    inBuffers(mapText, [&](char* buffer, QVStrSize size, bool last) {
        check(engine()->MapInput(context, buffer, size, last, nullptr), "MapInput");
    });
    check(engine()->MapTerm(doc, &context, nullptr), "MapTerm");
}

void completeMap(QVEJMAPJsonContexth doc, const std::string& /*mapText*/) {
    (void)userMap(doc);
}

void readUserRows(QVEJMAPJsonContexth doc, const std::string& /*mapText*/) {
    readFirst(doc, userMap(doc));
}

void writeMap(QVEJMAPJsonContexth doc, const std::string& /*text*/) {
    char* buffer = nullptr;
    QVStrSize size = 0;
    check(engine()->GetAutoMapBuf(doc, &buffer, &size, nullptr), "GetAutoMapBuf");
    check(engine()->GetAutoMapBufFree(doc), "GetAutoMapBufFree");
}

// ---- Measuring ----------------------------------------------------------------------------------

struct Step {
    const char* name;
    void (*run)(QVEJMAPJsonContexth doc, const std::string& mapText);
};

using Times = std::array<double, kSizes>;

struct Axis {
    const char* name;
    std::size_t least;  // n
    std::string (*document)(std::size_t n);
    std::string (*map)(std::size_t n);  // null: no user map
    std::vector<Step> steps;            // after scan and map
};

const Axis kAxes[] = {
    {"bytes", 10'000'000, bytesOf, nullptr, {{"read", readRows}}},
    {"paths",
     120'000,
     pathsOf,
     nullptr,
     {{"list", list}, {"exist", findMembers}, {"open", openAll}, {"map text", writeMap}}},
    {"tables",
     25'000,
     tablesOf,
     nullptr,
     {{"list", list}, {"exist", findMembers}, {"open", openAll}}},
    {"columns", 500'000, columnsOf, nullptr, {{"read", readRows}}},
    {"depth", 25, depthOf, nullptr, {{"read", readRows}}},
    {"map columns",
     500'000,
     columnsOf,
     userMapOf,
     {{"parse", parseMap}, {"complete", completeMap}, {"read", readUserRows}}},
};

void keepLeast(double& least, double seconds) {
    least = std::min(least, seconds);
}

// The least times of the scan, of making the map, and of each step.
std::vector<double> measure(const Axis& axis, std::size_t n) {
    const std::string text = axis.document(n);
    const std::string mapText = axis.map == nullptr ? std::string() : axis.map(n);
    std::vector<double> times(2 + axis.steps.size(), std::numeric_limits<double>::infinity());
    for (int run = 0; run < kRuns; ++run) {
        QVEJMAPJsonContexth doc = nullptr;
        keepLeast(times[0], timed([&] { doc = feed(text); }));
        keepLeast(times[1], timed([&] { finish(doc); }));
        for (std::size_t i = 0; i < axis.steps.size(); ++i) {
            keepLeast(times[i + 2], timed([&] { axis.steps[i].run(doc, mapText); }));
        }
        check(engine()->Term(doc, nullptr), "Term");
    }
    return times;
}

// The slope of the line through the three equidistant points on logarithmic scales.
double exponentOf(const Times& times) {
    return std::log2(times[2] / times[0]) / 2;
}

void show(const Axis& axis, const char* step, const Times& times) {
    std::printf("%-12s %-9s %10zu %9.4f %9.4f %9.4f", axis.name, step, axis.least, times[0],
                times[1], times[2]);
    if (times[0] >= kLeastSeconds) {
        std::printf("  %5.2f", exponentOf(times));
    }
    std::printf("\n");
}

// Shows each step and all together; whether these grow in line with the document.
bool showAxis(Axis axis, double scale) {
    axis.least = static_cast<std::size_t>(static_cast<double>(axis.least) * scale);
    (void)measure(axis, axis.least * 4);  // memory that the timed runs use again
    std::vector<double> measured[kSizes];
    for (int i = 0; i < kSizes; ++i) {
        measured[i] = measure(axis, axis.least << i);
    }
    axis.steps.insert(axis.steps.begin(), {{"scan", nullptr}, {"map", nullptr}});
    Times all = {};
    for (std::size_t step = 0; step < axis.steps.size(); ++step) {
        Times times = {};
        for (int i = 0; i < kSizes; ++i) {
            times[i] = measured[i][step];
            all[i] += times[i];
        }
        show(axis, axis.steps[step].name, times);
    }
    show(axis, "all", all);
    const bool isLinear = exponentOf(all) <= kLinear;
    if (!isLinear) {
        std::printf("%-12s MORE THAN LINEAR\n", axis.name);
    }
    std::fflush(stdout);
    return isLinear;
}

}  // namespace
}  // namespace jmap::bench

int main(int argc, char** argv) {
    using namespace jmap::bench;
    const double scale = argc > 1 ? std::atof(argv[1]) : 1.0;
    std::printf("%-12s %-9s %10s %9s %9s %9s  %s\n", "of", "step", "n", "n (s)", "2n (s)", "4n (s)",
                "exponent");
    bool linear = true;
    for (const Axis& axis : kAxes) {
        const auto named = [&](const char* name) { return std::strcmp(name, axis.name) == 0; };
        if (argc <= 2 || std::any_of(argv + 2, argv + argc, named)) {
            linear &= showAxis(axis, scale);
        }
    }
    return linear ? 0 : 1;
}
