// See picture_format.h.
#include "tools/cli/pictures/picture_format.h"

#include "client/text.h"

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

std::optional<PictureFormat> pictureOf(std::string_view path) {
    const std::string file = lowerCased(path.substr(path.rfind('/') + 1));
    for (const Kind& kind : kKinds) {
        for (const std::string_view ending : kind.endings) {
            if (file.ends_with(ending)) {
                return kind.format;
            }
        }
    }
    return file.find('.') == std::string::npos ? std::optional(PictureFormat::SVG) : std::nullopt;
}

std::string pictureNames() {
    std::string names;
    for (const Kind& kind : kKinds) {
        names += (names.empty() ? "" : "|") + std::string(kind.name);
    }
    return names;
}

}  // namespace qvej::cli
