// Statistics of paths: types, counts, groups.
#include "scan/path_stats.h"

#include "core/hash.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

// One line a group of paths, its members separated by blanks: path, type (D, C, F), count, longest.
std::string statsLines(QVEJMAPJsonContexth doc) {
    std::string out;
    const PATHINFO* head = contextOf(doc)->pathInfoHead;
    for (JMAPPathh path = nullptr; jmapNextPath(doc, &path) == QV_OK;) {
        const bool nextGroup = !out.empty() && path == head->next;
        head = nextGroup ? path : head;
        JMAPPathInfo info{};
        jmapPathInfo(path, &info);
        std::string text(static_cast<std::size_t>(info.pathLen), ' ');
        jmapPathText(path, text.data());
        out += out.empty() ? "" : nextGroup ? "\n" : " ";
        out += slashes(text) + ":" + "ODCF"[info.type] + std::to_string(info.count) + ":" +
               std::to_string(info.maxValueLen);
    }
    return out + "\n";
}

TEST(PathStats, CountsPromotesAndGroups) {
    static constexpr struct {
        const char* name;
        const char* json;
        const char* stats;  // statsLines
    } kCases[] = {
        {"types: a number becomes character, a character stays, null and boolean are numbers",
         R"([{"a":1,"b":"x","c":null,"d":null},{"a":"x","b":12345,"c":true,"d":"longer"},{"a":2}])",
         "/root/a:C3:1 /root/b:C2:5 /root/c:D2:4 /root/d:C2:6\n"},
        {"an empty string counts one byte", R"([{"a":"","b":"xy"},{"b":""}])",
         "/root/a:C1:1 /root/b:C2:2\n"},
        {"groups in order of appearance", R"({"o":{"x":1},"a":1,"p":{"y":1},"b":2,"c":""})",
         "/root/o/x:D1:1\n/root/a:D1:1 /root/b:D1:1 /root/c:C1:1\n/root/p/y:D1:1\n"},
        {"a placeholder that heads its group is not found again", R"([{"a":{}},{"a":{}}])",
         "/root/a/FAKE:F1:3 /root/a/FAKE:F1:3\n"},
        {"from the third on the second entry counts", R"([{"a":[]},{"a":{}},{"a":{}},{"a":[]}])",
         "/root/a/FAKE:F1:3 /root/a/FAKE:F3:3\n"},
        {"a placeholder within a group is found, also for a value of its name",
         R"([{"a":{"b":1}},{"a":{}},{"a":{"FAKE":"long"}}])", "/root/a/b:D1:1 /root/a/FAKE:F2:4\n"},
        {"an empty name's parent is the whole path", R"({"b":2,"":1})",
         "/root/b:D1:1 /root:D1:1\n"},
        {"a path that does not follow as before",
         R"([{"a":1,"b":1},{"a":2,"c":"x"},{"a":3,"b":null},{"a":4,"c":""},{"a":5,"b":6}])",
         "/root/a:D5:1 /root/b:D3:4 /root/c:C2:1\n"},
        {"an empty name has the path in front of it", R"([{"a":{"":1},"b":1},{"a":2}])",
         "/root/a:D2:1\n/root/b:D1:1\n"},
        {"a separator in a name joins paths and groups",
         R"([{"x\u0002y":{"p":1,"q":1}},{"x":{"y":{"q":2,"r":{}}}},{"x":{"y":{"r":{}}}}])",
         "/root/x/y/p:D1:1 /root/x/y/q:D2:1\n/root/x/y/r/FAKE:F1:3 /root/x/y/r/FAKE:F1:3\n"},
        {"members named as elements are", R"([{"t":[1]},{"t":{"t1":5,"t2":6}},{"t":[7,8]}])",
         "/root/t/t1:D3:1 /root/t/t2:D2:1\n"},
        {"elements named as members are", R"([{"t":{"t1":5}},{"t":[6,7]},{"t":{"t2":8}}])",
         "/root/t/t1:D2:1 /root/t/t2:D2:1\n"},
        {"elements that do not begin at 1", R"([1,{"x":[7]},{"x":[8,9]}])",
         "/root/element1:D1:1\n/root/x/x2:D2:1 /root/x/x1:D1:1\n"},
        {"elements of both kinds with one name", R"([{"element":[[5],6]},{"element":[[7],8]}])",
         "/root/element/element1:D4:1\n"},
        {"a slash in a name is no separator", R"({"a/b":1,"a":{"b":2}})",
         "/root/a/b:D1:1\n/root/a/b:D1:1\n"},
    };
    FakeHost host;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.stats, statsLines(Scan(host, c.json).doc()));
    }
}

// Insertions into trackers by a document with these members, when paths are found by text.
uint64_t insertionsOf(const std::vector<std::string>& names) {
    HandDocument doc;
    lookUpByText(&doc.p);
    const uint64_t before = doc.host.trackerRequests();
    std::string json;
    for (const std::string& name : names) {
        json += (json.empty() ? "{\"" : ",\"") + name + "\":1";
    }
    EXPECT_QV_OK(doc.document.feed(json + "}", false));
    return doc.host.trackerRequests() - before;
}

// Each path is a key of its own, also where names were chosen so that one checksum is that of all:
// else a look-up would go through all of them.
TEST(PathStats, FindsChosenNamesByTextAsAnyOthers) {
    constexpr std::pair<const char*, const char*> kWords[] = {// one undoes the other
                                                              {"5=210000", "0=6#4Bo^"},
                                                              {"26610000", "^X]'=t_."},
                                                              {"5=910000", "?eXa='zr"}};
    std::vector<std::string> chosen;
    for (const auto& [first, second] : kWords) {
        chosen.push_back(std::string(26, '-') + first + std::string(24, '-') + second +
                         std::string(24, '-'));
        ASSERT_EQ(checksumOf("\2root\2" + chosen[0]), checksumOf("\2root\2" + chosen.back()));
    }
    EXPECT_EQ(insertionsOf(chosen), insertionsOf({"a", "b", "c"}));
}

}  // namespace
}  // namespace jmap::test
