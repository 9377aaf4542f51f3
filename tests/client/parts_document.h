// A document that is counted and walked in parts, cut as a test wants it, and the same with
// records.
#pragma once

#include "client/account.h"
#include "client/parts/scan_parts.h"
#include "client/table_pass.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace jmap::test {

using qvej::Document;
using qvej::Partition;
using qvej::PassItem;
using qvej::TablePass;
using qvej::TextForm;
using Lines = std::vector<std::string>;

// A text, or several that are one document.
struct Text {
    std::string text;
    TextForm form = TextForm::DOCUMENT;
};
struct Texts {
    std::vector<Text> texts;
    bool several = false;
    bool source = false;     // tables have a column of their names
    bool refusable = false;  // it may be refused in parts

    [[nodiscard]] qvej::DocumentOptions options() const {
        qvej::DocumentOptions options;
        options.several = several;
        options.sourceColumn = source ? "source" : "";
        if (!several) {
            setForm(options, texts[0].form);
        }
        return options;
    }
    static void setForm(qvej::DocumentOptions& options, TextForm form) {
        options.lines = form == TextForm::LINES;
        options.sequence = form == TextForm::SEQUENCE;
    }
    static std::string nameOf(std::size_t text) { return "text " + std::to_string(text); }
    [[nodiscard]] std::string shown() const {
        std::string all;
        for (const Text& text : texts) {
            all += std::to_string(static_cast<int>(text.form)) + " " + text.text + "\n---\n";
        }
        return all;
    }
};

// How a document is divided.
struct Cutting {
    uint64_t bytes;     // of a part, whatever is asked for; kUndivided: there are none
    std::size_t piece;  // of the text as it comes
    unsigned threads;
};

inline qvej::PartsOfDocument partsOf(qvej::Engine& engine, const Texts& of,
                                     const Cutting& cutting) {
    qvej::PartsOfDocument parts;
    parts.engine = &engine;
    parts.options = of.options();
    parts.threads = cutting.threads;
    parts.asOne = cutting.bytes == qvej::kUndivided;
    parts.read = [of, cutting](uint64_t bytes, const qvej::TakePart& take) {
        for (std::size_t i = 0; i < of.texts.size(); ++i) {
            const Text& text = of.texts[i];
            for (std::size_t at = 0; bytes == qvej::kUndivided; at += cutting.piece) {
                Partition piece;
                piece.more = at < text.text.size();
                piece.text = piece.more ? text.text.substr(at, cutting.piece) : "";
                const bool more = piece.more;
                take({i, Texts::nameOf(i), text.form, std::move(piece), {}});
                if (!more) {
                    break;
                }
            }
            if (bytes == qvej::kUndivided) {
                continue;
            }
            qvej::PartitionFinder finder(text.form, cutting.bytes);
            qvej::PartitionReader reader(finder, [&](Partition partition) {
                const bool ofMember = finder.ofMember() && partition.kind != Partition::Kind::HEAD;
                take({i, Texts::nameOf(i), text.form, std::move(partition),
                      ofMember ? std::string(finder.member()) : std::string()});
            });
            for (std::size_t at = 0; at < text.text.size(); at += cutting.piece) {
                reader.feed(std::string_view(text.text).substr(at, cutting.piece));
            }
            reader.finish();
        }
    };
    return parts;
}

inline void feedAll(Document& document, const Texts& of) {
    for (std::size_t i = 0; i < of.texts.size(); ++i) {
        if (of.several) {
            qvej::DocumentOptions options;
            Texts::setForm(options, of.texts[i].form);
            document.beginText(Texts::nameOf(i), options);
        }
        document.feed(of.texts[i].text);
        if (of.several) {
            document.endText();
        }
    }
    document.finish();
}

// A document with records.
struct Whole {
    explicit Whole(const Texts& of) : document(engine, of.options()) { feedAll(document, of); }
    qvej::Engine engine;
    Document document;
};

// One without.
struct InParts {
    InParts(const Texts& of, const Cutting& cutting)
        : parts(std::make_shared<qvej::PartsOfDocument>(partsOf(engine, of, cutting))),
          document(engine, optionsOf(*parts)),
          counted(count(of)) {
        document.setParts(parts);
        parts->read = [read = parts->read, this](uint64_t bytes, const qvej::TakePart& take) {
            ++readings;
            read(bytes, take);
        };
    }
    static qvej::DocumentOptions optionsOf(const qvej::PartsOfDocument& parts) {
        qvej::DocumentOptions options = parts.options;
        options.counted = parts.asOne;
        options.ofParts = !parts.asOne;
        return options;
    }
    bool count(const Texts& of) {
        if (!parts->asOne) {
            return qvej::scanParts(*parts, document);
        }
        feedAll(document, of);
        return true;
    }
    qvej::Engine engine;
    std::shared_ptr<qvej::PartsOfDocument> parts;
    Document document;
    bool counted;
    std::atomic<int> readings = 0;  // since it was counted
};

