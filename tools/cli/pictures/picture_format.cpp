// See picture_format.h.
#include "tools/cli/pictures/picture_format.h"

namespace qvej::cli {

namespace {

struct Kind {
    PictureFormat format;
    std::string_view name;
    std::string_view endings[2];
};

constexpr Kind kKinds[] = {{PictureFormat::SVG, "svg", {".svg", ".svg"}},
                           {PictureFormat::DOT, "dot", {".dot", ".gv"}},
                           {PictureFormat::MERMAID, "mermaid", {".mmd", ".mermaid"}},
                           {PictureFormat::DBML, "dbml", {".dbml", ".dbml"}}};

}  // namespace

std::optional<PictureFormat> pictureNamed(std::string_view name) {
    for (const Kind& kind : kKinds) {
        if (kind.name == name) {
            return kind.format;
        }
    }
    return std::nullopt;
}

PictureFormat pictureOf(std::string_view file) {
    for (const Kind& kind : kKinds) {
        for (const std::string_view ending : kind.endings) {
            if (file.ends_with(ending)) {
                return kind.format;
            }
        }
    }
    return PictureFormat::SVG;
}

std::string pictureNames() {
    std::string names;
    for (const Kind& kind : kKinds) {
        names += (names.empty() ? "" : "|") + std::string(kind.name);
    }
    return names;
}

}  // namespace qvej::cli
