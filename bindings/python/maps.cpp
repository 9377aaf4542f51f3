// See maps.h.
#include "bindings/python/maps.h"

#include "bindings/python/interrupt.h"
#include "bindings/python/texts.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/maps/map_difference.h"
#include "client/maps/map_merge.h"
#include "client/maps/map_model.h"

#include <nanobind/stl/vector.h>

#include <string>
#include <vector>

namespace nb = nanobind;
using namespace nb::literals;

namespace qvej::python {

namespace {

nb::list listOf(const std::vector<std::string>& texts) {
    nb::list list;
    for (const std::string& text : texts) {
        list.append(textOf(text));
    }
    return list;
}

nb::list differences(const nb::bytes& a, const nb::bytes& b) {
    const std::string first = stringOf(a);
    const std::string second = stringOf(b);
    std::vector<std::string> lines;
    interruptible([&] {
        Engine engine;
        lines = mapDifferences(readMapModel(engine, first), readMapModel(engine, second));
    });
    return listOf(lines);
}

// The text of the merged map, and what is not as the maps have it.
nb::tuple merge(const std::vector<nb::bytes>& maps) {
    std::vector<std::string> texts;
    for (const nb::bytes& map : maps) {
        texts.push_back(stringOf(map));
    }
    MergedMap merged;
    interruptible([&] {
        Engine engine;
        std::vector<MapModel> models;
        for (const std::string& text : texts) {
            models.push_back(readMapModel(engine, text));
        }
        merged = mergedMap(models);
    });
    return nb::make_tuple(textOf(mapDocument(merged.map)), listOf(merged.remarks));
}

}  // namespace

void registerMaps(nb::module_& module) {
    module.def("map_differences", &differences, "a"_a, "b"_a);
    module.def("merge_maps", &merge, "maps"_a);
}

}  // namespace qvej::python
