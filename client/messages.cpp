// See messages.h.
#include "client/messages.h"

namespace qvej {

std::string visible(const std::string& tableName) {
    return tableName.empty() ? "\"\"" : tableName;
}

std::string spotText(const std::string& file, Spot spot, const std::vector<TextSource>& texts) {
    if (spot.line == 0) {
        return file;
    }
    return (texts.empty() ? file : texts[spot.text].name) + ":" + std::to_string(spot.line) + ":" +
           std::to_string(spot.column);
}

}  // namespace qvej
