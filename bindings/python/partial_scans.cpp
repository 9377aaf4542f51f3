// See partial_scans.h.
#include "bindings/python/partial_scans.h"

#include "bindings/python/interrupt.h"
#include "bindings/python/shared_document.h"
#include "bindings/python/source.h"
#include "bindings/python/texts.h"
#include "client/engine.h"
#include "client/open/shape_of_texts.h"
#include "client/path_names.h"
#include "client/ranges/bad_lines.h"
#include "client/ranges/partial_scan.h"
#include "client/ranges/text_range.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace nb = nanobind;
using namespace nb::literals;

namespace qvej::python {

namespace {

// A scan as the package has it.
nb::object bytesOf(const PartialScan& scan) {
    return nb::bytes(scan.bytes().data(), scan.bytes().size());
}

using Rules = std::vector<std::string>;

Shape shapeOf(const Rules& rules) {
    Shape shape;
    std::for_each(rules.begin(), rules.end(),
                  [&](const std::string& rule) { shape.addRule(rule); });
    return shape;
}

Rules rulesOf(const Shape& shape) {
    Rules rules;
    for (const ShapeRule& rule : shape.rules()) {
        rules.push_back(rule.text());
    }
    return rules;
}

PartialScanOptions optionsOf(const std::string& encoding, bool lines, uint64_t depth,
                             uint64_t maxPaths, const Rules& shape) {
    PartialScanOptions options;
    options.text.encoding = encoding;
    options.text.lines = lines;
    options.maxDepth = depth;
    options.maxPaths = maxPaths;
    options.shape = shapeOf(shape);
    options.stopped = &isStopped;
    return options;
}

// What `work` makes of an engine.
template <class Work>
auto worked(const Work& work) {
    std::optional<decltype(work(std::declval<Engine&>()))> made;
    interruptible([&] {
        Engine engine;
        made.emplace(work(engine));
    });
    return *std::move(made);
}

// Begin and end, kind, the name of the member, line and column.
nb::tuple tupleOf(const TextPiece& piece) {
    return nb::make_tuple(piece.begin, piece.end, static_cast<int>(piece.kind),
                          nb::bytes(piece.member.data(), piece.member.size()), piece.line,
                          piece.column);
}

TextPiece pieceOf(const nb::handle& from) {
    const auto [begin, end, kind, member, line, column] =
        nb::cast<std::tuple<uint64_t, uint64_t, int, nb::bytes, int64_t, int64_t>>(from);
    return {begin, end, static_cast<Partition::Kind>(kind), stringOf(member), line, column};
}

// Of each range its form, its pieces, and the head or None.
//   readAt  None: it is a file of this machine
//   size    None: all lines are read
nb::list rangeList(const nb::bytes& file, uint64_t bytes, const std::string& encoding, bool lines,
                   const nb::object& readAt, std::optional<uint64_t> size) {
    const std::string name = stringOf(file);
    const ReadAt read = readAtOf(readAt);
    std::vector<TextRange> ranges;
    interruptible([&] {
        TextOptions text;
        text.encoding = encoding;
        text.lines = lines;
        ranges = rangesOf(name, bytes, text, &isStopped, read, size);
    });
    nb::list list;
    for (const TextRange& range : ranges) {
        nb::list pieces;
        for (const TextPiece& piece : range.pieces) {
            pieces.append(tupleOf(piece));
        }
        nb::object head = nb::none();
        if (range.head) {
            head = tupleOf(*range.head);
        }
        list.append(nb::make_tuple(static_cast<int>(range.form), nb::tuple(pieces), head));
    }
    return list;
}

bool isKnown(const TextPiece& piece) {
    return piece.kind >= Partition::Kind::WHOLE && piece.kind <= Partition::Kind::REST;
}

//   head  a piece or None
TextRange rangeOf(const nb::bytes& file, int form, const nb::tuple& pieces,
                  const nb::object& head) {
    TextRange range = {stringOf(file), static_cast<TextForm>(form), {}};
    for (const nb::handle piece : pieces) {
        range.pieces.push_back(pieceOf(piece));
    }
    if (!head.is_none()) {
        range.head = pieceOf(head);
    }
    const bool known = form >= 0 && form <= static_cast<int>(TextForm::SEQUENCE) &&
                       std::all_of(range.pieces.begin(), range.pieces.end(), isKnown);
    if (range.pieces.empty() || !known) {
        throw nb::value_error("this is no part of a file");
    }
    return range;
}

// The scan, its line feeds when it is of lines, and how many lines were left out.
nb::tuple scanRange(const nb::bytes& file, int form, const nb::tuple& pieces,
                    const std::string& encoding, bool lines, uint64_t depth, uint64_t maxPaths,
                    const Rules& shape, bool skipBad, const nb::object& readAt) {
    TextRange range = rangeOf(file, form, pieces, nb::none());
    range.readAt = readAtOf(readAt);
    PartialScanOptions options =
        optionsOf(encoding, lines || range.form == TextForm::LINES, depth, maxPaths, shape);
    options.skipBadLines = skipBad;
    SeenLines seen;
    const PartialScan scan =
        worked([&](Engine& engine) { return PartialScan::of(engine, range, options, &seen); });
    return nb::make_tuple(bytesOf(scan), seen.feeds, seen.bad);
}

// Line, column and reason of each bad line of a range.
nb::list badLines(const nb::bytes& file, int form, const nb::tuple& pieces,
                  const std::string& encoding, bool lines, uint64_t depth,
                  const nb::object& readAt) {
    TextRange range = rangeOf(file, form, pieces, nb::none());
    range.readAt = readAtOf(readAt);
    const TextOptions text = optionsOf(encoding, lines, depth, 0, {}).text;
    std::vector<std::tuple<int64_t, int64_t, std::string>> found;
    interruptible([&] {
        const Engine engine;
        eachBadLine(engine, range, text, depth, &isStopped, [&](const BadLine& bad) {
            found.emplace_back(bad.line, bad.column, bad.reason);
        });
    });
    nb::list list;
    for (const auto& [line, column, reason] : found) {
        list.append(nb::make_tuple(line, column, textOf(reason)));
    }
    return list;
}

// The rules of a text, each as a shape has it.
Rules shapeRules(const std::string& text, const nb::bytes& name) {
    Shape shape;
    shape.addText(text, stringOf(name));
    return rulesOf(shape);
}

// Those of the shape that is found in some files.
//   readAts  of each file a function or None
Rules foundRules(const std::vector<nb::bytes>& files, const std::vector<nb::object>& readAts,
                 const std::string& encoding, bool lines, uint64_t depth) {
    std::vector<std::string> names(files.size());
    std::transform(files.begin(), files.end(), names.begin(), stringOf);
    std::vector<ReadAt> reads(readAts.size());
    std::transform(readAts.begin(), readAts.end(), reads.begin(), readAtOf);
    const TextOptions text = optionsOf(encoding, lines, depth, 0, {}).text;
    FinderOptions finding;
    finding.maxDepth = depth;
    return worked([&](Engine& engine) {
        const auto open = [&](std::size_t i) {
            return wholeFile(names[i], reads.at(i), &isStopped);
        };
        return rulesOf(shapeOfTexts(engine, names.size(), open, text, finding, &isStopped).shape());
    });
}

nb::object scanText(const nb::object& buffer, bool lines, const std::string& encoding,
                    uint64_t depth, uint64_t maxPaths, const Rules& shape) {
    const HeldBuffer text(buffer);
    const PartialScanOptions options = optionsOf(encoding, lines, depth, maxPaths, shape);
    return bytesOf(
        worked([&](Engine& engine) { return PartialScan::of(engine, text.bytes(), options); }));
}

nb::object mergeScans(const std::vector<nb::bytes>& scans, uint64_t maxPaths) {
    std::vector<PartialScan> all;
    for (const nb::bytes& scan : scans) {
        all.emplace_back(stringOf(scan));
    }
    return bytesOf(
        worked([&](Engine& engine) { return PartialScan::merged(engine, all, maxPaths); }));
}

nb::object mapOfScan(const nb::bytes& bytes) {
    const PartialScan scan(stringOf(bytes));
    return textOf(worked([&](Engine& engine) { return scan.mapText(engine); }));
}

nb::list countsOfScan(const nb::bytes& bytes) {
    const PartialScan scan(stringOf(bytes));
    nb::list list;
    for (const ContainerCount& of : worked([&](Engine& engine) { return scan.counts(engine); })) {
        list.append(nb::make_tuple(textOf(withSlashes(of.path)), of.count));
    }
    return list;
}

// The same with paths as the engine has them, for open_part.  None: they do not tell ordinals.
nb::object containersOfScan(const nb::bytes& bytes) {
    const PartialScan scan(stringOf(bytes));
    const auto counts = worked([&](Engine& engine) {
        return scan.tellsOrdinals(engine) ? std::optional(scan.counts(engine)) : std::nullopt;
    });
    if (!counts) {
        return nb::none();
    }
    nb::list list;
    for (const ContainerCount& of : *counts) {
        list.append(nb::make_tuple(nb::bytes(of.path.data(), of.path.size()), of.count));
    }
    return list;
}

using TablePositions = std::optional<std::vector<std::size_t>>;

//   scan    of all parts
//   before  containers as in containers_of_scan, and how often they have come before this part
//   last    no part comes after it
//   together  if there are some: whole files in place of the part, with their scans and read_at
//   tables    positions; None: all
std::shared_ptr<SharedDocument> openPart(const nb::bytes& file, int form, const nb::tuple& pieces,
                                         const nb::object& head, const nb::bytes& scan,
                                         const std::vector<std::tuple<nb::bytes, uint64_t>>& before,
                                         bool last, const std::string& encoding, bool lines,
                                         uint64_t depth, const nb::bytes& map,
                                         const nb::bytes& mapName, bool originalNames, bool exact,
                                         bool carry, const std::string& sourceColumn,
                                         const Rules& shape, bool skipBad, const nb::object& readAt,
                                         const nb::list& together, const TablePositions& tables) {
    RangeOptions options = {
        PartialScan(stringOf(scan)), rangeOf(file, form, pieces, head), {}, last};
    for (const auto& [path, count] : before) {
        options.before.push_back({stringOf(path), count});
    }
    options.range.readAt = readAtOf(readAt);
    for (const nb::handle of : together) {
        const auto [name, scanned, read] =
            nb::cast<std::tuple<nb::bytes, nb::bytes, nb::object>>(of);
        TextRange whole = {.file = stringOf(name)};
        whole.readAt = readAtOf(read);
        options.together.push_back({std::move(whole), PartialScan(stringOf(scanned))});
    }
    options.map = stringOf(map);
    options.naming = originalNames ? Naming::ORIGINAL : Naming::MAP;
    options.exact = exact;
    options.text.encoding = encoding;
    options.text.lines = lines || options.range.form == TextForm::LINES;
    options.maxDepth = depth;
    options.sourceColumn = sourceColumn;
    options.shape = shapeOf(shape);
    options.skipBadLines = skipBad;
    options.stopped = &isStopped;
    std::shared_ptr<SharedDocument> document;
    interruptible([&, name = stringOf(mapName)] {
        document = withMapNamed(name, [&] {
            return std::make_shared<SharedDocument>(std::move(options), carry, tables);
        });
    });
    return document;
}

nb::object factsOf(const SharedDocument& document) {
    std::string facts;
    interruptible([&] { facts = document.facts(); });
    return nb::bytes(facts.data(), facts.size());
}

nb::object sumOfFacts(const SharedDocument& document, const std::vector<nb::bytes>& facts) {
    std::vector<std::string> all(facts.size());
    std::transform(facts.begin(), facts.end(), all.begin(), stringOf);
    std::string sum;
    interruptible([&] { sum = document.sumOf(all); });
    return nb::bytes(sum.data(), sum.size());
}

void learn(SharedDocument& document, const nb::bytes& facts) {
    interruptible([&, bytes = stringOf(facts)] { document.learn(bytes); });
}

}  // namespace

void registerPartialScans(nb::module_& module) {
    module.def("ranges", &rangeList, "file"_a, "bytes"_a, "encoding"_a, "lines"_a,
               "read_at"_a.none(), "size"_a.none());
    module.def("scan_range", &scanRange, "file"_a, "form"_a, "pieces"_a, "encoding"_a, "lines"_a,
               "depth"_a, "max_paths"_a, "shape"_a, "skip_bad"_a, "read_at"_a.none());
    module.def("scan_text", &scanText, "buffer"_a, "lines"_a, "encoding"_a, "depth"_a,
               "max_paths"_a, "shape"_a);
    module.def("bad_lines", &badLines, "file"_a, "form"_a, "pieces"_a, "encoding"_a, "lines"_a,
               "depth"_a, "read_at"_a.none());
    module.def("shape_rules", &shapeRules, "text"_a, "name"_a);
    module.def("found_rules", &foundRules, "files"_a, "read_ats"_a, "encoding"_a, "lines"_a,
               "depth"_a);
    module.def("merge_scans", &mergeScans, "scans"_a, "max_paths"_a = 0);
    module.def("map_of_scan", &mapOfScan, "scan"_a);
    module.def("counts_of_scan", &countsOfScan, "scan"_a);
    module.def("containers_of_scan", &containersOfScan, "scan"_a);
    module.def("open_part", &openPart, "file"_a, "form"_a, "pieces"_a, "head"_a.none(), "scan"_a,
               "before"_a, "last"_a, "encoding"_a, "lines"_a, "depth"_a, "map"_a, "map_name"_a,
               "original_names"_a, "exact"_a, "carry"_a, "source_column"_a, "shape"_a, "skip_bad"_a,
               "read_at"_a.none(), "together"_a, "tables"_a.none());
    module.def("facts_of", &factsOf, "document"_a);
    module.def("sum_of_facts", &sumOfFacts, "document"_a, "facts"_a);
    module.def("learn", &learn, "document"_a, "facts"_a);
}

}  // namespace qvej::python
