// A document's texts in parts, which can be scanned apart from each other.
#pragma once

#include "../document.h"
#include "../partition/partition_reader.h"
#include "part_counts.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qvej {

// A piece of a part of one text: the next one goes on with the text while `partition.more` says so.
struct TextPart {
    std::size_t text = 0;  // which of the document's texts
    std::string name;      // of that text
    TextForm form = TextForm::DOCUMENT;
    Partition partition;
    std::string member;  // of the elements of a large member: its name as it stands in the text
    // Of its last elements, when what comes after them is of the same part: all text before its
    // first element.
    std::shared_ptr<const std::string> head = {};
    bool endsPart = true;    // the last piece of what one scan takes
    bool last = false;       // the last piece of the document
    std::size_t number = 0;  // of the part as it is cut from the text, of all parts, from 0
    std::vector<uint64_t> before = {};  // what ordinals have counted before the part; see PartWalk
};

using TakePart = std::function<void(TextPart)>;

// Reads all texts of a document from their beginning, and gives their parts in order to `take`.
// Parts have at least so many bytes, but for the last ones.  Throws what the reading throws, and
// what `take` does.
//   bytes  kUndivided: each text is one part, in pieces as they are read
inline constexpr uint64_t kUndivided = 0;
using ReadParts = std::function<void(uint64_t bytes, const TakePart& take)>;

// A document that is read in parts, as often as its rows are.
struct PartsOfDocument {
    static constexpr uint64_t kPartBytes = uint64_t{1} << 20;  // of each part, at least

    Engine* engine = nullptr;
    DocumentOptions options = {};  // of all of it
    ReadParts read = {};
    std::function<void()> check = {};  // throws when the texts are no more what they were
    unsigned threads = 1;
    bool asOne = false;      // the rows come of one walk over the whole text
    PartCounts counts = {};  // what scanParts has counted; of a document as one nothing
    // Only one part of the document is read, with that number; see client/ranges.
    struct Excerpt {
        std::size_t number;
        bool last;  // it is the last one
    };
    std::optional<Excerpt> excerpt = {};
};

}  // namespace qvej
