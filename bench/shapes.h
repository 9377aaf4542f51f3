// Documents of special shapes, made for the benchmarks.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>

namespace jmap::bench {

inline std::string number(std::size_t i) {
    return std::to_string(i);
}

// About `bytes` of one array of objects.
inline std::string bytesOf(std::size_t bytes) {
    std::string text = R"({"orders":[)";
    for (std::size_t i = 0; text.size() < bytes; ++i) {
        text += (i == 0 ? "" : ",") + (R"({"id":)" + number(i)) +
                R"(,"status":"shipped","total":17.25,"customer":{"name":"Ada","vip":true},)"
                R"("items":[{"sku":"A1","qty":2},{"sku":"B2","qty":1}]})";
    }
    return text + "]}";
}

// Objects within objects, keyed by names, as tables of what browsers support are: ten paths in
// seven tables for each of `paths` / 10 names, about 43 bytes a path.
inline std::string pathsOf(std::size_t paths) {
    std::string text = R"({"api":{)";
    for (std::size_t i = 0; i < paths / 10; ++i) {
        if (i % 100 == 0) {
            text += (i == 0 ? "" : "},") + (R"("interface_group_)" + number(i / 100)) + "\":{";
        } else {
            text += ',';
        }
        text +=
            "\"interface_feature_" + number(i) +
            R"(":{"link":"https://developer.example.org/docs/web/interfaces/feature)" + number(i) +
            R"(","support":{"alpha_desktop":{"version_added":"12","partial_implementation":true},)"
            R"("beta_desktop":{"version_added":"79"},)"
            R"("gamma_android":{"version_added":"14","partial_implementation":false},)"
            R"("delta_android":{"version_added":false},)"
            R"("omega_portable":{"version_added":"8.0"}},)"
            R"("current_status":{"on_standards_track":true,"experimental":false}})";
    }
    return text + "}}}";
}

// That many arrays of row objects, each with a name of its own.
inline std::string tablesOf(std::size_t tables) {
    std::string text = "{";
    for (std::size_t i = 0; i < tables; ++i) {
        text += (i == 0 ? "\"t" : ",\"t") + number(i) + R"(":[{"a":1,"b":"x"},{"a":2}])";
    }
    return text + "}";
}

// One object with that many members.
inline std::string columnsOf(std::size_t columns) {
    std::string text = "{";
    for (std::size_t i = 0; i < columns; ++i) {
        text += (i == 0 ? "\"c" : ",\"c") + number(i) + (i % 2 == 0 ? "\":1" : "\":\"text\"");
    }
    return text + "}";
}

// One object with an array of that many scalars of every kind, about 11 bytes each.
inline std::string scalarsOf(std::size_t scalars) {
    const char* const kinds[] = {"3326.95", "\"folding lamp 837\"",   "true", "null",
                                 "283.47",  "\"vintage monitor 788\""};
    std::string text = R"({"values":[)";
    for (std::size_t i = 0; i < scalars; ++i) {
        if (i != 0) {
            text += ',';
        }
        text += kinds[i % std::size(kinds)];
    }
    return text + "]}";
}

// The same values that many levels deep.
inline std::string depthOf(std::size_t depth) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
        text += R"({"level":)";
    }
    text += '[';
    for (std::size_t i = 0; i < 50000; ++i) {
        text += (i == 0 ? R"({"a":1,"b":"x"})" : R"(,{"a":2,"b":"y"})");
    }
    return text + "]" + std::string(depth, '}');
}

// A user map of one table.
inline std::string userMapOf(std::size_t columns) {
    std::string text = R"({"DATASETS":[{"DSNAME":"wide","TABLEPATH":"/root","VARIABLES":[)";
    for (std::size_t i = 0; i < columns; ++i) {
        text += (i == 0 ? R"({"NAME":"c)" : R"(,{"NAME":"c)") + number(i) +
                R"(","TYPE":"CHARACTER","PATH":"/root/c)" + number(i) + "\"}";
    }
    return text + "]}]}";
}

}  // namespace jmap::bench
