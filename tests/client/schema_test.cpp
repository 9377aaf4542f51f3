// Types and keys of tables.
#include "client/schema/schema.h"

#include "client/schema/typed_value.h"
#include "tests/client/read_document.h"
#include "tests/testkit/random_document.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <set>

namespace {

using jmap::test::ReadDocument;

// The type of the column v of rows with these values, and after it the cells as that type has them.
std::string typed(const std::string& values, bool dates = true, const std::string& informat = {}) {
    std::string text;
    for (std::size_t begin = 0; begin < values.size();) {
        const std::size_t end = std::min(values.find(' ', begin), values.size());
        text += (text.empty() ? "{\"v\":" : ",{\"v\":") + values.substr(begin, end - begin) + "}";
        begin = end + 1;
    }
    ReadDocument read("[" + text + "]");
    if (!informat.empty()) {
        read.document.useMap(R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
            {"NAME":"v","PATH":"/root/v","TYPE":"NUMERIC","INFORMAT":[")" +
                             informat + R"(",0,0]}]}]})");
    }
    const std::vector<const qvej::Table*> tables = read.tables();
    const qvej::Schema schema =
        qvej::schemaOf(read.document, tables, false, false, 1, {.dates = dates});
    const qvej::TableSchema& table = schema.tables.at(0);
    const std::size_t column = table.fields.size() - 1;
    const qvej::DataType type = table.fields[column].type;
    std::string line = nameOf(type) + ":";
    qvej::TablePass pass(read.document, tables);
    qvej::PassRow row(read.document, *tables[0]);
    std::string buffer;
    for (qvej::PassItem item = {}; pass.next(item);) {
        if (!row.take(item)) {
            continue;
        }
        const qvej::Cell cell = row.cell(column);
        line += " ";
        if (!qvej::hasValue(cell)) {
            line += "~";
            continue;
        }
        switch (type.kind) {
            case qvej::DataType::BOOLEAN:
                line += qvej::booleanOf(cell) ? "yes" : "no";
                break;
            case qvej::DataType::BIGINT:
                line += std::to_string(qvej::bigintOf(cell));
                break;
            case qvej::DataType::DOUBLE: {
                char digits[32];
                (void)std::snprintf(digits, sizeof digits, "%.17g", qvej::doubleOf(cell));
                line += digits;
                break;
            }
            case qvej::DataType::DECIMAL:
                line += std::to_string(
                    static_cast<int64_t>(qvej::decimalOf(cell, type.scale) % 1000000));
                break;
            case qvej::DataType::DATE:
                line += std::to_string(qvej::daysOf(cell));
                break;
            case qvej::DataType::TIMESTAMP:
                line += std::to_string(qvej::unitsOf(cell, type.fraction)) + "=" +
                        std::string(qvej::textOf(cell, type, buffer));
                break;
            default:
                line += qvej::textOf(cell, type, buffer);
        }
    }
    return line;
}

