// Each operation with each of the host's own requests for memory (`new`) failing: those of a
// parser, a writer, a transcoder, a pool, a loaded module.
//
// A program of its own, since it replaces the operators for all of it.
#include "tests/frame/operations.h"
#include "tests/host/host_fixture.h"

#include <cstdlib>
#include <filesystem>
#include <new>

namespace {

// The request that fails: counted only within a call of the engine.
struct Plan {
    bool counting = false;
    uint64_t asked = 0;
    uint64_t failing = 0;  // 0: none
    bool always = false;   // and all that follow
};
Plan plan;

void* obtain(std::size_t size) noexcept {
    if (plan.counting) {
        ++plan.asked;
        if (plan.asked == plan.failing || (plan.always && plan.asked > plan.failing)) {
            return nullptr;
        }
    }
    return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// The other forms, but for one size or for aligned memory, go by these.  Not inlined: the compiler
// would see free() for what `new` gave.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = obtain(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return obtain(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace jmap::test {
namespace {

// Plays all operations on a host of its own, request `n` of operation `at` failing.  `asked` gets
// the number of requests of each.
Played playOn(const Keeping& keeping, std::vector<uint64_t>* asked, size_t at = SIZE_MAX,
              uint64_t n = 0, bool always = false) {
    qvhost::test::RunningHost running;
    QVHndlp host = running.handle;
    EXPECT_QV_OK(qvPortableRegister(host, "qvejmap", qvejmap));
    auto* engine = running.load<UserJMAP_S>(U"qvejmap");
    Stage stage(engine, host->jnl, keeping, std::filesystem::temp_directory_path().string() + "/",
                [](bool begins) { plan.counting = begins; });
    Played played = play(stage, [&](size_t i, bool begins) {
        if (!begins && asked != nullptr) {
            asked->push_back(plan.asked);
        }
        plan = begins && i == at ? Plan{.failing = n, .always = always} : Plan{};
    });
    EXPECT_QV_OK(qvhost::test::destroy(engine));
    return played;
}

TEST(HostMemory, MayFailAnywhere) {
    constexpr Keeping kKeepings[] = {
        {.name = "deflated, in a file", .compress = true, .spill = true},
        {.name = "in memory, with notes", .debug = ",ALL,"},
    };
    Tally injected;
    for (const Keeping& keeping : kKeepings) {
        std::vector<uint64_t> asked;
        const Played clean = playOn(keeping, &asked);
        ASSERT_EQ(clean.failed, SIZE_MAX) << qvStatusName(clean.status);
        for (size_t at = 0; at < asked.size(); ++at) {
            const std::string name = operations()[at].name;
            const uint64_t step = isLong() ? 1 : 7;
            for (uint64_t i = 2; i < 2 * asked[at] + 2; i += i < 16 ? 1 : step) {
                SCOPED_TRACE(std::string(keeping.name) + ", " + name + ", " +
                             std::to_string(i / 2) + (i % 2 == 0 ? "" : " and all that follow"));
                const Played played = playOn(keeping, nullptr, at, i / 2, i % 2 != 0);
                injected.add(name, played);
                EXPECT_TRUE(clean.out.starts_with(played.out));
                const bool whole = played.failed == SIZE_MAX;
                EXPECT_TRUE(!whole || played.out == clean.out)
                    << "something is missing, and nothing tells of it";
                EXPECT_TRUE(whole || played.told || played.status == QV_NOMEM ||
                            played.status == JMAP_PARSE)
                    << qvStatusName(played.status);
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    EXPECT_TRUE(injected.has("JsonInit"));
    EXPECT_TRUE(injected.has("JsonInput, the last"));
    EXPECT_TRUE(injected.has("GetAutoMapBuf"));
    injected.print();
}

}  // namespace
}  // namespace jmap::test