inline std::string shown(const qvej::Spot& spot) {
    return std::to_string(spot.text) + ":" + std::to_string(spot.line) + ":" +
           std::to_string(spot.column) + " ";
}

// All that a scan leaves but its records.
inline std::string described(const Document& document) {
    std::ostringstream out;
    out << document.mapText() << "\n";
    for (const qvej::Table& table : document.tables()) {
        out << table.name << ":";
        for (const qvej::Column& column : table.columns) {
            out << " " << column.name << "=" << column.path << " " << static_cast<int>(column.type)
                << " " << column.length;
        }
        out << "\n";
    }
    for (const qvej::PathStatistics& path : document.pathStatistics()) {
        out << path.path << " " << path.count << " " << path.type << " " << path.longest << "@"
            << shown(path.longestAt) << path.inexact << "@" << shown(path.firstInexact);
        for (const qvej::KindStatistics& kind : path.kinds) {
            out << kind.kindName << " " << kind.count << "@" << shown(kind.first);
        }
        out << "\n";
    }
    for (const qvej::TextSource& text : document.texts()) {
        out << text.name << "\n";
    }
    const JMAPTotals totals = document.totals();
    out << totals.records << " " << totals.values << " " << int{totals.labelsSlip};
    return out.str();
}

inline std::string shown(const qvej::PassCell& cell) {
    std::string text =
        "|" + std::to_string(cell.kind) + (cell.fresh ? "+" : "-") + (cell.strayed ? "!" : "");
    if (cell.kind == JMAP_CELL_COUNT) {
        return text + std::to_string(cell.count);
    }
    return cell.kind == JMAP_CELL_MISSING
               ? text
               : text.append(cell.text, static_cast<std::size_t>(cell.textLen));
}

inline std::vector<const qvej::Table*> tablesOf(const Document& document) {
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
    return tables;
}

inline std::string shown(const PassItem& item) {
    std::string line = std::to_string(item.kind) + " " + std::to_string(item.table);
    for (const qvej::PassCell& cell : item.cells) {
        line += shown(cell);
    }
    return item.kind == PassItem::ROW
               ? line
               : line + " column " + std::to_string(item.column) + " " + std::string(item.text);
}

// All items in order, then what the pass tells of each column.
inline Lines itemsOf(const Document& document, bool carry) {
    const std::vector<const qvej::Table*> tables = tablesOf(document);
    TablePass pass(document, tables, false, carry);
    Lines lines;
    for (PassItem item; pass.next(item);) {
        lines.push_back(shown(item));
    }
    const std::size_t first = document.hasSourceColumn() ? 1 : 0;
    for (std::size_t t = 0; t < tables.size(); ++t) {
        std::string& line = lines.emplace_back("columns of " + tables[t]->name);
        for (std::size_t c = first; c < tables[t]->columns.size(); ++c) {
            const JMAPPassColumn of = pass.column(t, c);
            for (const uint64_t count : {of.values, of.overwritten, of.firstOverwritten, of.strayed,
                                         uint64_t{of.below}, pass.shown(t, c).value_or(0)}) {
                line += " " + std::to_string(count);
            }
            const qvej::PassCell& left = pass.left(t, c);  // what an ordinal has is no value
            const bool value = left.kind != JMAP_CELL_COUNT && left.kind != JMAP_CELL_MISSING;
            line += value ? shown(left) : "|";
        }
    }
    return lines;
}

// What becomes of the values, and the number of the first in each way.
inline Lines accountOf(const Document& document) {
    Lines lines;
    for (const qvej::PathAccount& path : qvej::accountOf(document, false)) {
        std::string& line = lines.emplace_back(path.path + " " + std::to_string(path.values) +
                                               " in cells " + std::to_string(path.cells));
        std::vector<qvej::LostValues> ways(path.lost.begin(), path.lost.end());
        ways.insert(ways.end(), {path.strayed, path.cut});
        for (const qvej::LostValues& lost : ways) {
            line += " " + std::to_string(lost.count) + "@" + std::to_string(lost.first);
        }
    }
    return lines;
}

inline void expectSame(const Lines& want, const Lines& got) {
    for (std::size_t i = 0; i < std::min(want.size(), got.size()); ++i) {
        ASSERT_EQ(want[i], got[i]) << "item " << i;
    }
    ASSERT_EQ(want.size(), got.size());
}

inline Texts manyObjects(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "[" : ",") + std::string(R"({"a":[{"c":)") + std::to_string(i) + "}]}";
    }
    return {{{text + "]"}}};
}

}  // namespace jmap::test
