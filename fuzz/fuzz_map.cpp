// Property: a user map of any bytes, however it is cut into buffers, gives one answer and one
// place; and a map that is accepted, written from its tables and read again, is the same map.
//
// Input: a byte for the cut, the map.
//
// Each map is read for a document of its own, since a map that was rejected leaves traces for later
// ones.
#include "fuzz_one.h"
#include "kit/document.h"
#include "kit/input.h"
#include "kit/map_writer.h"
#include "kit/require.h"

namespace {

using namespace jmap::fuzz;

constexpr std::string_view kDocument =
    R"({"orders":[{"id":1,"text":"a long one","items":[{"sku":"b-12"},{"sku":""}]},{"id":2.5}]})";

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t cut = input.byte();
    const std::string_view map = input.rest();
    {
        const Document first(kDocument);
        const std::string told = first.readMap(map, 0);
        const Document cutOne(kDocument);
        requireEqual(told, cutOne.readMap(map, cut), "the same answer for any cut");
        requireEqual(mapText(first.usermap()), mapText(cutOne.usermap()),
                     "the same map for any cut");
        if (told.starts_with("status QV_OK ")) {
            const std::string written = writtenMap(first.usermap());
            const Document second(kDocument);
            const std::string again = second.readMap(written, 0);
            if (again != told) {
                show("written", written);
            }
            requireEqual(told, again, "the same answer for the map as written");
            requireEqual(mapText(first.usermap()), mapText(second.usermap()),
                         "the same map, read again");
        }
    }
    require(FuzzHost::get().poolsAlive() == 1, "only the engine's own pool is left");
    return 0;
}
