// A scan in parts gives what a scan of the whole gives.
#include "scan/partial_scan.h"

#include "core/hash.h"
#include "testkit/open_document.h"
#include "testkit/random_document.h"

namespace jmap::test {
namespace {

std::string numbers(std::initializer_list<int64_t> list) {
    std::string text;
    for (const int64_t number : list) {
        text += std::to_string(number) + " ";
    }
    return text;
}

std::string pathsOf(QVEJMAPJsonContexth doc) {
    std::string text;
    for (JMAPPathh path = nullptr; jmapNextPath(doc, &path) == QV_OK;) {
        JMAPPathInfo info{};
        jmapPathInfo(path, &info);
        std::string name(static_cast<std::size_t>(info.pathLen), ' ');
        jmapPathText(path, name.data());
        text += slashes(name) + " ";
        text +=
            numbers({info.count, info.type, info.maxValueLen, info.longestLine, info.longestColumn,
                     info.inexact.count, info.inexact.line, info.inexact.column});
        for (const JMAPPathKind& kind : info.kinds) {
            text += "[" + numbers({kind.count, kind.line, kind.column}) + "]";
        }
        text += "\n";
    }
    return text;
}

std::string tableOf(JMAPTableh table) {
    JMAPTableInfo info{};
    jmapTableInfo(table, &info);
    std::string text = std::string(view(info.name, info.nameLen)) + ":";
    for (JMAPColumnh column = nullptr; jmapNextColumn(table, &column) == QV_OK;) {
        JMAPColumnInfo of{};
        jmapColumnInfo(column, &of);
        std::string path(static_cast<std::size_t>(of.pathLen), ' ');
        jmapColumnPath(column, path.data());
        text += " " + std::string(view(of.name, of.nameLen)) + "=" + slashes(path) + ":" +
                numbers({of.type, static_cast<int64_t>(of.length), of.kinds});
    }
    return text + "\n";
}

// All that a scan leaves but its records.
std::string described(const Document& document) {
    std::string text = pathsOf(document.doc);
    QVMemPtr map = nullptr;
    EXPECT_QV_OK(document.engine->GetAutoMap(document.doc, &map));
    for (JMAPTableh table = nullptr; jmapNextTable(map, &table) == QV_OK;) {
        text += tableOf(table);
    }
    JMAPTableh alldata = nullptr;
    EXPECT_QV_OK(jmapAlldataTable(document.doc, &alldata));
    text += tableOf(alldata);
    JMAPTotals totals{};
    jmapTotals(document.doc, &totals);
    return text + numbers({static_cast<int64_t>(totals.records),
                           static_cast<int64_t>(totals.values), totals.labelsSlip});
}

std::string wholeOf(FakeHost& host, const std::string& text, bool countOnly) {
    Document whole(host);
    EXPECT_QV_OK(whole.init());
    if (countOnly) {
        jmapCountOnly(whole.doc, 0);
    }
    EXPECT_QV_OK(whole.feed(text, true));
    return described(whole);
}

// What a part counts that has these texts around it.  Without an end it is not finished.
std::string partOf(FakeHost& host, const std::string& before, const std::string& text,
                   const std::string& after, bool ends = true) {
    Document part(host);
    EXPECT_QV_OK(part.init());
    jmapCountOnly(part.doc, 1);
    EXPECT_QV_OK(part.feed(before, false));
    if (!before.empty()) {
        jmapBeginPart(part.doc);
    }
    EXPECT_QV_OK(part.feed(text, false));
    EXPECT_QV_OK(part.feed(after, ends));
    const char* bytes = nullptr;
    QVStrSize bytesLen = 0;
    EXPECT_QV_OK(jmapTakePart(part.doc, &bytes, &bytesLen));
    return std::string(view(bytes, bytesLen));
}

PLACE placeOf(const std::string& text, std::size_t offset) {
    const auto before = text.substr(0, offset);
    const auto feed = before.rfind('\n');
    return {std::count(before.begin(), before.end(), '\n') + 1,
            static_cast<int64_t>(feed == std::string::npos ? offset + 1 : offset - feed)};
}

// A text and where its elements begin, the last one being where they end.
struct Divided {
    std::string text;
    std::vector<std::size_t> begins;
    std::string before, after;  // what an element has around it
};

Divided randomText(unsigned seed) {
    constexpr const char* kAround[][2] = {
        {"[", "]"}, {R"({"x":{"y":1},"n":[)", R"(],"z":[1,{"y":2}],"y":"t"})"}};
    constexpr const char* kBetween[] = {",", ",\n", "\n , \n"};
    std::mt19937 random(seed);
    RandomDocument values(seed, {"a", "b", "t", "t1", "t2", "FAKE", "element1", "a\\u0002b"});
    const auto& around = kAround[random() % std::size(kAround)];
    Divided divided;
    divided.text = around[0];
    divided.before = around[0][0] == '{' ? R"({"y":"long","n":[)" : "[";
    divided.after = around[0][0] == '{' ? "]}" : "]";
    const auto elements = 1 + random() % 12;
    for (std::size_t i = 0; i < elements; ++i) {
        divided.text += i == 0 ? "" : kBetween[random() % std::size(kBetween)];
        divided.begins.push_back(divided.text.size());
        divided.text += "{";
        for (auto left = random() % 3; left > 0; --left) {
            divided.text += std::string(R"("k)") + "abc"[random() % 3] + R"(":)" +
                            values.text(1 + static_cast<int>(random() % 3)) + ",";
        }
        divided.text += random() % 4 == 0 ? R"("w":1e999})" : R"("v":{}})";
    }
    divided.begins.push_back(divided.text.size());
    divided.text += around[1];
    return divided;
}

// Adds the parts of a text, cut after every `step` elements, to `sum`.
void addParts(FakeHost& host, Document& sum, const Divided& of, std::size_t step) {
    const auto add = [&](const std::string& bytes, std::size_t offset, std::size_t shift) {
        const PLACE at = placeOf(of.text, offset);
        ASSERT_QV_OK(jmapAddPart(sum.doc, bytes.data(), lengthOf(bytes), at.line,
                                 at.column - static_cast<int64_t>(shift)));
    };
    const std::size_t elements = of.begins.size() - 1;
    const bool around = of.before != "[";
    if (around) {  // what is before the array, and after it, are parts too
        add(partOf(host, "", of.text.substr(0, of.begins[0]), "", false), 0, 0);
    }
    for (std::size_t i = 0; i < elements; i += step) {
        const std::size_t begin = of.begins[i];
        const std::size_t end = of.begins[std::min(i + step, elements)];
        std::string text = of.text.substr(begin, end - begin);
        text.erase(text.find_last_of('}') + 1);
        add(partOf(host, of.before, text, of.after), begin, of.before.size());
    }
    if (around) {
        add(partOf(host, of.before, of.text.substr(of.begins.back()), ""), of.begins.back(),
            of.before.size());
    }
}

// Adds bytes of one part to nothing.
std::string describedAlone(FakeHost& host, const std::string& part) {
    Document sum(host);
    EXPECT_QV_OK(sum.init());
    jmapCountOnly(sum.doc, 0);
    EXPECT_QV_OK(jmapAddPart(sum.doc, part.data(), lengthOf(part), 1, 1));
    EXPECT_QV_OK(jmapEndParts(sum.doc));
    return described(sum);
}

TEST(PartialScan, CountingAloneGivesTheSameStatisticsAndMap) {
    FakeHost host;
    for (unsigned seed = 0; seed < 400; ++seed) {
        RandomDocument any(seed, {"a", "b", "", "FAKE", "b1", "a\\u0002b"});
        const std::string text = seed % 2 == 0 ? randomText(seed).text : any.text(5);
        const std::string whole = wholeOf(host, text, false);
        ASSERT_EQ(whole, wholeOf(host, text, true)) << text;
        ASSERT_EQ(whole, describedAlone(host, partOf(host, "", text, ""))) << text;
    }
}

TEST(PartialScan, PartsAddUpToTheWholeHoweverTheTextIsCut) {
    FakeHost host;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const Divided text = randomText(seed);
        const std::string whole = wholeOf(host, text.text, false);
        for (std::size_t step = 1; step < text.begins.size(); step = 2 * step + seed % 2) {
            Document sum(host);
            ASSERT_QV_OK(sum.init());
            jmapCountOnly(sum.doc, 0);
            addParts(host, sum, text, step);
            ASSERT_QV_OK(jmapEndParts(sum.doc));
            EXPECT_EQ(0U, jmapPartFlags(sum.doc));
            ASSERT_EQ(whole, described(sum)) << text.text << " by " << step;
        }
    }
}

TEST(PartialScan, TellsWhatThePartAfterItWouldHaveToKnow) {
    static constexpr struct {
        const char* text;
        uint32_t flags;
    } kCases[] = {
        {R"([{"a":[1,[2]]}])", 0},
        {R"({"a":[1,[2]]})", 0},
        {R"([{"a":{"":1}}])", JMAP_PART_EMPTY_NAME},
        {R"([{"a":1},2])", JMAP_PART_OTHER_ELEMENTS},
        {R"([{"a":1},[]])", JMAP_PART_OTHER_ELEMENTS},
        {R"([{"abcdefghijklmnopqrstuvwxyzab":[1]}])", 0},
        {R"([{"abcdefghijklmnopqrstuvwxyzabc":[1]}])", JMAP_PART_LONG_ELEMENTS},
        {R"([{"":1},null])", JMAP_PART_OTHER_ELEMENTS | JMAP_PART_EMPTY_NAME},
    };
    FakeHost host;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const std::string part = partOf(host, "", c.text, "");
        Document sum(host);
        ASSERT_QV_OK(sum.init());
        jmapCountOnly(sum.doc, 0);
        ASSERT_QV_OK(jmapAddPart(sum.doc, part.data(), lengthOf(part), 1, 1));
        EXPECT_EQ(c.flags, jmapPartFlags(sum.doc));
    }
}

TEST(PartialScan, RefusesOtherBytes) {
    FakeHost host;
    const std::string part = partOf(host, "", R"([{"a":[1,2.5,"x"],"b":{"c":1e999}}])", "");
    std::vector<std::string> others = {"", "QVPS", part + part};
    for (std::size_t i = 0; i < part.size(); ++i) {
        others.push_back(part.substr(0, i));
        others.push_back(part);
        others.back()[i] = static_cast<char>(others.back()[i] ^ 4);
    }
    for (const std::string& other : others) {
        Document sum(host);
        ASSERT_QV_OK(sum.init());
        jmapCountOnly(sum.doc, 0);
        EXPECT_QV(QV_BADPARMS, jmapAddPart(sum.doc, other.data(), lengthOf(other), 1, 1));
    }
}

// A checksum is no proof of who wrote them.
TEST(PartialScan, BytesWithTheirChecksumDoNoHarm) {
    FakeHost host;
    const std::string part =
        partOf(host, "", R"([{"a":[1,2.5,"x"],"b":{"c":1e999}},{"b":{}}])", "");
    for (std::size_t i = 0; i + 8 < part.size(); ++i) {
        for (const char byte : {'\0', '\1', '\x02', '\x7f', '\xff'}) {
            std::string other = part.substr(0, part.size() - 8);
            other[i] = byte;
            const uint64_t sum = checksumOf(other);
            for (unsigned shift = 0; shift < 64; shift += 8) {
                other += static_cast<char>(sum >> shift);
            }
            Document to(host);
            ASSERT_QV_OK(to.init());
            jmapCountOnly(to.doc, 0);
            if (jmapAddPart(to.doc, other.data(), lengthOf(other), 1, 1) == QV_OK) {
                (void)jmapEndParts(to.doc);
            }
        }
    }
}

}  // namespace
}  // namespace jmap::test