TEST(ColumnFacts, ATypeKeepsEveryValue) {
    constexpr struct {
        const char *values, *expected;
    } kCases[] = {
        {"true false null", "BOOLEAN: yes no ~"},
        {"1 -2 null", "BIGINT: 1 -2 ~"},
        {"9223372036854775807 -9223372036854775808",
         "BIGINT: 9223372036854775807 -9223372036854775808"},
        {"1 1.5", "DOUBLE: 1 1.5"},
        {"1 1.0", "DOUBLE: 1 1"},
        {"1 1e2", "DOUBLE: 1 100"},
        {"-0 1", "DOUBLE: -0 1"},
        {"0.1 123456789012345", "DOUBLE: 0.10000000000000001 123456789012345"},
        {"9007199254740993 0.5", "DECIMAL(17,1): 409930 5"},
        {"9223372036854775808 1", "DECIMAL(19,0): 775808 1"},
        {"12345678901234567890.12 -1", "DECIMAL(22,2): 789012 -100"},
        {"0.1000000000000000055511151231257827 2", "DECIMAL(35,34): 257827 0"},
        {"99999999999999999999999999999999999999 1", "DECIMAL(38,0): 999999 1"},
        {"99999999999999999999999999999999999999 0.5",
         "TEXT: 99999999999999999999999999999999999999 0.5"},
        {"1e400 1", "TEXT: 1e400 1"},
        {"1e260 12345678901234567890.12", "TEXT: 1e260 12345678901234567890.12"},
        {"1e-260 12345678901234567890.12", "TEXT: 1e-260 12345678901234567890.12"},
        {"9223372036854775809 -0", "TEXT: 9223372036854775809 -0"},
        {"9223372036854775809 true", "DECIMAL(19,0): 775809 1"},
        {"true 2 false", "BIGINT: 1 2 0"},
        {"true 2.5", "DOUBLE: 1 2.5"},
        {"\"x\" 2.50 true null", "TEXT: x 2.50 true ~"},
        {"null null", "TEXT: ~ ~"},
        {"\"2024-02-29\" null", "DATE: 19782 ~"},
        {"\"2024-02-29\" \"x\"", "TEXT: 2024-02-29 x"},
        {"\"2024-02-29\" 5", "TEXT: 2024-02-29 5"},
        {"\"2024-02-29\" \"2024-02-29T00:00\"", "TEXT: 2024-02-29 2024-02-29T00:00"},
        {"\"2024-02-29T00:00Z\" \"1969-12-31T23:59:59.5Z\"",
         "TIMESTAMP(1) UTC: 17091648000=2024-02-29T00:00Z -5=1969-12-31T23:59:59.5Z"},
        {"\"2024-02-29T00:00\"", "TIMESTAMP(0): 1709164800=2024-02-29T00:00"},
        {"\"2024-02-29T00:00\" \"2024-02-29T00:00Z\"", "TEXT: 2024-02-29T00:00 2024-02-29T00:00Z"},
        {"\"2024-02-29T00:00:00.123456789\" \"1500-01-01T00:00\"",
         "TEXT: 2024-02-29T00:00:00.123456789 1500-01-01T00:00"},
        {"\"2024-02-29T00:00:00.123456\" \"1500-01-01T00:00\"",
         "TIMESTAMP(6): 1709164800123456=2024-02-29T00:00:00.123456 "
         "-14831769600000000=1500-01-01T00:00"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(typed(c.values), c.expected) << c.values;
    }
    EXPECT_EQ(typed("\"2024-02-29\"", false), "TEXT: 2024-02-29");
}

TEST(ColumnFacts, UnixTimesOfAMapAreInstants) {
    EXPECT_EQ(typed("1709211900 0", true, "unix"),
              "TIMESTAMP(0) UTC: 1709211900=2024-02-29T13:05:00Z 0=1970-01-01T00:00:00Z");
    EXPECT_EQ(typed("1709211900250 -1", true, "unixms"),
              "TIMESTAMP(3) UTC: 1709211900250=2024-02-29T13:05:00.250Z "
              "-1=1969-12-31T23:59:59.999Z");
    EXPECT_EQ(typed("1709211900.000001", true, "unix"),
              "TIMESTAMP(6) UTC: 1709211900000001=2024-02-29T13:05:00.000001Z");
    EXPECT_EQ(typed("9100000000 -62135596800.5", true, "unix"),
              "TIMESTAMP(3) UTC: 9100000000000=2258-05-15T01:46:40.000Z "
              "-62135596800500=0000-12-31T23:59:59.500Z");
    EXPECT_EQ(typed("0.0000001", true, "unix").substr(0, 6), "DOUBLE");
}

// "orders[2] key=ordinal_orders": rows, key; "!1" missing, "*1" repeated; then the parent: ">root",
// ">>root" when it is a foreign key, "=" when one to one, "?2" orphans.
std::string keysOf(const qvej::Schema& schema) {
    std::string text;
    for (const qvej::TableSchema& table : schema.tables) {
        text +=
            (text.empty() ? "" : " ") + table.table->name + "[" + std::to_string(table.rows) + "]";
        text += table.key ? "#" : table.own ? "" : "-";
        text += table.missing != 0 ? "!" + std::to_string(table.missing) : "";
        text += table.repeated != 0 ? "*" + std::to_string(table.repeated) : "";
        if (table.parent) {
            text += table.parent->foreignKey ? ">>" : ">";
            text += schema.tables[table.parent->table].table->name;
            text += table.parent->one ? "=" : "";
            text += table.parent->orphans != 0 ? "?" + std::to_string(table.parent->orphans) : "";
        }
    }
    return text;
}

TEST(Schema, KeysHoldForEveryRow) {
    const struct {
        const char *text, *expected;
        uint64_t ordinals = UINT64_MAX;
    } kCases[] = {
        {R"([{"a":1},{"a":2}])", "root[2]#"},
        {R"({"orders":[{"id":1,"items":[{"s":1},{"s":2}]},{"id":2}]})",
         "orders[2]# orders_items[2]#>>orders"},
        {R"({"orders":[{"id":1,"items":[{}]},{"items":[{}]}]})",
         "orders[1]# orders_items[2]#>orders=?1"},
        {R"({"o":[{"id":1,"i":[{"n":1}]},{"i":[{"n":2},{"n":3}]},{"id":3,"i":[{"n":4}]}]})",
         "o[2]# o_i[4]#>o?2"},
        {R"([{"v":1,"c":{"n":1}},{"v":2,"c":{"n":2}}])", "root[2]# c[2]#>>root="},
        // The parent comes after its children.
        {R"([{"c":[{"n":1},{"n":2}],"v":1},{"c":[{"n":3}],"v":2}])", "c[3]#>>root root[2]#"},
        // Not the one directly above, which is no table.
        {R"({"a":[{"v":1,"b":{"c":[{"n":1},{"n":2}]}}]})", "a[1]# b_c[2]#>>a"},
        {R"({"orders":[{"id":1,"items":[{"s":1},{"s":2}]},{"id":2}]})",
         "orders[2]- orders_items[2]-", 0},
    };
    for (const auto& c : kCases) {
        qvej::DocumentOptions options;
        options.ordinals = c.ordinals;
        const ReadDocument read(c.text, options);
        const auto tables = read.tables();
        const qvej::Schema schema = qvej::schemaOf(read.document, tables, false, false, 1, {});
        EXPECT_EQ(keysOf(schema), c.expected) << c.text;
    }
}

// What the rows of random documents say when all of them are at hand.
TEST(Schema, AgreesWithAllRowsOfRandomDocuments) {
    for (unsigned seed = 0; seed < 150; ++seed) {
        const std::string text = jmap::test::RandomDocument(seed, {"a", "b", "c"}).text(6);
        const ReadDocument read(text);
        const auto tables = read.tables();
        const qvej::Schema schema = qvej::schemaOf(read.document, tables, false, false, 2, {});
        std::vector<std::vector<std::vector<std::optional<uint64_t>>>> rows(tables.size());
        std::vector<std::unique_ptr<qvej::PassRow>> row;
        for (const qvej::Table* table : tables) {
            row.push_back(std::make_unique<qvej::PassRow>(read.document, *table));
        }
        qvej::TablePass pass(read.document, tables);
        for (qvej::PassItem item = {}; pass.next(item);) {
            if (!row[item.table]->take(item)) {
                continue;
            }
            auto& cells = rows[item.table].emplace_back();
            for (std::size_t c = 0; c < tables[item.table]->columns.size(); ++c) {
                const qvej::Cell cell = row[item.table]->cell(c);
                cells.push_back(cell.kind == qvej::Cell::COUNT ? std::optional(cell.count)
                                                               : std::nullopt);
            }
        }
        for (std::size_t t = 0; t < tables.size(); ++t) {
            const qvej::TableSchema& table = schema.tables[t];
            ASSERT_EQ(table.rows, rows[t].size()) << text;
            if (!table.own) {
                continue;
            }
            std::set<std::optional<uint64_t>> own;
            for (const auto& cells : rows[t]) {
                own.insert(cells[*table.own]);
            }
            EXPECT_EQ(table.key, own.size() == rows[t].size() && !own.contains(std::nullopt))
                << text << " " << table.table->name;
            if (!table.parent) {
                continue;
            }
            std::set<std::optional<uint64_t>> above;
            for (const auto& cells : rows[table.parent->table]) {
                above.insert(cells[table.parent->ordinal]);
            }
            above.erase(std::nullopt);
            uint64_t orphans = 0;
            std::map<std::optional<uint64_t>, int> children;
            bool one = true;
            for (const auto& cells : rows[t]) {
                const std::optional<uint64_t> parent = cells[table.parent->column];
                orphans += above.contains(parent) ? 0 : 1;
                one = ++children[parent] == 1 && parent && one;
            }
            EXPECT_EQ(table.parent->orphans, orphans) << text << " " << table.table->name;
            EXPECT_EQ(table.parent->one, one) << text << " " << table.table->name;
        }
    }
}

// What ordinals say, and the same of their parts added.
TEST(KeyFacts, PartsAddUpToTheWhole) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto draw = [&](uint64_t below) { return random() % below; };
        const bool ordered = seed % 2 == 0;  // own ordinals, as documents have them
        struct Facts {
            qvej::OwnOrdinals own;
            qvej::ParentOrdinals parents;

            void add(Facts& later) {
                own.add(later.own);
                parents.add(later.parents, own);
                later = {};
            }
        } whole, sum, part, smallPart;
        uint64_t atOwn = 80;
        uint64_t atParent = 80;
        for (uint64_t row = draw(14); row > 0; --row) {
            if (draw(3) == 0) {
                atOwn += !ordered && draw(8) == 0 ? draw(9) - 5 : draw(3);
                const auto ordinal = draw(9) == 0 ? std::nullopt : std::optional(atOwn);
                whole.own.take(ordinal);
                smallPart.own.take(ordinal);
            } else {
                atParent += draw(8) == 0 ? draw(9) - 5 : draw(3);
                const auto ordinal = draw(9) == 0 ? std::nullopt : std::optional(atParent);
                whole.parents.take(ordinal, whole.own);
                smallPart.parents.take(ordinal, smallPart.own);
            }
            if (row == 1 || draw(3) == 0) {
                part.add(smallPart);
            }
            if (row == 1 || draw(6) == 0) {
                sum.add(part);
            }
        }
        EXPECT_EQ(sum.own.missing(), whole.own.missing());
        EXPECT_EQ(sum.own.repeated(), whole.own.repeated());
        for (uint64_t ordinal = 10; ordinal < 120; ++ordinal) {
            EXPECT_EQ(sum.own.has(ordinal), whole.own.has(ordinal)) << ordinal;
        }
        if (ordered) {
            EXPECT_EQ(sum.parents.orphans(sum.own), whole.parents.orphans(whole.own));
        }
        EXPECT_EQ(sum.parents.onePerParent(), whole.parents.onePerParent());
    }
}

