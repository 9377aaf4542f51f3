// Names of value columns.
#include "automap/column_names.h"

#include "automap/names.h"
#include "testkit/chosen_names.h"
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

// A table whose columns are made one by one.
struct HandTable {
    void add(const std::string& member, const COLUMNNAMES& index) {
        auto* column = poolNew<VARINFO>(doc.p.cpool);
        column->name = poolBytes(doc.p.cpool, kNameMax);
        column->nameLen = static_cast<QVStrSize>(member.copy(column->name, kNameMax));
        EXPECT_QV_OK(makeZULVariable(&doc.p, column->name, &column->nameLen, ds.vhead, index));
        append(ds.vhead, ds.vtail, column);
        ++ds.varcount;
    }
    HandDocument doc;
    DSINFO ds{};
};

// The names that they get when the list of columns is looked through each time.
Names namedByList(const Names& members) {
    HandTable table;
    for (const std::string& member : members) {
        table.add(member, {});
    }
    return namesOf(table.ds.vhead);
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

// Names that collide under a known hash must not make the index a list.
TEST(ColumnNames, ThatWereChosenAreFoundNearTheirPlaces) {
    HandTable table;
    COLUMNNAMES names{};
    for (const std::string& member : chosenNames(1000)) {
        table.add(member, names);
        indexLastColumn(&table.doc.p, &table.ds, names);
    }
    uint64_t steps = 0;  // from the place of each hash to that of its name
    for (uint64_t i = 0; i < names.size; ++i) {
        steps += names.slots[i].column == nullptr ? 0 : (i - names.slots[i].hash) % names.size;
    }
    EXPECT_EQ(names.count, 1000U);
    EXPECT_LT(steps, 5 * names.count);  // one half each is to be expected
    endColumnNames(&table.doc.p, names);
}

}  // namespace
}  // namespace jmap::test
