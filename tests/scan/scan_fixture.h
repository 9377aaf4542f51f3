// A document context without a document, and a text for the statistics that the scan leaves in one.
#pragma once

#include "core/context.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "frame/open_document.h"
#include "scan/record_format.h"

namespace jmap::test {

// A document that was opened and is not fed: a test calls the routines itself.
struct Context {
    FakeHost host;
    Document document{host};
    JMAP_PRIVATE* const p = (document.init(), document.p());
};

// One line a group of paths, its members separated by blanks: path, type (D, C, F), count, longest.
inline std::string statsLines(JMAP_PRIVATE* p) {
    std::string out;
    for (PATHINFO& head : each(p->pathInfoHead)) {
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