// Every field of a schema.
std::string textOf(const qvej::Schema& schema) {
    std::string text = keysOf(schema);
    for (const qvej::TableSchema& table : schema.tables) {
        for (const qvej::Field& field : table.fields) {
            text += " | " + nameOf(field.type) + " " + std::to_string(field.filled) + " " +
                    std::to_string(field.longest) + (field.minusZero ? " -0" : "") +
                    (field.unixLike == qvej::Field::SECONDS        ? " s"
                     : field.unixLike == qvej::Field::MILLISECONDS ? " ms"
                                                                   : "");
        }
    }
    return text;
}

// Values of few kinds at each path, so that columns have all types.
class TypedRows {
   public:
    explicit TypedRows(unsigned seed) : random_(seed) {}

    // {"o":[{"a":1,"c":[{"a":2},...]},...]}
    std::string text() {
        std::string text;
        for (std::size_t rows = 1 + draw(12); rows > 0; --rows) {
            text += (text.empty() ? "" : ",") + object(0);
        }
        return "{\"o\":[" + text + "]}";
    }

   private:
    static constexpr const char* kNames[] = {"a", "b", "u"};
    static constexpr const char* kValues[] = {
        "1",
        "-27",
        "1709211900",
        "1709211901",
        "1709211900250",
        "1709211900.000001",
        "0.5",
        "12.0625",
        "-0",
        "9007199254740993",
        "12345678901234567890.12",
        "0.10000000000000000555",
        "1e400",
        "true",
        "false",
        "null",
        "\"2024-02-29\"",
        "\"1500-01-01T00:00\"",
        "\"2024-02-29T00:00:00.123456789\"",
        "\"2024-02-29T00:00:00.25\"",
        "\"2024-02-29T00:00Z\"",
        "\"\"",
        "\"letters\"",
        "-0",
    };

