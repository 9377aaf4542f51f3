// Documents that are hard by their shape: one of 470,000 paths in 330,000 tables, and one array of
// a million scalars.  Prints processor times, of the first run and the median of the later ones.
//
//   bench_shapes                               measures
//   bench_shapes --write paths|scalars FILE    writes a document, for the tool
//   bench_shapes --records FILE                prints the bytes of records that a document makes
//   bench_shapes --files FROM TO               prints the seconds that a bare loop takes to create,
//                                              write and rename in TO (a new directory) what is in
//                                              FROM: the least that an output of many files costs
#include "bench/shapes.h"
#include "bench/timing.h"
#include "client/cursor.h"
#include "client/document.h"
#include "client/engine.h"
#include "client/table_pass.h"
#include "formats/formats.h"
#include "formats/writer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace jmap::bench {
namespace {

constexpr std::size_t kPaths = 470'000;
constexpr std::size_t kScalars = 1'000'000;
constexpr std::size_t kRuns = 4;  // the first is cold
constexpr std::size_t kBufferBytes = 1U << 20;

void require(bool done, const std::string& what) {
    if (!done) {
        std::fprintf(stderr, "bench_shapes: %s failed\n", what.c_str());
        std::exit(2);
    }
}

void feed(qvej::Document& document, std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at += kBufferBytes) {
        document.feed(text.substr(at, kBufferBytes));
    }
}

// ---- What is timed ------------------------------------------------------------------------------

struct Discard final : qvej::Target {
    std::size_t& bytes;
    explicit Discard(std::size_t& total) : bytes(total) {}
    void write(const char* /*text*/, std::size_t size) override { bytes += size; }
};

// Formats every table as `convert` does, into nothing.  The bytes that files would have.
std::size_t formatAll(const qvej::Document& document) {
    struct Output {
        qvej::PassRow row;
        std::unique_ptr<qvej::Sink> sink;
    };
    std::size_t bytes = 0;
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
    std::vector<std::unique_ptr<Output>> outputs(tables.size());
    const qvej::FormatOptions options;
    qvej::TablePass pass(document, tables);
    qvej::PassItem item = {};
    while (pass.next(item)) {
        const qvej::Table& table = *tables[item.table];
        std::unique_ptr<Output>& output = outputs[item.table];
        if (output == nullptr) {
            qvej::Writer writer(std::make_unique<Discard>(bytes));
            output.reset(new Output{{document, table},
                                    qvej::makeCsvSink(std::move(writer), {table, options})});
        }
        if (output->row.take(item)) {
            output->sink->row(output->row);
        }
    }
    for (const std::unique_ptr<Output>& output : outputs) {
        if (output != nullptr) {
            output->sink->end();
        }
    }
    return bytes;
}

// Opens the first table and reads every cell.  The number of cells.
std::size_t readFirst(const qvej::Document& document) {
    const qvej::Table& table = document.tables().front();
    qvej::Cursor cursor(document, table);
    std::size_t cells = 0;
    while (cursor.next()) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            cells += cursor.cell(i).kind != qvej::Cell::MISSING ? 1 : 0;
        }
    }
    return cells;
}

// ---- Measuring ----------------------------------------------------------------------------------

// Seconds of each run of one step.
using Times = std::vector<double>;

double warm(const Times& times) {
    Times later(times.begin() + 1, times.end());
    std::sort(later.begin(), later.end());
    return later[later.size() / 2];
}

void showRate(const char* step, const Times& times, std::size_t bytes, const char* goal) {
    const double megabytes = static_cast<double>(bytes) / 1e6;
    std::printf("  %-44s %9.0f %9.0f MB/s  %s\n", step, megabytes / times[0],
                megabytes / warm(times), goal);
}

void showSeconds(const char* step, const Times& times, const char* goal) {
    std::printf("  %-44s %9.2f %9.2f s     %s\n", step, times[0], warm(times), goal);
}

Times sum(const Times& a, const Times& b) {
    Times both(a.size());
    std::transform(a.begin(), a.end(), b.begin(), both.begin(), std::plus<>());
    return both;
}

struct Measured {
    Times scan;
    Times map;
    Times use;
};

