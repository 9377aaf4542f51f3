#include "host/memory_query.h"

#include "tests/host/host_fixture.h"

#include <unistd.h>

namespace qvhost::test {
namespace {

TEST(MemoryQuery, TakesTheSmallestOfSystemAndGroups) {
    const struct {
        const char* name;
        const char* ownGroups;
        const char* files;  // of groups: path=text, with "|" between them
        uint64_t expected;
    } cases[] = {
        {"no groups", "", "", 8192},
        {"limited", "0::/a\n", "a/memory.max=6144\n|a/memory.current=4096\n", 2048},
        {"used up and more", "0::/a\n", "a/memory.max=1024\n|a/memory.current=4096\n", 0},
        {"file pages count as free; a group above has no limit", "0::/a/b\n",
         "a/b/memory.max=6144\n|a/b/memory.current=4096\n|a/memory.max=max\n|a/memory.current=1\n|"
         "a/b/memory.stat=inactive_anon 9\ninactive_file 1024\nactive_file 7\n",
         3072},
        {"a group above is tighter, and all that is there", "0::/../a/b\n",
         "memory.max=5120\n|memory.current=4096\n", 1024},
        {"older form among others", "9:cpu,cpuacct:/x\n4:memory:/y\n1:name=systemd:/z\n0::/\n",
         "memory/y/memory.limit_in_bytes=4096\n|memory/y/memory.usage_in_bytes=3072\n|"
         "memory/y/memory.stat=inactive_file 1\ntotal_inactive_file 512\n",
         1536},
        {"nonsense is passed over", "::\nxyz\n0::a\n\n4:memory:/m",
         "memory/m/memory.limit_in_bytes=-5\n|memory/m/memory.usage_in_bytes=|memory.max=12",
         8192}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ScratchFolder folder;
        folder.write("meminfo", "MemTotal:  16 kB\nMemAvailable:    8 kB\nBuffers: 1 kB\n");
        folder.write("cgroup", c.ownGroups);
        for (const std::string& file : split(c.files)) {
            const std::size_t name = file.find('=');
            folder.write("fs/" + file.substr(0, name), file.substr(name + 1));
        }
        const std::string root = folder.path;
        const MemoryQuery query({root + "/meminfo", root + "/cgroup", root + "/fs"});
        EXPECT_EQ(query.available(), c.expected);
        folder.write("meminfo", "MemAvailable: 0 kB\n");
        EXPECT_EQ(query.available(), 0U) << "figures change";
    }
    EXPECT_GT(MemoryQuery({"/none", "/none", "/none"}).available(), 0U);
}

TEST(MemoryQuery, OfAHostAnswersWithinItsBudget) {
    constexpr QVStrSize kMiB = 1024 * 1024;
    const RunningHost host;
    QVPoolh pool = host.pool();
    for (const int64_t taken : {0, 1, 4}) {  // a budget fails no allocation
        EXPECT_NE(pool->allocate(pool, taken * kMiB, 0), nullptr);
        uint64_t bytes = 0;
        qvPortableSetBudget(host.handle, taken == 0 ? 0 : UINT64_MAX);
        EXPECT_QV_OK(host.handle->qvmrlmem(host.handle, &bytes));
        EXPECT_TRUE(bytes > 16 * kMiB && bytes < UINT64_MAX / 2) << "what the machine has";
        const uint64_t held = qvPortableHeld(host.handle);
        EXPECT_GE(held, std::max<uint64_t>(host.counts().bytesInUse, taken * kMiB));
        qvPortableSetBudget(host.handle, held + 4 * kMiB);
        EXPECT_QV_OK(host.handle->qvmrlmem(host.handle, &bytes));
        EXPECT_TRUE(bytes > 3 * kMiB && bytes <= 4 * kMiB) << bytes;
        qvPortableSetBudget(host.handle, host.counts().bytesInUse);
        EXPECT_QV_OK(host.handle->qvmrlmem(host.handle, &bytes));
        EXPECT_EQ(bytes, 0U);
    }
}

TEST(MemoryQuery, CountsWhatTheProcessHasFilledWithoutItsFiles) {
    const ScratchFolder folder;
    folder.write("statm", "5000 1200 200 1 0 900 0\n");
    const auto held = [&] {
        return MemoryQuery({"/none", "/none", "/none", std::string(folder.path) + "/statm"}).held();
    };
    EXPECT_EQ(held(), 1000U * static_cast<uint64_t>(sysconf(_SC_PAGESIZE)));
    for (const char* nonsense : {"", "5000", "5000 x", "5000 1200 ", "1 2 3"}) {
        folder.write("statm", nonsense);
        EXPECT_EQ(held(), 0U) << nonsense;
    }
}

}  // namespace
}  // namespace qvhost::test
