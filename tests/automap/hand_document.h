// A document that was opened and is not fed, for routines that a test calls itself.
#pragma once

#include "core/list.h"
#include "core/pool.h"
#include "frame/open_document.h"

namespace jmap::test {

using Names = std::vector<std::string>;

// The text with every "/" as separator.
inline std::string internalPath(std::string_view path) {
    std::string text(path);
    std::replace(text.begin(), text.end(), '/', '\x02');
    return text;
}

struct HandDocument {
    FakeHost host;
    Document document{host};
    JMAP_PRIVATE& p = ((void)document.init(), *document.p());
    QVEJMAPJsonContext& doc = *document.doc;
};

}  // namespace jmap::test
