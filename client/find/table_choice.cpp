// See table_choice.h.
#include "client/find/table_choice.h"

#include "client/error.h"
#include "client/escape.h"
#include "client/shape/path_matcher.h"
#include "client/suggestion.h"
#include "client/text.h"

#include <re2/re2.h>

#include <algorithm>

namespace qvej {

namespace {

// "*" stands for any characters, "?" for one; letters in any case, as names of tables are.  \C is a
// byte: a name may end in half a character.
RE2 regexOf(const std::string& glob) {
    RE2::Options options;
    options.set_case_sensitive(false);
    options.set_dot_nl(true);
    std::string regex;
    for (const char c : glob) {
        regex += c == '*' ? "\\C*" : c == '?' ? "." : RE2::QuoteMeta(re2::StringPiece(&c, 1));
    }
    return RE2(regex, options);
}

std::string shownPath(const Table& table) {
    return escaped(withSlashes(table.path()));
}

// The node of a path with separators 0x02; null: of an empty path, which no pattern matches.
const PathMatcher::Node* nodeOf(PathMatcher& matcher, std::string_view path) {
    constexpr std::string_view kRoot = "\x02root";
    if (!path.starts_with(kRoot)) {
        return nullptr;
    }
    const PathMatcher::Node* node = matcher.root();
    for (path.remove_prefix(kRoot.size()); !path.empty();) {
        const std::size_t end = std::min(path.find('\x02', 1), path.size());
        node = matcher.child(node, path.substr(1, end - 1));
        path.remove_prefix(end);
    }
    return node;
}

// Which tables have been chosen, and which parts of the choice have chosen any.
class Choosing {
   public:
    Choosing(const std::vector<Table>& tables, std::string_view advice)
        : tables_(tables), advice_(advice), chosen_(tables.size()) {}

    void byName(const std::string& glob) {
        const RE2 regex = regexOf(glob);
        bool found = false;
        std::vector<std::string> names;
        for (std::size_t i = 0; i < tables_.size(); ++i) {
            if (RE2::FullMatch(tables_[i].name, regex)) {
                chosen_[i] = found = true;
            }
            names.push_back(tables_[i].name);
        }
        if (!found) {
            fail("no table has a name like '" + glob + "'", glob, names);
        }
    }

    void byPath(const PathPattern& pattern) {
        PathMatcher matcher({pattern});
        bool found = false;
        std::vector<std::string> paths;
        for (std::size_t i = 0; i < tables_.size(); ++i) {
            const PathMatcher::Node* node = nodeOf(matcher, tables_[i].path());
            if (node != nullptr && !node->matched.empty()) {
                chosen_[i] = found = true;
            }
            paths.push_back(shownPath(tables_[i]));
        }
        if (!found) {
            fail("no table has a path like " + pattern.text(), pattern.text(), paths);
        }
    }

    [[nodiscard]] std::vector<const Table*> result() const {
        std::vector<const Table*> result;
        for (std::size_t i = 0; i < tables_.size(); ++i) {
            if (chosen_[i]) {
                result.push_back(&tables_[i]);
            }
        }
        return result;
    }

   private:
    [[noreturn]] void fail(const std::string& what, const std::string& wanted,
                           const std::vector<std::string>& known) const {
        const std::string hint = suggestion(wanted, known);
        throw Error(JMAP_NOTABLE, shown(what + (hint.empty() ? std::string(advice_) : hint)));
    }

    const std::vector<Table>& tables_;
    std::string_view advice_;
    std::vector<bool> chosen_;
};

}  // namespace

std::vector<const Table*> chosenTables(const TableChoice& choice, const std::vector<Table>& tables,
                                       std::string_view advice) {
    if (choice.names.empty() && choice.paths.empty()) {
        return each(tables);
    }
    Choosing choosing(tables, advice);
    for (const std::string& glob : choice.names) {
        choosing.byName(glob);
    }
    for (const PathPattern& pattern : choice.paths) {
        choosing.byPath(pattern);
    }
    return choosing.result();
}

std::vector<const Table*> tablesAt(const std::string& path, const std::vector<Table>& tables) {
    std::vector<const Table*> result;
    const auto addAll = [&](auto matches) {
        for (const Table& table : tables) {
            if (matches(table)) {
                result.push_back(&table);
            }
        }
    };
    try {
        PathMatcher matcher({PathPattern::parse(path)});
        addAll([&](const Table& table) {
            const PathMatcher::Node* node = nodeOf(matcher, table.path());
            return node != nullptr && !node->matched.empty();
        });
    } catch (const PatternMistake&) {
        // Blanks and quotes are shown as they are.
    }
    if (result.empty()) {
        addAll([&](const Table& table) { return shownPath(table) == path; });
    }
    return result;
}

}  // namespace qvej
