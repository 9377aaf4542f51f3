// Several texts as one document: against JSON Lines, against each text alone, and where each value
// stands.
#include "client/cursor.h"
#include "client/document.h"
#include "client/input/inputs_reader.h"
#include "client/table_pass.h"
#include "tests/testkit/random_document.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using qvej::Cell;
using Texts = std::vector<std::string>;

const Texts kNames = {"a", "b", "c"};

qvej::Shape shapeOf(const Texts& rules) {
    qvej::Shape shape;
    for (const std::string& rule : rules) {
        shape.addRule(rule);
    }
    return shape;
}

// A document of texts that are called "0", "1"...; a name that ends in .jsonl where `lines` says
// so.
struct Several {
    explicit Several(const Texts& texts, const Texts& rules = {}, bool lines = false) {
        qvej::InputList list = {{}, true};
        for (std::size_t i = 0; i < texts.size(); ++i) {
            list.files.push_back(std::to_string(i));
        }
        const auto open = [&](const std::string& file) {
            return qvej::ByteSource::memory(texts[std::stoul(file)], file);
        };
        qvej::TextOptions reading;
        reading.lines = lines;
        qvej::InputsReader reader(list, reading, open);
        qvej::DocumentOptions options;
        options.shape = shapeOf(rules);
        options.sourceColumn = "source";
        document = std::make_unique<qvej::Document>(engine, reader.documentOptions(options));
        reader.read(*document);
    }

    qvej::Engine engine;
    std::unique_ptr<qvej::Document> document;
};

struct Lines {
    explicit Lines(const std::string& text, const Texts& rules = {}, bool lines = true) {
        qvej::DocumentOptions options;
        options.lines = lines;
        options.shape = shapeOf(rules);
        document = std::make_unique<qvej::Document>(engine, options);
        document->feed(text);
        document->finish();
    }

    qvej::Engine engine;
    std::unique_ptr<qvej::Document> document;
};

std::string recordsOf(const qvej::Document& document) {
    qvej::RecordCursor cursor(document);
    std::string records;
    for (qvej::Record record; cursor.next(record);) {
        records += std::string(record.path) + "=" + std::string(record.value) + "\n";
    }
    return records;
}

std::string shown(const Cell& cell) {
    return std::to_string(cell.kind) + ":" + std::string(cell.text) + std::to_string(cell.count);
}

// The rows of tables by their sources, with all cells that have something; of a document without
// sources under "".  `carry`: as of TablePass.
using Rows = std::map<std::string, Texts>;
Rows rowsOf(const qvej::Document& document, const std::vector<const qvej::Table*>& tables,
            bool carry = false) {
    const std::size_t first = document.hasSourceColumn() ? 1 : 0;
    std::vector<std::unique_ptr<qvej::PassRow>> rows;
    for (const qvej::Table* table : tables) {
        rows.push_back(std::make_unique<qvej::PassRow>(document, *table));
    }
    Rows all;
    qvej::TablePass pass(document, tables, false, carry);
    for (qvej::PassItem item; pass.next(item);) {
        qvej::PassRow& row = *rows[item.table];
        if (!row.take(item)) {
            continue;
        }
        std::string line = tables[item.table]->name;
        for (std::size_t i = first; i < item.cells.size(); ++i) {
            const Cell cell = row.cell(i);
            if (cell.kind != Cell::MISSING) {
                line += "|" + row.columns()[i].name + "=" + shown(cell);
            }
        }
        all[first == 0 ? "" : std::string(row.cell(0).text)].push_back(line);
    }
    return all;
}

std::vector<const qvej::Table*> tablesOf(const qvej::Document& document) {
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
    return tables;
}

Texts together(const Rows& rows) {
    Texts all;
    for (const auto& [source, lines] : rows) {
        all.insert(all.end(), lines.begin(), lines.end());
    }
    return all;
}

// An object as a text of its own is what it is as a line.
TEST(SeveralTexts, OfOneObjectEachAreJsonLines) {
    const std::vector<Texts> shapes = {{}, {"rows /root/a", "text /root/b", "empty drop"}};
    for (unsigned seed = 1; seed <= 30; ++seed) {
        jmap::test::RandomDocument random(seed, kNames);
        Texts objects;
        std::string lines;
        for (int i = 0; i < 9; ++i) {
            objects.push_back(R"({"v":)" + random.text(3) + "}");
            lines += objects.back() + "\n";
        }
        for (const Texts& rules : shapes) {
            SCOPED_TRACE(seed);
            const Several several(objects, rules);
            const Lines one(lines, rules);
            EXPECT_EQ(recordsOf(*several.document), recordsOf(*one.document));
            EXPECT_EQ(several.document->mapText(), one.document->mapText());
            for (const bool carry : {false, true}) {
                const Texts want = together(rowsOf(*one.document, tablesOf(*one.document), carry));
                const Texts got =
                    together(rowsOf(*several.document, tablesOf(*several.document), carry));
                EXPECT_EQ(got, want);
            }
        }
    }
}

