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

#include <array>
#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

namespace jmap::bench {
namespace {

constexpr int kSizes = 3;  // n, 2n, 4n
constexpr int kRuns = 3;
constexpr double kLeastSeconds = 1e-3;
constexpr double kLinear = 1.1;

// ---- Documents ----------------------------------------------------------------------------------

std::string number(std::size_t i) {
    return std::to_string(i);
}

// About `bytes` of one array of objects.
std::string bytesOf(std::size_t bytes) {
    std::string text = R"({"orders":[)";
    for (std::size_t i = 0; text.size() < bytes; ++i) {
        text += (i == 0 ? "" : ",") + (R"({"id":)" + number(i)) +
                R"(,"status":"shipped","total":17.25,"customer":{"name":"Ada","vip":true},)"
                R"("items":[{"sku":"A1","qty":2},{"sku":"B2","qty":1}]})";
    }
    return text + "]}";
}

// Objects within objects, keyed by names: ten paths in seven tables for each of `paths` / 10 names.
std::string pathsOf(std::size_t paths) {
    std::string text = R"({"api":{)";
    for (std::size_t i = 0; i < paths / 10; ++i) {
        if (i % 100 == 0) {
            text += (i == 0 ? "" : "},") + (R"("group)" + number(i / 100)) + "\":{";
        } else {
            text += ',';
        }
        text += "\"feature" + number(i) + R"(":{"link":"https://example.org/")" +
                R"(,"support":{"alpha":{"added":"12","flag":true},"beta":{"added":"79"},)"
                R"("gamma":{"added":"14","flag":false},"delta":{"added":false},)"
                R"("omega":{"added":"8"}},"status":{"stable":true,"old":false}})";
    }
    return text + "}}}";
}

// That many arrays of row objects, each with a name of its own.
std::string tablesOf(std::size_t tables) {
    std::string text = "{";
    for (std::size_t i = 0; i < tables; ++i) {
        text += (i == 0 ? "\"t" : ",\"t") + number(i) + R"(":[{"a":1,"b":"x"},{"a":2}])";
    }
    return text + "}";
}

// One object with that many members.
std::string columnsOf(std::size_t columns) {
    std::string text = "{";
    for (std::size_t i = 0; i < columns; ++i) {
        text += (i == 0 ? "\"c" : ",\"c") + number(i) + (i % 2 == 0 ? "\":1" : "\":\"text\"");
    }
    return text + "}";
}

// The same values that many levels deep.
std::string depthOf(std::size_t depth) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
        text += R"({"level":)";
    }
    text += '[';
    for (std::size_t i = 0; i < 50000; ++i) {
        text += (i == 0 ? R"({"a":1,"b":"x"})" : R"(,{"a":2,"b":"y"})");
    }
    return text + "]" + std::string(depth, '}');
}

// A user map of one table.
std::string userMapOf(std::size_t columns) {
    std::string text = R"({"DATASETS":[{"DSNAME":"wide","TABLEPATH":"/root","VARIABLES":[)";
    for (std::size_t i = 0; i < columns; ++i) {
        text += (i == 0 ? R"({"NAME":"c)" : R"(,{"NAME":"c)") + number(i) +
                R"(","TYPE":"CHARACTER","PATH":"/root/c)" + number(i) + "\"}";
    }
    return text + "]}]}";
}

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
    std::vector<Step> steps;            // behind scan and map
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

double seconds() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// Lowers `least` to the time of this run.
template <class Run>
void timed(double& least, Run run) {
    const double start = seconds();
    run();
    least = std::min(least, seconds() - start);
}

// The least times of the scan, of making the map, and of each step.
std::vector<double> measure(const Axis& axis, std::size_t n) {
    const std::string text = axis.document(n);
    const std::string mapText = axis.map == nullptr ? std::string() : axis.map(n);
    std::vector<double> times(2 + axis.steps.size(), std::numeric_limits<double>::infinity());
    for (int run = 0; run < kRuns; ++run) {
        QVEJMAPJsonContexth doc = nullptr;
        timed(times[0], [&] { doc = feed(text); });
        timed(times[1], [&] { finish(doc); });
        for (std::size_t i = 0; i < axis.steps.size(); ++i) {
            timed(times[i + 2], [&] { axis.steps[i].run(doc, mapText); });
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
