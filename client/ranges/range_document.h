// A document of which one range is read: its tables, names and ordinals are those of the whole.
//
//     const qvej::PartialScan all = qvej::PartialScan::merged(engine, scans);
//     qvej::RangeDocument part(engine, {all, ranges[3], countsOf(scans 0 to 2), false});
//     qvej::TablePass pass(part.document(), tables);       // the rows of that range
//
// The rows of all ranges, one after the other, are those of the document.  Where values of one
// range belong to rows of the next, a pass throws QV_UNSUPPORTED.
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../document.h"
#include "../engine.h"
#include "partial_scan.h"
#include "text_range.h"

#include <functional>
#include <string>
#include <vector>

namespace qvej {

// A whole file, and its scan.
struct ScannedFile {
    TextRange range;
    PartialScan scan;
};

struct RangeOptions {
    PartialScan whole;                   // the sum of all ranges' scans
    TextRange range;                     // what is read
    std::vector<ContainerCount> before;  // of the ranges before it, added up
    bool last;                           // no range comes after it; an unfinished row ends there
    // In place of a range: whole files, in order, that cannot be read apart.  The four above do not
    // count then.
    std::vector<ScannedFile> together = {};
    std::string map = {};  // as of OpenOptions, the next ones too
    bool exact = false;
    Naming naming = Naming::MAP;
    TextOptions text = {};
    uint64_t maxDepth = 1000;
    // That the scans had, too.
    Shape shape = {};
    bool skipBadLines = false;
    std::string sourceColumn = {};  // of several files: see DocumentOptions; empty: there is none
    std::function<bool()> stopped = {};
};

class RangeDocument {
   public:
    // Reads no row yet.  Throws Error, MapError.
    RangeDocument(Engine& engine, RangeOptions options);

    [[nodiscard]] const Document& document() const { return document_; }

   private:
    Document document_;
};

}  // namespace qvej
