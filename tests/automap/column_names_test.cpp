// Names of value columns.
#include "automap/column_names.h"

#include "automap/names.h"
#include "automap/variables.h"
#include "tests/automap/hand_document.h"

#include <random>

namespace jmap::test {
namespace {

Names namesOf(const DSINFO& ds) {
    Names names;
    for (const VARINFO& column : each(ds.vhead)) {
        names.emplace_back(column.name, static_cast<size_t>(column.nameLen));
    }
    return names;
}

// The names that members get when the list of columns is looked through each time.
Names namedByList(HandDocument& doc, const Names& members) {
    DSINFO ds{};
    for (const std::string& member : members) {
        auto* column = poolNew<VARINFO>(doc.p.cpool);
        column->name = poolBytes(doc.p.cpool, kNameMax);
        column->nameLen = static_cast<QVStrSize>(member.copy(column->name, kNameMax));
        EXPECT_QV_OK(makeZULVariable(&doc.p, column->name, &column->nameLen, ds.vhead, {}));
        append(ds.vhead, ds.vtail, column);
    }
    return namesOf(ds);
}

// The names that doVariables gives.
Names namedByTable(HandDocument& doc, const Names& members) {
    PATHINFO* head = nullptr;
    for (const std::string& member : members) {
        PATHINFO* added = doc.addPath("/root/" + member, head);
        head = head == nullptr ? added : head;
    }
    DSINFO ds{};
    EXPECT_QV_OK(doVariables(&doc.p, &ds, head));
    return namesOf(ds);
}

TEST(ColumnNames, AreUniqueWithoutRegardToCase) {
    const std::pair<Names, Names> cases[] = {
        {{"id", "ID", "Id"}, {"id", "ID2", "Id3"}},
        {{"a2", "a", "A"}, {"a2", "a", "A3"}},
        {{"9", "8", "\xC3\xA9", "\xC3\x89"}, {"_", "_2", "__", "__2"}},
    };
    for (const auto& [members, expected] : cases) {
        HandDocument doc;
        EXPECT_EQ(namedByTable(doc, members), expected);
    }
    HandDocument doc;
    Names members(1001, std::string(32, 'q'));
    members[1] += "zz";
    const Names names = namedByTable(doc, members);
    EXPECT_EQ(names[0], members[0]);
    EXPECT_EQ(names[1], std::string(31, 'q') + "2");
    EXPECT_EQ(names[9], std::string(30, 'q') + "10");
    EXPECT_EQ(names[1000], std::string(28, 'q') + "1001");
}

// A long table has an index, which must change no name and end with the table.
TEST(ColumnNames, OfALongTableAreThoseOfTheList) {
    std::mt19937 random(7);
    HandDocument doc;
    Names members;
    for (int i = 0; i < 1000; ++i) {
        std::string member(random() % 8 == 0 ? 31 : 0, 'z');
        member.append(1 + random() % 2, "aAb2"[random() % 4]);
        members.push_back(member + "aB123"[random() % 5]);
    }
    EXPECT_EQ(namedByTable(doc, members), namedByList(doc, members));
    EXPECT_EQ(doc.host.calls.back(), "destroy tracker column name tracker");
}

}  // namespace
}  // namespace jmap::test