    std::size_t draw(std::size_t below) { return random_() % below; }

    std::string object(int depth) {
        std::string text;
        for (const char* name : kNames) {
            // Unix times come in order in the list, texts too.
            std::size_t& first = firsts_[std::to_string(depth) + name];
            first = first != 0 ? first : 1 + draw(std::size(kValues));
            if (draw(5) != 0) {
                const std::size_t value = std::min(first + draw(3), std::size(kValues)) - 1;
                text += (text.empty() ? "\"" : ",\"") + std::string(name) + "\":" + kValues[value];
            }
        }
        std::string below;
        for (std::size_t rows = depth == 2 ? 0 : draw(4); rows > 0; --rows) {
            below += (below.empty() ? "" : ",") + object(depth + 1);
        }
        if (!below.empty()) {
            below = "\"c" + std::to_string(depth) + "\":[" + below + "]";
            const bool after = draw(2) == 0;
            text = text.empty() ? below : after ? text + "," + below : below + "," + text;
        }
        return "{" + text + "}";
    }

    std::mt19937 random_;
    std::map<std::string, std::size_t> firsts_;
};

// As another process gets it.
qvej::SchemaBuilder::Batch sent(qvej::SchemaBuilder::Batch batch,
                                const qvej::SchemaBuilder& noRows) {
    return qvej::SchemaBuilder::Batch(batch.bytes(), noRows);
}

