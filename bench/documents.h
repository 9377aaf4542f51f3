// The documents that the benchmarks run on.
//
//   orders, events   $JMAP_BENCH_DIR/orders.json, events.json, of 200 MB; scripts/bench makes them
//   twitter, canada  $JMAP_DATA_DIR/twitter.json, canada.json
//
// A document that is not there is left out, with a line on standard error.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace jmap::bench {

struct Document {
    std::string name;
    std::string text;
};

inline bool loadDocument(const char* folderVariable, const char* name,
                         std::vector<Document>& into) {
    const char* folder = std::getenv(folderVariable);
    const std::string path = std::string(folder == nullptr ? "." : folder) + "/" + name + ".json";
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "left out: %s (set %s)\n", path.c_str(), folderVariable);
        return false;
    }
    into.push_back({name, {std::istreambuf_iterator<char>(in), {}}});
    return true;
}

inline std::vector<Document> loadDocuments() {
    std::vector<Document> documents;
    loadDocument("JMAP_BENCH_DIR", "orders", documents);
    loadDocument("JMAP_BENCH_DIR", "events", documents);
    loadDocument("JMAP_DATA_DIR", "twitter", documents);
    loadDocument("JMAP_DATA_DIR", "canada", documents);
    return documents;
}

}  // namespace jmap::bench
