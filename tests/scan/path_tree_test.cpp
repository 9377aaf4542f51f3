// What the scan has learnt about a document changes nothing in what it writes.
#include "scan/path_tree.h"

#include "testkit/open_document.h"
#include "testkit/random_document.h"
#include "testkit/split.h"

namespace jmap::test {
namespace {

// Names of a document: few, so that paths come back; or many members of one object.
Names namesOf(unsigned seed) {
    Names names = split(R"(a|tags|tags1|x|x\u0002y|y|element1|FAKE|ab|abcdefgh|items)");
    names.insert(names.end(), {std::string(29, 'n'), std::string(300, 'm')});
    for (int i = 0; seed % 3 == 0 && i < 60; ++i) {
        names.push_back("k" + std::to_string(i));
    }
    if (seed % 8 == 0) {  // from "" on records are not written with a head
        names.emplace_back();
    }
    return names;
}

// With notes of all labels every record is put together from the stack.
TEST(PathTree, ChangesNoRecordAndNoMap) {
    FakeHost host;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string json = RandomDocument(seed, namesOf(seed), 8, 30).text(4);
        SCOPED_TRACE(json.substr(0, 2000));
        const Scan fast(host, json);
        host.notes.clear();
        const Scan slow(host, json, {.debug = ",PATH,"});
        ASSERT_QV_OK(fast.status);
        ASSERT_EQ(slow.blocks(), fast.blocks());
        ASSERT_EQ(slow.map(), fast.map());
        ASSERT_EQ(slow.p()->labelCount, fast.p()->labelCount);
    }
}

TEST(PathTree, MakesAHeadOnlyForWhatComesBack) {
    const Scan scan(R"([{"a":{"b":1}},{"a":{"b":2,"c":[3]}}])");
    const PATHBRANCH* a = scan.p()->pathRoot.node.children->members;
    const PATHBRANCH* c = a->node.children->members;
    EXPECT_TRUE(a->node.head != nullptr && c->sibling->node.head != nullptr);
    EXPECT_TRUE(c->node.head == nullptr && c->node.children->elements[0]->head == nullptr);
    EXPECT_EQ(scan.p()->hash, nullptr) << "nothing is looked up by text";
}

}  // namespace
}  // namespace jmap::test
