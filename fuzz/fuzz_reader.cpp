// Property: a pass over many tables gives for each of them, cell by cell, the rows that Read gives
// for it alone, for the automatic map, ALLDATA and a user map; and Read gives the same rows again
// after a reset (but for what it keeps, see kit/table_rows.cpp).
//
// Input: a byte of options, the document up to the first 0x00 (which no JSON document holds), and
// bytes from which a user map is made.  With LONG each 0x01 of the document stands for a long run
// of letters, so that rows outlive their block.
#include "fuzz_one.h"
#include "kit/document.h"
#include "kit/input.h"
#include "kit/long_text.h"
#include "kit/map_recipe.h"
#include "kit/require.h"
#include "kit/table_rows.h"

namespace {

using namespace jmap::fuzz;

enum Option : uint8_t { COMPRESS = 1, SPILL = 2, LONG = 16 };

constexpr std::size_t kMostTables = 60;

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const uint8_t options = input.byte();
    const std::string_view text = input.upTo('\0');
    {
        const Document document(
            (options & LONG) != 0 ? withLongTexts(text) : std::string(text),
            {.compress = (options & COMPRESS) != 0, .spill = (options & SPILL) != 0});
        if (document.status != QV_OK) {
            return 0;
        }
        const auto compare = [&](QVMemPtr map) {
            requireSameRows(document.handle, tablesOf(document.handle, map, kMostTables));
        };
        compare(document.automap());
        if (!input.atEnd()) {
            const std::string map = mapFromRecipe(document, input);
            const std::string told = document.readMap(map, 0);
            if (!told.starts_with("status QV_OK ")) {
                show("map", map);
                requireEqual("", told, "a map that was made is accepted");
            }
            compare(document.usermap());
        }
    }
    return 0;
}
