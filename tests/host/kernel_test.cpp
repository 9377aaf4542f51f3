#include "host/kernel.h"

#include "host/rim.h"
#include "tests/host/host_fixture.h"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace qvhost::test {
namespace {

TEST(Kernel, RefusesWrongOptionsAndForeignHandles) {
    QVPortableOptions options = {};
    QVHndlp host = nullptr;
    EXPECT_QV(QV_BADPARMS, qvPortableStart(nullptr, &host));
    for (const uint64_t size : {0UL, sizeof options - 1}) {
        options.structSize = size;
        EXPECT_QV(QV_BADPARMS, qvPortableStart(&options, &host));
    }
    options.structSize = sizeof options;
    EXPECT_QV(QV_BADPARMS, qvPortableStart(&options, nullptr));
    options.journalFile = "/nowhere/file";
    EXPECT_QV(QV_IO_OPEN, qvPortableStart(&options, &host));
    EXPECT_TRUE(host == nullptr && qvGlobalHandle() == nullptr);
    QVHndl foreign = {};
    EXPECT_QV(QV_BADPARMS, qvPortableStop(&foreign));
    EXPECT_QV(QV_BADPARMS, qvPortableRegister(&foreign, "x", nullptr));
}

TEST(Kernel, BringsTheHandleBeforeBackInAnyOrderOfStopping) {
    for (const std::string order : {"210", "012", "102", "120"}) {
        SCOPED_TRACE(order);
        RunningHost hosts[3];
        std::vector<QVHndlp> alive = {hosts[0].handle, hosts[1].handle, hosts[2].handle};
        for (const char digit : order) {
            QVHndlp& host = hosts[digit - '0'].handle;
            EXPECT_EQ(alive.back(), qvGlobalHandle());
            std::erase(alive, host);
            EXPECT_QV_OK(destroy(std::exchange(host, nullptr)));  // what qvPortableStop does
        }
        EXPECT_EQ(qvGlobalHandle(), nullptr);
    }
    QVHndl foreign = {};
    RunningHost host;
    EXPECT_EQ(host.handle, qvPortableInstall(&foreign));
    host.stop();
    EXPECT_EQ(&foreign, qvPortableInstall(nullptr)) << "an installed handle stays";
}

// A module that tells when it is released.  One with a part owns it, as the engine does others.
struct Telling : QVExtension {
    QVExtensionh part;
};
std::string released;

QVExtensionh makeTelling(QVExtensionh part) {
    auto* made = new Telling{{}, part};
    made->realDestroy = [](QVExtensionh self) -> QVStatus {
        const std::unique_ptr<Telling> telling(static_cast<Telling*>(self));
        released += telling->part == nullptr ? "part " : "owner ";
        return telling->part == nullptr ? QV_INTERNAL : destroy(telling->part);
    };
    return made;
}

TEST(Kernel, ListsWhatIsLeftAndEndsItNewestFirst) {
    RunningHost host;
    EXPECT_QV_OK(qvPortableRegister(host.handle, "part",
                                    [](QVHndlp, QVJnlh) { return makeTelling(nullptr); }));
    EXPECT_QV_OK(qvPortableRegister(host.handle, "owner", [](QVHndlp handle, QVJnlh jnl) {
        return makeTelling(handle->loadExtension(handle, U"part", 4, jnl));
    }));
    ASSERT_NE(host.pool(U"a pool"), nullptr);
    EXPECT_QV(QV_INTERNAL, destroy(host.load(U"owner")));  // the status of its release
    EXPECT_EQ(std::exchange(released, ""), "owner part ");
    ASSERT_NE(host.load(U"owner"), nullptr);
    QVTrackerh gone = host.tracker(U"gone");
    ASSERT_NE(host.tracker({U"\u00E9\xD800", 2}), nullptr);
    ASSERT_NE(host.load(U"part"), nullptr);
    ASSERT_NE(host.pool(std::u32string(100, U'x')), nullptr);
    EXPECT_QV_OK(destroy(gone));
    EXPECT_EQ(
        host.leftovers(),
        "pool a pool;module part;module owner;tracker \xC3\xA9\xEF\xBF\xBD;module part;pool " +
            std::string(63, 'x') + ";");
    EXPECT_EQ(host.counts().poolsAlive, 2U);
    host.stop();
    EXPECT_EQ(std::exchange(released, ""), "part owner part ");  // the owner releases its own part
}

QVStatus mayThrow(int what) {
    return what == 1 ? throw std::bad_alloc() : what == 2 ? throw std::runtime_error("") : QV_EOF;
}
const char* mayThrowInsteadOfAnObject(int what) {
    return qvStatusName(mayThrow(what));
}

TEST(Rim, TurnsExceptionsIntoResults) {
    const QVStatus statuses[] = {QV_EOF, QV_NOMEM, QV_INTERNAL};
    for (int what = 0; what < 3; ++what) {
        EXPECT_QV(statuses[what], Rim<&mayThrow>::call(what));
        EXPECT_EQ(Rim<&mayThrowInsteadOfAnObject>::call(what) != nullptr, what == 0);
    }
}

TEST(Kernel, ServesTwoThreads) {
    const RunningHost host;
    std::atomic<int> failures{0};
    const auto work = [&host, &failures] {
        for (int i = 0; i < 1000; ++i) {
            QVPoolh pool = host.pool();
            QVTrackerh tracker = host.tracker();
            QVExtensionh module = host.load(U"qvefmt");
            const bool works = pool->allocate(pool, 16, 0) != nullptr &&
                               tracker->insert(tracker, "key", 3, pool) == QV_OK &&
                               host.encoding("koi8-r") > 1000 && host.counts().poolsAlive > 0 &&
                               destroy(module) == QV_OK && destroy(tracker) == QV_OK &&
                               destroy(pool) == QV_OK;
            failures += works ? 0 : 1;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(host.leftovers(), "");
    EXPECT_TRUE(host.counts().bytesInUse == 0 && host.counts().allocations == 2000);
}

}  // namespace
}  // namespace qvhost::test
