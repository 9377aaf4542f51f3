// What the scan has learnt about a document changes nothing in what it writes.
#include "scan/path_tree.h"

#include "testkit/open_document.h"
#include "testkit/split.h"

#include <random>

namespace jmap::test {
namespace {

// Random documents of few names and shapes, so that paths come back, in order and out of order.
class Maker {
   public:
    explicit Maker(unsigned seed) : random_(seed) {
        names_.insert(names_.end(), {std::string(29, 'n'), std::string(300, 'm')});
        for (int i = 0; seed % 3 == 0 && i < 60; ++i) {
            names_.push_back("k" + std::to_string(i));
        }
        if (seed % 8 != 0) {  // from "" on records are not written with a head
            names_.erase(names_.begin());
        }
    }
    std::string document() {
        return list('[', 5, [this](int d) { return value(d); });
    }

   private:
    std::size_t below(std::size_t n) { return random_() % n; }
    std::string value(int depth) {
        const std::size_t kind = depth == 0 ? 2 : below(5);
        if (kind == 0) {
            return list('[', depth, [this](int d) { return value(d); });
        }
        if (kind == 1) {
            return list('{', depth, [this](int d) {
                return "\"" + names_[below(names_.size())] + "\":" + value(d);
            });
        }
        constexpr const char* kScalars[] = {"1", "-2.5e3", "true", "null", R"("")", R"("abcdef")"};
        return kScalars[below(std::size(kScalars))];
    }
    template <class Part>
    std::string list(char open, int depth, Part part) {
        const std::size_t count = below(8) == 0 ? 30 : below(4);
        const std::string again = depth > 1 && count > 1 ? part(depth - 1) : "";
        std::string text(1, open);
        for (std::size_t i = 0; i < count; ++i) {
            text +=
                (i == 0 ? "" : ",") + (below(2) == 0 && !again.empty() ? again : part(depth - 1));
        }
        return text + (open == '[' ? ']' : '}');
    }

    std::minstd_rand random_;
    Names names_ = split(R"(|a|tags|tags1|x|x\u0002y|y|element1|FAKE|ab|abcdefgh|items)");
};

// With notes of all labels every record is put together from the stack.
TEST(PathTree, ChangesNoRecordAndNoMap) {
    FakeHost host;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string json = Maker(seed).document();
        SCOPED_TRACE(json.substr(0, 2000));
        const Scan fast(host, json);
        host.notes.clear();
        const Scan slow(host, json, {.debug = ",PATH,"});
        ASSERT_QV_OK(fast.status);
        ASSERT_EQ(slow.blocks(), fast.blocks());
        ASSERT_EQ(slow.map() + slow.alldata(), fast.map() + fast.alldata());
        ASSERT_EQ(slow.p()->labelCount, fast.p()->labelCount);
    }
}

TEST(PathTree, MakesAHeadOnlyForWhatComesBack) {
    const Scan scan(R"([{"a":{"b":1}},{"a":{"b":2,"c":[3]}}])");
    const PATHBRANCH* a = scan.p()->pathRoot.members;
    const PATHBRANCH* c = a->members;
    EXPECT_TRUE(a->node.head != nullptr && c->sibling->node.head != nullptr);
    EXPECT_TRUE(c->node.head == nullptr && c->elements[0]->head == nullptr);
    EXPECT_EQ(scan.p()->hash, nullptr) << "nothing is looked up by text";
}

TEST(PathTree, KnowsEachOfManyMembersWithAndWithoutTheirHash) {
    for (const bool hash : {true, false}) {
        HandDocument doc;
        std::string json = "{";
        for (int i = 0; i < 200; ++i) {
            json += (i == 0 ? "\"m" : ",\"m") + std::to_string(i < 100 ? i : 199 - i) + "\":0";
        }
        if (!hash) {
            doc.host.handle()->createTracker = [](QVHndlp, int32_t, int32_t, const QVChar*,
                                                  QVStrSize) { return QVTrackerh{}; };
        }
        ASSERT_QV_OK(doc.document.feed(json, false));
        EXPECT_EQ(hash, doc.p.members != nullptr);
        EXPECT_EQ(100, doc.p.pathRoot.memberCount);
    }
}

}  // namespace
}  // namespace jmap::test
