// See formats.h.
#include "formats/formats.h"

namespace qvej {

namespace {

constexpr Format kFormats[] = {
    {"csv", "csv", false, "the header has it more than once", makeCsvSink},
    {"ndjson", "ndjson", true, "objects have it more than once, and most programs keep the last",
     makeNdjsonSink},
};

}  // namespace

const Format* findFormat(std::string_view name) {
    for (const Format& format : kFormats) {
        if (format.name == name) {
            return &format;
        }
    }
    return nullptr;
}

std::string formatNames() {
    std::string names;
    for (const Format& format : kFormats) {
        names += names.empty() ? "" : ", ";
        names += format.name;
    }
    return names;
}

}  // namespace qvej
