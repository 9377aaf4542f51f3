#include "kit/map_recipe.h"

#include <algorithm>
#include <array>
#include <vector>

namespace jmap::fuzz {
namespace {

constexpr std::size_t kMostPaths = 64;

// The paths of values and all paths above them, with slashes, and a few that are not there.
std::vector<std::string> pathsOf(const Document& document) {
    std::vector<std::string> paths = {"/root", "/root/none", "", "/", "root", "/root/FAKE"};
    JMAPPathh path = nullptr;
    while (paths.size() < kMostPaths && jmapNextPath(document.handle, &path) == QV_OK) {
        JMAPPathInfo info;
        jmapPathInfo(path, &info);
        std::string text = pathOf(jmapPathText, path, info.pathLen);
        std::replace(text.begin(), text.end(), '\x02', '/');
        while (text.size() > 1 && std::ranges::find(paths, text) == paths.end()) {
            paths.push_back(text);
            text.resize(std::min(text.rfind('/'), text.size()));
        }
    }
    return paths;
}

std::string columnFromRecipe(const std::vector<std::string>& paths, Input& recipe) {
    constexpr std::array<const char*, 3> kTypes = {"ORDINAL", "NUMERIC", "CHARACTER"};
    constexpr std::array<const char*, 4> kOptions = {
        "", R"(,"OPTIONS":["RETAIN"])", R"(,"OPTIONS":["NORETAIN"])", R"(,"INFORMAT":["x"])"};
    constexpr std::array<const char*, 6> kLengths = {"0", "1", "2", "5", "17", "-1"};
    const std::string& path = paths[recipe.byte() % paths.size()];
    const uint8_t kind = recipe.byte();
    const uint8_t length = recipe.byte();
    return std::string("{\"NAME\":\"c\",\"TYPE\":\"") + kTypes[kind % 3] +
           "\",\"PATH\":" + quoted(path) + kOptions[kind / 3 % 4] + ",\"LENGTH\":" +
           // The longest cell makes long rows, so it is rare.
           kLengths[length == 0xFF ? 5 : length % 5] + "}";
}

}  // namespace

std::string mapFromRecipe(const Document& document, Input& recipe) {
    const std::vector<std::string> paths = pathsOf(document);
    std::string text = "{\"DATASETS\":[";
    for (int table = 0; table < kMostMapTables && (table == 0 || !recipe.atEnd()); ++table) {
        text += (table == 0 ? "" : ",") + std::string("{\"DSNAME\":\"t\",\"TABLEPATH\":") +
                quoted(paths[recipe.byte() % paths.size()]) + ",\"VARIABLES\":[";
        const int columns = recipe.byte() % 8;
        for (int column = 0; column < columns; ++column) {
            text += (column == 0 ? "" : ",") + columnFromRecipe(paths, recipe);
        }
        text += "]}";
    }
    return text + "]}";
}

}  // namespace jmap::fuzz
