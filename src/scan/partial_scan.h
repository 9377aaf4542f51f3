// What a scan has counted, as bytes, and the sum of several.
//
// A document whose outermost value is an array of objects may be scanned in parts, by documents,
// processes or machines that know nothing of each other.  Added in order to another document, the
// parts give it the statistics that a scan of the whole would have: also the order in which paths
// first appeared, and how often each container did, which is what ordinals count.
//
//     scan of part 1 ─► bytes ─┐
//     scan of part 2 ─► bytes ─┼─► statistics of the whole ─► map
//     scan of part 3 ─► bytes ─┘
//
// (The tree may have a node more: an element whose number does not follow the last one seen is a
// member of the tree, and a part has not seen all.)
//
// The bytes.  Integers are LEB128, texts a length and so many bytes:
//
//     "QVPS" 1
//     flags (PARTFLAG), records, longest value, markers of the root, failed lookups
//     depths, and for each the longest label
//     nodes of the path tree, each after its parent: number of the parent (0: the root), kind
//       (PARTNODE), name, number of an element or markers of a member
//     paths that had values, by group and in order of appearance: number of the node, flag, type,
//       count, longest value and its place, numbers that a double does not keep and their first
//       place, kinds of values: kind, count, place of the first
//     checksum of all before, 8 bytes, the lowest first
//
// Tested by tests/scan/partial_scan_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

// Set by the scan of a part: what the scan of the next one would have to know.
enum PARTFLAG : uint32_t {
    PART_EMPTYNAME = 1,      // a member had the name "": see inStep
    PART_OTHERELEMENTS = 2,  // the outermost array has elements that are no objects
    PART_LONGELEMENTS = 4  // an element's name may be cut, or not, by names before: see elementRoom
};

// What has been scanned so far is not of the part, but around it: nothing of it is counted.
void beginPart(JMAP_PRIVATE* p);

// PARTFLAG bits of what has been scanned or added.
[[nodiscard]] uint32_t partFlags(const JMAP_PRIVATE* p) noexcept;

// Gives what the document, which counts alone, has counted.  The bytes live until the next call.
// QV_NOMEM.
[[nodiscard]] QVStatus writePart(JMAP_PRIVATE* p, std::string_view* bytes);

// Adds a part to a document that has scanned nothing itself.
//   begins  where the text of the part begins in the whole; its line may have more bits set above
//           those that a line needs
// Returns QV_OK; QV_BADPARMS for other bytes; QV_NOMEM; a status of the guard.  After a failure the
// document cannot be used.
[[nodiscard]] QVStatus addPart(JMAP_PRIVATE* p, std::string_view bytes, PLACE begins);

}  // namespace jmap
