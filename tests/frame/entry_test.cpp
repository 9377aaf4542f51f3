// The entry point and the release of the instance.
#include "frame/entry.h"

#include "core/pool.h"
#include "frame/open_document.h"

namespace jmap::test {
namespace {

// What the entry point asks for, and what is left, when a request for memory fails (0: none does)
// or a module is missing.
std::string refusal(uint64_t failingRequest, const char* missing) {
    FakeHost host;
    host.substitute(missing, nullptr);
    host.failAllocation(failingRequest);
    EXPECT_EQ(qvejmap(host.handle(), nullptr), nullptr);
    return joined(host.calls) + "; left: " + joined(host.leftovers());
}

TEST(Entry, IsRefusedWithoutAHostMemoryOrAModule) {
    ASSERT_EQ(qvGlobalHandle(), nullptr);
    EXPECT_EQ(qvejmap(nullptr, nullptr), nullptr);
    EXPECT_EQ(refusal(1, ""), "pool qvejmap; left: ");
    EXPECT_EQ(refusal(2, ""), "pool qvejmap, destroy pool qvejmap; left: ");
    EXPECT_EQ(refusal(0, "qvejson"), "pool qvejmap, load qvejson; left: pool qvejmap");
    EXPECT_EQ(refusal(0, "qvezlib"),
              "pool qvejmap, load qvejson, load qvezlib; left: pool qvejmap, module qvejson");
    EXPECT_EQ(refusal(0, "qvefmt"),
              "pool qvejmap, load qvejson, load qvezlib, load qvefmt; left: pool qvejmap, module "
              "qvejson, module qvezlib");
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
    (void)destroyHandle(second->jsonh);  // modules that are gone are passed over
    (void)destroyHandle(second->zlibh);
    (void)destroyHandle(second->fmth);
    EXPECT_QV_OK(qvejmaprd(&second->ujmap.exth));
    host.calls.clear();
    EXPECT_QV_OK(qvejmaprd(&first->ujmap.exth));
    EXPECT_EQ(joined(host.calls),
              "destroy qvejson, destroy qvezlib, destroy qvefmt, destroy pool qvejmap");
    EXPECT_EQ(joined(host.leftovers()), "");
}

}  // namespace
}  // namespace jmap::test
