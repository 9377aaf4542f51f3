// Names of value columns.
#include "automap/column_names.h"

#include "automap/names.h"
#include "testkit/open_document.h"

#include <random>
#include <set>

namespace jmap::test {
namespace {

Names namesOf(VARINFO* columns) {
    Names names;
    for (const VARINFO& column : each(columns)) {
        names.emplace_back(view(column.name, column.nameLen));
    }
    return names;
}

// The names that the members of one object get.
Names columnNames(const Names& members) {
    std::string json = "{";
    for (const std::string& member : members) {
        json += (json == "{" ? "\"" : ",\"") + member + "\":1";
    }
    return namesOf(Scan(json + "}", {.ordinals = 0}).p()->automap->dshead->vhead);
}

// The names that they get when the list of columns is looked through each time.
Names namedByList(const Names& members) {
    HandDocument doc;
    DSINFO ds{};
    for (const std::string& member : members) {
        auto* column = poolNew<VARINFO>(doc.p.cpool);
        column->name = poolBytes(doc.p.cpool, kNameMax);
        column->nameLen = static_cast<QVStrSize>(member.copy(column->name, kNameMax));
        EXPECT_QV_OK(makeZULVariable(&doc.p, column->name, &column->nameLen, ds.vhead, {}));
        append(ds.vhead, ds.vtail, column);
    }
    return namesOf(ds.vhead);
}

TEST(ColumnNames, HaveLettersAndDigitsAndAreUniqueWithoutRegardToCase) {
    const std::pair<Names, Names> cases[] = {
        {{"2019", "a-b c", "_9", "Az09_", "@[`{/:"}, {"_019", "a_b_c", "_9", "Az09_", "______"}},
        {{"id", "ID", "Id"}, {"id", "ID2", "Id3"}},
        {{"a2", "a", "A"}, {"a2", "a", "A3"}},
        {{"9", "8", "\xC3\xA9", "\xC3\x89"}, {"_", "_2", "__", "__2"}},
    };
    for (const auto& [members, expected] : cases) {
        EXPECT_EQ(columnNames(members), expected);
    }
    Names members;
    for (int i = 0; i < 1001; ++i) {
        members.push_back(std::string(32, 'q') + std::to_string(i));
    }
    const Names names = columnNames(members);
    EXPECT_EQ(names[0], std::string(32, 'q'));
    EXPECT_EQ(names[1], std::string(31, 'q') + "2");
    EXPECT_EQ(names[9], std::string(30, 'q') + "10");
    EXPECT_EQ(names[1000], std::string(28, 'q') + "1001");
}

// A long table has an index, which must change no name.
TEST(ColumnNames, OfALongTableAreThoseOfTheList) {
    std::mt19937 random(7);
    std::set<std::string> members;
    while (members.size() < 1000) {
        std::string member(random() % 8 == 0 ? 31 : 0, 'z');
        for (int i = 0; i < 4; ++i) {
            member += "aAbB12-+!#"[random() % 10];
        }
        members.insert(member);
    }
    Names mixed(members.begin(), members.end());
    std::shuffle(mixed.begin(), mixed.end(), random);
    EXPECT_EQ(columnNames(mixed), namedByList(mixed));
}

}  // namespace
}  // namespace jmap::test
