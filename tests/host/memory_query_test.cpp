#include "host/memory_query.h"

#include "tests/host/host_fixture.h"

#include <sstream>

namespace qvhost::test {
namespace {

constexpr uint64_t kKiB = 1024;
constexpr uint64_t kMiB = 1024 * kKiB;

TEST(MemoryQuery, TakesTheSmallestOfSystemAndGroups) {
    const struct {
        const char* name;
        const char* ownGroups;
        const char* files;  // of groups: path=text, with "|" between them
        uint64_t expected;
    } cases[] = {
        {"no groups", "", "", 8 * kMiB},
        {"limited", "0::/a/b\n", "a/b/memory.max=6291456\n|a/b/memory.current=4194304\n", 2 * kMiB},
        {"used up and more", "0::/a\n", "a/memory.max=1048576\n|a/memory.current=4194304\n", 0},
        {"no limit", "0::/a\n", "a/memory.max=max\n|a/memory.current=4194304\n", 8 * kMiB},
        {"file pages count as free", "0::/a\n",
         "a/memory.max=6291456\n|a/memory.current=4194304\n|"
         "a/memory.stat=inactive_anon 9\ninactive_file 1048576\nactive_file 7\n",
         3 * kMiB},
        {"a group above is tighter", "0::/a/b\n",
         "a/b/memory.max=6291456\n|a/b/memory.current=0\n|"
         "a/memory.max=5242880\n|a/memory.current=4194304\n",
         1 * kMiB},
        {"only the root is there", "0::/../x\n", "memory.max=1048576\n|memory.current=0\n",
         1 * kMiB},
        {"older form among others", "9:cpu,cpuacct:/x\n4:memory:/y\n1:name=systemd:/z\n0::/\n",
         "memory/y/memory.limit_in_bytes=4194304\n|memory/y/memory.usage_in_bytes=3145728\n|"
         "memory/y/memory.stat=inactive_file 1\ntotal_inactive_file 524288\n",
         1536 * kKiB},
        {"nonsense is passed over", "::\nxyz\n0::a\n\n4:memory:/m",
         "memory/m/memory.limit_in_bytes=-5\n|memory/m/memory.usage_in_bytes=|memory.max=12",
         8 * kMiB}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ScratchFolder folder;
        folder.write("meminfo", "MemTotal:  16384 kB\nMemAvailable:    8192 kB\nBuffers: 1 kB\n");
        folder.write("cgroup", c.ownGroups);
        std::istringstream files(c.files);
        for (std::string file; std::getline(files, file, '|');) {
            folder.write("fs/" + file.substr(0, file.find('=')), file.substr(file.find('=') + 1));
        }
        const MemoryQuery query(
            {folder.path / "meminfo", folder.path / "cgroup", folder.path / "fs"});
        EXPECT_EQ(query.available(), c.expected);
        folder.write("meminfo", "MemAvailable: 0 kB\n");
        EXPECT_EQ(query.available(), 0U) << "figures change";
    }
    EXPECT_GT(MemoryQuery({"/none", "/none", "/none"}).available(), 0U);
}

TEST(MemoryQuery, OfAHostAnswersWithinItsBudget) {
    const RunningHost host;
    const auto available = [&host] {
        uint64_t bytes = 1;
        EXPECT_QV_OK(host.handle->qvmrlmem(host.handle, &bytes));
        return bytes;
    };
    EXPECT_GT(available(), 16 * kMiB) << "no budget: what the machine has";
    qvPortableSetBudget(host.handle, 4 * kMiB);
    EXPECT_EQ(available(), 4 * kMiB);
    QVPoolh pool = host.pool();
    ASSERT_NE(pool->allocate(pool, kMiB, 0), nullptr);
    EXPECT_LE(available(), 3 * kMiB);
    EXPECT_EQ(available(), 4 * kMiB - host.counts().bytesInUse);
    EXPECT_NE(pool->allocate(pool, 4 * kMiB, 0), nullptr) << "a budget fails no allocation";
    EXPECT_EQ(available(), 0U);
}

}  // namespace
}  // namespace qvhost::test
