#include "host/kernel.h"

#include "host/rim.h"
#include "tests/host/host_fixture.h"

namespace qvhost::test {
namespace {

TEST(Kernel, RefusesWrongOptionsAndForeignHandles) {
    QVHndlp host = nullptr;
    QVPortableOptions options = {0, nullptr, "/nowhere/file", nullptr, nullptr, 0, 0};
    EXPECT_QV(QV_BADPARMS, qvPortableStart(nullptr, &host));
    EXPECT_QV(QV_BADPARMS, qvPortableStart(&options, &host));
    options.structSize = sizeof options;
    EXPECT_QV(QV_IO_OPEN, qvPortableStart(&options, &host));
    EXPECT_TRUE(host == nullptr && qvGlobalHandle() == nullptr);
    QVHndl foreign = {};
    EXPECT_QV(QV_BADPARMS, qvPortableStop(&foreign));
}

TEST(Kernel, BringsTheHandleBeforeBackInAnyOrderOfStopping) {
    for (const std::string order : {"210", "012", "102", "120"}) {
        SCOPED_TRACE(order);
        RunningHost hosts[3];
        std::vector<QVHndlp> alive = {hosts[0].handle, hosts[1].handle, hosts[2].handle};
        for (const char digit : order) {
            EXPECT_EQ(alive.back(), qvGlobalHandle());
            std::erase(alive, hosts[digit - '0'].handle);
            hosts[digit - '0'].stop();
        }
        EXPECT_EQ(qvGlobalHandle(), nullptr);
    }
    QVHndl foreign = {};
    RunningHost host;
    EXPECT_EQ(host.handle, qvPortableInstall(&foreign));
    EXPECT_QV_OK(destroy(std::exchange(host.handle, nullptr)));  // what qvPortableStop does
    EXPECT_EQ(&foreign, qvPortableInstall(nullptr)) << "an installed handle stays";
}

// Modules that tell when they are released.  The owner ends its part itself, as the engine does.
std::string released;
QVExtensionh part;

template <bool kOwner>
QVExtensionh makeTelling(QVHndlp host, QVJnlh jnl) {
    static QVExtension module;
    if (kOwner) {
        part = host->loadExtension(host, U"part", 4, jnl);
    }
    module.realDestroy = [](QVExtensionh) -> QVStatus {
        released += kOwner ? "owner " : "part ";
        return kOwner ? destroy(part) : QV_INTERNAL;
    };
    return &module;
}

TEST(Kernel, ListsWhatIsLeftAndEndsItNewestFirst) {
    RunningHost host;
    EXPECT_QV_OK(qvPortableRegister(host.handle, "part", &makeTelling<false>));
    EXPECT_QV_OK(qvPortableRegister(host.handle, "owner", &makeTelling<true>));
    EXPECT_QV(QV_INTERNAL, destroy(host.load(U"owner")));  // the status of its release
    ASSERT_NE(host.load(U"owner"), nullptr);
    QVTrackerh gone = host.tracker(U"gone");
    ASSERT_NE(host.tracker({U"\u00E9\xD800\xDFFF", 3}), nullptr);
    ASSERT_NE(host.pool(std::u32string(100, U'x')), nullptr);
    EXPECT_QV_OK(destroy(gone));
    EXPECT_EQ(host.leftovers(),
              "module part;module owner;tracker \xC3\xA9\xEF\xBF\xBD\xEF\xBF\xBD;pool " +
                  std::string(63, 'x') + ";");
    EXPECT_EQ(host.counts().poolsAlive, 1U);
    host.stop();
    EXPECT_EQ(released, "owner part owner part ");
}

template <class Exception>
QVStatus fail() {
    throw Exception();
}

TEST(Rim, TurnsExceptionsIntoStatuses) {
    EXPECT_QV(QV_NOMEM, Rim<&fail<std::bad_alloc>>::call());
    EXPECT_QV(QV_INTERNAL, Rim<&fail<std::exception>>::call());
}

}  // namespace
}  // namespace qvhost::test
