// The entry point and the release of the instance.
#include "frame/entry.h"

#include "core/pool.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(Entry, IsRefusedWithoutAHostMemoryOrAModule) {
    ASSERT_EQ(qvGlobalHandle(), nullptr);
    EXPECT_EQ(qvejmap(nullptr, nullptr), nullptr);
    constexpr struct {
        uint64_t failingRequest;  // for memory; 0: none
        const char *missing, *calls, *left;
    } kCases[] = {
        {1, "", "pool qvejmap", ""},
        {2, "", "pool qvejmap, destroy pool qvejmap", ""},
        {0, "qvejson", "pool qvejmap, load qvejson", "pool qvejmap"},
        {0, "qvezlib", "pool qvejmap, load qvejson, load qvezlib", "pool qvejmap, module qvejson"},
        {0, "qvefmt", "pool qvejmap, load qvejson, load qvezlib, load qvefmt",
         "pool qvejmap, module qvejson, module qvezlib"},
    };
    for (const auto& c : kCases) {
        FakeHost host;
        host.substitute(c.missing, nullptr);
        host.failAllocation(c.failingRequest);
        EXPECT_EQ(qvejmap(host.handle(), nullptr), nullptr);
        EXPECT_EQ(joined(host.calls), c.calls);
        EXPECT_EQ(joined(host.leftovers()), c.left);
    }
}

TEST(Entry, ReleasesTheModulesInTheirOrderThenThePool) {
    FakeHost host;
    QVHndl empty{};  // only its journal is used, all services are the global host's
    QVJnl ofHost{}, given{};
    empty.jnl = &ofHost;
    auto* first = reinterpret_cast<JMAP_S*>(qvejmap(&empty, nullptr));
    auto* second = reinterpret_cast<JMAP_S*>(qvejmap(&empty, &given));
    EXPECT_TRUE(first->jnl == &ofHost && second->jnl == &given);
    EXPECT_EQ(first->nls, host.handle()->nls);
    EXPECT_QV_OK(qvejmaprd(&second->ujmap.exth));
    host.calls.clear();
    EXPECT_QV_OK(qvejmaprd(&first->ujmap.exth));
    EXPECT_EQ(joined(host.calls),
              "destroy qvejson, destroy qvezlib, destroy qvefmt, destroy pool qvejmap");
    EXPECT_EQ(joined(host.leftovers()), "");
}

}  // namespace
}  // namespace jmap::test
