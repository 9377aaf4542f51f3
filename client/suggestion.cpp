// See suggestion.h.
#include "client/suggestion.h"

#include "client/text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kMostSuggestions = 3;

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string suggestion(std::string_view name, const std::vector<std::string>& names) {
    const std::string wanted = lowerCased(name);
    std::vector<std::pair<std::size_t, std::string>> close;
    for (const std::string& candidate : names) {
        const std::string lower = lowerCased(candidate);
        const std::size_t distance = editDistance(wanted, lower);
        const bool contained = wanted.size() >= 3 && lower.find(wanted) != std::string::npos;
        if (distance <= std::max<std::size_t>(1, wanted.size() / 3) || contained) {
            close.emplace_back(distance, candidate);
        }
    }
    std::stable_sort(close.begin(), close.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string text;
    for (std::size_t i = 0; i < close.size() && i < kMostSuggestions; ++i) {
        text += (i == 0 ? "; did you mean " : ", ") + close[i].second;
    }
    return text.empty() ? text : text + "?";
}

}  // namespace qvej
