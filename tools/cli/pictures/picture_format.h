// The kinds of pictures that there are.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qvej::cli {

enum class PictureFormat { SVG, DOT, MERMAID, DBML };

[[nodiscard]] std::optional<PictureFormat> pictureNamed(std::string_view name);

// The one that the ending of a file's name says: SVG when it has none, nothing when no format has
// that ending.
[[nodiscard]] std::optional<PictureFormat> pictureOf(std::string_view path);

// "svg|dot|mermaid|dbml"
[[nodiscard]] std::string pictureNames();

}  // namespace qvej::cli