// Of texts of all kinds the values of each stand under its own name, as they do alone, and numbers
// that tell their text are in no row of another.
TEST(SeveralTexts, KeepTheValuesOfEachApart) {
    for (unsigned seed = 1; seed <= 80; ++seed) {
        SCOPED_TRACE(seed);
        jmap::test::RandomDocument random(seed, kNames);
        Texts texts = {"[1,2]", "{}", "[]", "[[],[3]]", "[4,[5],{\"a\":6}]"};
        for (int i = 0; i < 8; ++i) {
            texts.push_back(random.text(1 + i % 4));
        }
        for (std::size_t i = 0; i < texts.size(); ++i) {
            for (std::size_t at; (at = texts[i].find("-2.5")) != std::string::npos;) {
                texts[i].replace(at, 4, "-" + std::to_string(i + 10) + ".75");
            }
        }
        const Several several(texts);
        const qvej::Document& document = *several.document;
        const Rows all = rowsOf(document, {&document.alldata()});
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const Lines alone(texts[i], {}, false);
            const Rows want = rowsOf(*alone.document, {&alone.document->alldata()});
            const auto got = all.find(std::to_string(i));
            EXPECT_EQ(got == all.end() ? Texts() : got->second,
                      want.empty() ? Texts() : want.at(""));
        }
        const std::vector<const qvej::Table*> tables = tablesOf(document);
        qvej::TablePass pass(document, tables);
        for (qvej::PassItem item; pass.next(item);) {
            const auto text = [&](std::size_t i) {
                return std::string(item.cells[i].text,
                                   static_cast<std::size_t>(item.cells[i].textLen));
            };
            for (std::size_t i = 1; i < item.cells.size(); ++i) {
                const bool tells = item.cells[i].kind == JMAP_KIND_NUMBER &&
                                   item.cells[i].strayed == 0 && text(i).ends_with(".75");
                if (item.kind == qvej::PassItem::ROW && tells) {
                    EXPECT_EQ(text(i), "-" + std::to_string(std::stoi(text(0)) + 10) + ".75");
                }
            }
        }
    }
}

// Whatever the text before it ends with: no root is counted twice.
TEST(SeveralTexts, CountTheirRootsOnFromTextToText) {
    const Several several({R"([{"a":1},{"a":2}])", R"([{"a":3}])", R"([[{"a":4}]])", R"({"a":5})"});
    const Rows rows = rowsOf(*several.document, tablesOf(*several.document));
    EXPECT_EQ(rows.at("0").at(1), "root|ordinal_root=2:2|a=4:20");
    EXPECT_EQ(rows.at("1"), Texts{"root|ordinal_root=2:3|a=4:30"});
    // The inner array is a root of its own, and its object as well: so it is alone, too.
    EXPECT_EQ(rows.at("2"), Texts{"root|ordinal_root=2:5|a=4:40"});
    EXPECT_EQ(rows.at("3"), Texts{"root|ordinal_root=2:6|a=4:50"});
}

// The name of the column is free in each table, and it holds the name of the text.
TEST(SeveralTexts, HaveAColumnOfTheirNames) {
    const Several several({R"({"Source":1,"SOURCE_1":2,"o":{"x":3}})", R"({"o":{"x":4}})"});
    const std::vector<qvej::Table>& tables = several.document->tables();
    EXPECT_EQ(tables[0].columns[0].name, "source_2");
    EXPECT_EQ(tables[1].columns[0].name, "source");
    EXPECT_EQ(tables[1].columns.size(), 4U);
    EXPECT_EQ(tables[1].columns[3].path, "\2root\2o\2x");
    EXPECT_EQ(rowsOf(*several.document, {&tables[1]}).at("1"),
              Texts{"o|ordinal_root=2:2|ordinal_o=2:2|x=4:40"});
    EXPECT_THROW(qvej::Cursor(*several.document, tables[0]), qvej::Error);
}

// Places say which text they are in, of statistics, of mistakes and of an end that is too early.
TEST(SeveralTexts, HavePlacesInTheirText) {
    const Several several({"{\"a\":1}", "\n{\"a\":\n\"long\"}"});
    const qvej::PathStatistics a = several.document->pathStatistics().front();
    EXPECT_EQ(a.longestAt.text, 1U);
    EXPECT_EQ(a.longestAt.line, 3);
    EXPECT_EQ(a.longestAt.column, 1);
    EXPECT_EQ(a.kinds[0].first.text, 0U);

    const struct {
        Texts texts;
        const char* file;
        int64_t line, column;
        QVStatus status;
    } cases[] = {
        {{"{}", "{\n\"a\":}"}, "1", 2, 5, QV_JSON_VALUE},
        {{"{}", "{}x", "{}"}, "1", 1, 3, QV_JSON_TRAILING},
        {{"{", "}"}, "0", 1, 2, JMAP_INCOMPLETE},
        {{"{}", "[1,"}, "1", 1, 4, JMAP_INCOMPLETE},
        {{"{}", "", "{}"}, "1", 1, 1, JMAP_INCOMPLETE},
        {{"{}", "\n5"}, "1", 2, 1, JMAP_INCOMPLETE},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.texts[1]);
        try {
            const Several broken(c.texts);
            ADD_FAILURE() << "no error";
        } catch (const qvej::Error& error) {
            EXPECT_EQ(error.file(), c.file);
            EXPECT_EQ(error.line(), c.line);
            EXPECT_EQ(error.column(), c.column);
            EXPECT_EQ(error.status(), c.status);
        }
    }
}

}  // namespace
