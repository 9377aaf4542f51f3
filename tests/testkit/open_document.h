// A document that a test opens, feeds and ends call by call, or whose routines it calls itself.
#pragma once

#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "testkit/testkit.h"

#include <algorithm>

namespace jmap::test {

using Names = std::vector<std::string>;

inline std::string joined(const Names& parts) {
    std::string all;
    for (const std::string& part : parts) {
        all += (all.empty() ? "" : ", ") + part;
    }
    return all;
}

// The text with every "/" as separator.
inline std::string internalPath(std::string_view path) {
    std::string text(path);
    std::replace(text.begin(), text.end(), '/', '\x02');
    return text;
}

// A host with the engine loaded and nothing else.
class LoadedHost : public FakeHost {
   public:
    LoadedHost() : instance_((engine(), leftovers().size())) { calls.clear(); }
    // What is alive besides the engine and its modules, oldest first: the kinds of objects, of
    // pools and trackers the names as well.
    std::string left() {
        Names rest = leftovers();
        rest.erase(rest.begin(), rest.begin() + instance_);
        for (std::string& object : rest) {
            const bool named = object.starts_with("pool ") || object.starts_with("tracker ");
            object.resize(named ? object.size() : std::min(object.size(), object.find(' ')));
        }
        return joined(rest);
    }

   private:
    std::ptrdiff_t instance_;
};

struct Document {
    explicit Document(FakeHost& on) : host(on) { parms.inCEI = U_UTF8_CE; }
    ~Document() { EXPECT_QV_OK(doc == nullptr ? QV_OK : engine->Term(doc, nullptr)); }
    QVStatus init(std::string_view keywords = "") {
        debug = keywords;
        parms.debugString = debug.data();
        parms.debugStringLen += lengthOf(debug);
        return engine->JsonInit(&engine->exth, &parms, &doc, host.journal());
    }
    QVStatus feed(std::string text, bool done) const {
        QVBoolean caching = 0;
        return engine->JsonInput(doc, text.data(), lengthOf(text), done ? 1 : 0, &caching, nullptr);
    }
    [[nodiscard]] JMAP_PRIVATE* p() const { return contextOf(doc); }

    FakeHost& host;
    UserJMAP_S* engine = host.engine();
    QVEJMAPJsonInitParms parms{};
    std::string debug;
    QVEJMAPJsonContexth doc = nullptr;
};

// A document that was opened and is not fed, on a host of its own.
struct HandDocument {
    FakeHost host;
    Document document{host};
    JMAP_PRIVATE& p = ((void)document.init(), *document.p());
    QVEJMAPJsonContext& doc = *document.doc;
};

}  // namespace jmap::test