TEST(Schema, BytesOfBatchesAreChecked) {
    ReadDocument read(R"([{"a":1,"b":[{"c":"x"}]},{"a":2.5}])");
    const auto tables = read.tables();
    const qvej::SchemaBuilder none(read.document, tables, {});
    const std::string bytes = qvej::factsOf(read.document, tables, false, none).bytes();
    EXPECT_EQ(bytes, qvej::SchemaBuilder::Batch(bytes, none).bytes());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::string damaged = bytes;
        damaged[i] = static_cast<char>(damaged[i] ^ 4);
        EXPECT_THROW(qvej::SchemaBuilder::Batch(damaged, none), qvej::Error) << i;
        EXPECT_THROW(qvej::SchemaBuilder::Batch(bytes.substr(0, i), none), qvej::Error) << i;
    }
    const std::vector<const qvej::Table*> one = {tables[0]};
    const qvej::SchemaBuilder other(read.document, one, {});
    EXPECT_THROW(qvej::SchemaBuilder::Batch(bytes, other), qvej::Error);
}

// However the rows of a document are divided, and wherever they are.
TEST(Schema, BatchesAddUpToTheWhole) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string text = seed % 4 == 0
                                     ? jmap::test::RandomDocument(seed, {"a", "b", "c"}).text(6)
                                     : TypedRows(seed).text();
        SCOPED_TRACE(text);
        ReadDocument read(text);
        if (seed % 4 == 1) {
            read.document.useMap(R"({"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/o","VARIABLES":[
                {"NAME":"a","PATH":"/root/o/a","TYPE":"NUMERIC","INFORMAT":["unix",0,0]},
                {"NAME":"u","PATH":"/root/o/u","TYPE":"NUMERIC","INFORMAT":["unix",0,0]}]}]})");
        }
        const auto tables = read.tables();
        for (const bool counts : {false, true}) {
            const qvej::SchemaOptions options = {true, counts};
            qvej::SchemaBuilder whole(read.document, tables, options);
            const qvej::SchemaBuilder none = whole;
            qvej::SchemaBuilder sum = none;
            qvej::SchemaBuilder batch = none;
            std::mt19937 random(seed);
            std::vector<std::unique_ptr<qvej::PassRow>> rows;
            for (const qvej::Table* table : tables) {
                rows.push_back(std::make_unique<qvej::PassRow>(read.document, *table));
            }
            qvej::TablePass pass(read.document, tables);
            for (qvej::PassItem item = {}; pass.next(item);) {
                if (!rows[item.table]->take(item)) {
                    continue;
                }
                whole.take(item.table, *rows[item.table]);
                batch.take(item.table, *rows[item.table]);
                if (random() % 4 == 0) {
                    sum.add(sent(batch.takeBatch(none), none));
                }
            }
            sum.add(sent(batch.takeBatch(none), none));
            EXPECT_EQ(textOf(sum.end()), textOf(whole.end()));
        }
    }
}

}  // namespace
