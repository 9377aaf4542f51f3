// A document context made by hand, for routines that need no scan.
#pragma once

#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "testkit/testkit.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace jmap::test {

using Names = std::vector<std::string>;

// The text with every "/" as separator.
inline std::string internalPath(std::string_view path) {
    std::string text(path);
    std::replace(text.begin(), text.end(), '/', '\x02');
    return text;
}

class HandDocument {
   public:
    HandDocument() {
        QVNLSh nls = host.handle()->nls;
        p.cpool = newPool(U"hand document");
        p.tosess = nls->newTranscoder(nls, U_L_UCS4_CE, U_UTF8_CE, nullptr);
        EXPECT_QV_OK(nls->newStringService(nls, U_UTF8_CE, nullptr, &p.smh));
        p.inCei = U_UTF8_CE;
        p.jnl = host.journal();
        p.sep = '\x02';
        p.ordinalCount = UINT64_MAX;
    }
    ~HandDocument() {
        (void)destroyHandle(p.dsNameHash);
        (void)destroyHandle(p.tosess);
        (void)destroyHandle(p.smh);
        (void)destroyHandle(p.cpool);
    }
    // A path of the statistics, below `head` or heading a group of its own.
    PATHINFO* addPath(std::string_view path, PATHINFO* head = nullptr, VARTYPE type = VAR_DOUBLE) {
        auto* info = poolNew<PATHINFO>(p.cpool);
        info->path = poolCopy(p.cpool, internalPath(path));
        info->pathLen = lengthOf(path);
        info->type = type;
        info->pathMaxValLen = 1;
        if (head == nullptr) {
            append(p.pathInfoHead, p.pathInfoTail, info);
            head = info;
        } else {
            head->downtail->down = info;
        }
        head->downtail = info;
        return info;
    }

    FakeHost host;
    JMAP_PRIVATE p{};
    QVEJMAPJsonContext doc{nullptr, &p, {}};
};

}  // namespace jmap::test