// Times scan, map and `use` of a document.  Tells its shape.
template <class Use>
Measured measure(const char* name, const std::string& text, const char* unit, const Use& use) {
    Measured measured;
    qvej::Engine engine;  // of all runs: the memory of one serves the next
    for (std::size_t run = 0; run < kRuns; ++run) {
        qvej::Document document(engine);
        std::size_t made = 0;
        measured.scan.push_back(timed([&] { feed(document, text); }));
        measured.map.push_back(timed([&] { document.finish(); }));
        measured.use.push_back(timed([&] { made = use(document); }));
        if (run == 0) {
            std::printf("%s: %.1f MB, %zu paths, %zu tables, %zu columns of the first, %zu %s\n",
                        name, static_cast<double>(text.size()) / 1e6,
                        document.pathStatistics().size(), document.tables().size(),
                        document.tables().front().columns.size(), made, unit);
        }
    }
    return measured;
}

void measurePaths() {
    const std::string text = pathsOf(kPaths);
    const Measured paths = measure("many paths", text, "bytes of CSV", formatAll);
    const Times toMap = sum(paths.scan, paths.map);
    showRate("scan", paths.scan, text.size(), "goal 100");
    showRate("scan and map", toMap, text.size(), "");
    showSeconds("map", paths.map, "");
    showSeconds("pass, cells formatted", paths.use, "");
    showSeconds("scan, map, pass, cells formatted", sum(toMap, paths.use), "goal 5");
}

void measureScalars() {
    const std::string text = scalarsOf(kScalars);
    const Measured scalars = measure("one array", text, "cells read", readFirst);
    showRate("scan", scalars.scan, text.size(), "goal 80");
    showRate("scan and map", sum(scalars.scan, scalars.map), text.size(), "");
    showSeconds("map", scalars.map, "");
    showSeconds("open and read the row", scalars.use, "goal 3");
}

// ---- For the tool -------------------------------------------------------------------------------

void writeDocument(const std::string& shape, const std::string& file) {
    const std::string text = shape == "paths" ? pathsOf(kPaths) : scalarsOf(kScalars);
    std::ofstream out(file, std::ios::binary);
    out << text;
    require(static_cast<bool>(out.flush()), file);
}

void showRecords(const std::string& file) {
    qvej::Engine engine;
    qvej::Document document(engine);
    std::ifstream in(file, std::ios::binary);
    require(static_cast<bool>(in), file);
    std::string buffer(kBufferBytes, '\0');
    while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())), in.gcount() > 0) {
        document.feed({buffer.data(), static_cast<std::size_t>(in.gcount())});
    }
    document.finish();
    std::printf("%llu\n", static_cast<unsigned long long>(document.totals().recordBytes));
}

struct File {
    std::string name;
    std::string text;
};

std::vector<File> loadFiles(const std::string& folder) {
    std::vector<File> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        files.push_back(
            {entry.path().filename().string(), {std::istreambuf_iterator<char>(in), {}}});
    }
    std::sort(files.begin(), files.end(),
              [](const File& a, const File& b) { return a.name < b.name; });
    return files;
}

void writeFiles(const std::string& from, const std::string& to) {
    const std::vector<File> files = loadFiles(from);
    std::filesystem::create_directory(to);
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string temporary = to + "/.part" + std::to_string(i);
        const std::string& text = files[i].text;
        const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        require(file >= 0, temporary);
        require(::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
                temporary);
        require(::close(file) == 0, temporary);
        require(::rename(temporary.c_str(), (to + "/" + files[i].name).c_str()) == 0, temporary);
    }
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    std::printf("%.3f %zu\n", spent.count(), files.size());
}

}  // namespace
}  // namespace jmap::bench

int main(int argc, char** argv) {
    using namespace jmap::bench;
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto asked = [&](const char* option, std::size_t operands) {
        return words.size() == operands + 1 && words[0] == option;
    };
    if (words.empty()) {
        std::printf("%-46s %9s %9s\n", "processor time", "cold", "warm");
        measurePaths();
        measureScalars();
    } else if (asked("--write", 2) && (words[1] == "paths" || words[1] == "scalars")) {
        writeDocument(words[1], words[2]);
    } else if (asked("--records", 1)) {
        showRecords(words[1]);
    } else if (asked("--files", 2)) {
        writeFiles(words[1], words[2]);
    } else {
        require(false, "reading the command line");
    }
    return 0;
}
