// See database.h.
#include "formats/database/database.h"

#include "client/text.h"

namespace qvej {

namespace {

std::string quoted(std::string_view text, char quote) {
    std::string sql(1, quote);
    for (const char c : text) {
        if (c == '\0') {
            sql += "\\u0000";  // no statement can have the byte
        } else {
            sql.append(c == quote ? 2 : 1, c);
        }
    }
    return sql += quote;
}

}  // namespace

std::string quotedName(std::string_view name) {
    return quoted(name, '"');
}

std::string quotedText(std::string_view text) {
    return quoted(text, '\'');
}

std::string shownName(const std::string& name) {
    return name.empty() ? "\"\"" : name;
}

std::string nameKey(const std::string& name, const NameRules& rules) {
    return rules.same == NameRules::EXACT ? name : lowerCased(name);
}

std::string parentsMissing(const std::string& rows, const std::string& parent) {
    return rows + " would have no row in " + parent +
           ", which a foreign key demands (convert both tables together, or drop that key first)";
}

}  // namespace qvej
