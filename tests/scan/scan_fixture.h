// A text for the statistics that a scan leaves in its document.
#pragma once

#include "core/text.h"
#include "scan/record_format.h"
#include "tests/automap/hand_document.h"

namespace jmap::test {

// One line a group of paths, its members separated by blanks: path, type (D, C, F), count, longest.
inline std::string statsLines(const JMAP_PRIVATE& p) {
    std::string out;
    for (PATHINFO& head : each(p.pathInfoHead)) {
        for (const PATHINFO& info : eachDown(&head)) {
            out += &info == &head ? "" : " ";
            out += slashes(view(info.path, info.pathLen)) + ":" + "ODCF"[info.type] +
                   std::to_string(info.count) + ":" + std::to_string(info.pathMaxValLen);
        }
        out += "\n";
    }
    return out;
}

}  // namespace jmap::test
