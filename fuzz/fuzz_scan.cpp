// Property: the cut into buffers, compression, spilling and notes change nothing of a document that
// can be seen: not the status and place of a mistake, not a byte of the records, not the statistics
// of paths, not the automatic map.
//
// Input: a byte of options, a byte for the cut, the document.  With LONG each 0x01 of the document
// stands for a long run of letters, so that records fill several blocks.
#include "fuzz_one.h"
#include "kit/document.h"
#include "kit/input.h"
#include "kit/long_text.h"
#include "kit/require.h"

namespace {

using namespace jmap::fuzz;

enum Option : uint8_t { COMPRESS = 1, SPILL = 2, NOTES = 4, EMPTY_END = 8, LONG = 16 };

void compare(const Document& one, const Document& other) {
    requireEqual(one.failure(), other.failure(), "the same status and place");
    if (one.status != QV_OK) {
        return;
    }
    requireEqual(one.records(), other.records(), "the same records");
    requireEqual(one.statistics(), other.statistics(), "the same statistics");
    requireEqual(one.mapDocument(), other.mapDocument(), "the same automatic map");
}

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const uint8_t options = input.byte();
    const std::size_t cut = input.byte();
    const std::string json =
        (options & LONG) != 0 ? withLongTexts(input.rest()) : std::string(input.rest());
    {
        const Document plain(json);
        // Buffers of a few bytes would make a long document slow.
        const std::size_t split = json.size() > size ? cut * 64 : cut % 80;
        compare(plain, Document(json, {.split = split,
                                       .emptyEnd = (options & EMPTY_END) != 0,
                                       .compress = (options & COMPRESS) != 0,
                                       .spill = (options & SPILL) != 0,
                                       .notes = (options & NOTES) != 0}));
    }
    require(FuzzHost::get().poolsAlive() == 1, "only the engine's own pool is left");
    return 0;
}
