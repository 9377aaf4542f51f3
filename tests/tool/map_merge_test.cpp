// The maps of the parts of a document, merged, are the map of the whole.
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>

namespace jmap::test {
namespace {

// Tables, and columns with their table, type and path.
std::set<std::string> contentOf(const std::string& map) {
    std::set<std::string> content;
    const auto document = nlohmann::json::parse(map);
    for (const auto& table : document.at("DATASETS")) {
        const std::string owner = table.at("DSNAME").dump() + table.at("TABLEPATH").dump();
        content.insert(owner);
        for (const auto& column : table.value("VARIABLES", nlohmann::json::array())) {
            content.insert(owner + column.at("NAME").dump() + column.at("TYPE").dump() +
                           column.at("PATH").dump());
        }
    }
    return content;
}

TEST(ToolMapMerge, MapsOfSingleEventsGiveTheMapOfAllInAnyOrder) {
    const std::string data = JMAP_SOURCE_DIR "/../shared/data/github_events.json";
    if (!std::filesystem::exists(data)) {
        GTEST_SKIP() << data << " is not there";
    }
    const Workplace place;
    int number = 10;
    for (const auto& event : nlohmann::ordered_json::parse(readFile(data))) {
        std::ofstream(place.path() + "/" + std::to_string(number++) + ".event")
            << nlohmann::ordered_json::array({event});
    }
    ASSERT_EQ(place.run("for e in *.event; do qvejmap map $e -o $e.map || exit; done").exitCode, 0);
    const std::set<std::string> whole = contentOf(place.run("qvejmap map " + data).out);
    EXPECT_EQ(whole.size(), 256U);
    EXPECT_EQ(contentOf(place.run("qvejmap map merge *.map").out), whole);
    EXPECT_EQ(contentOf(place.run("qvejmap map merge 10.event.map $(ls -r *.map)").out), whole);
}

}  // namespace
}  // namespace jmap::test
