// See account_report.h.
#include "tools/cli/reports/account_report.h"

#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/reports/listing.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <unordered_map>

namespace qvej::cli {

namespace {

// What is lost of one path in one way.
struct Line {
    const PathAccount* account;
    std::string_view way;
    uint64_t count;
    uint64_t first;
    Spot place;
};

std::vector<Line> linesOf(const std::vector<PathAccount>& accounts,
                          const std::vector<Spot>& starts) {
    std::vector<Line> lines;
    for (std::size_t i = 0; i < accounts.size(); ++i) {
        const auto add = [&](std::string_view way, const LostValues& lost) {
            if (lost.count != 0) {
                lines.push_back({&accounts[i], way, lost.count, lost.first,
                                 lost.first == 1 ? starts[i] : Spot{}});
            }
        };
        for (std::size_t loss = 0; loss < kLosses; ++loss) {
            add(nameOf(static_cast<Loss>(loss)), accounts[i].lost[loss]);
        }
        add("strayed", accounts[i].strayed);
        add("cut", accounts[i].cut);
    }
    return lines;
}

// Can the file be read twice?  A pipe cannot, whatever its name.
bool staysInPlace(const std::string& file) {
    struct stat found = {};
    return file != "-" && ::stat(file.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

// Reads the document again for the places that are not known.
void findPlaces(const Options& options, const Shape& shape, std::vector<Line>& lines) {
    std::vector<Watch> watches;
    std::vector<Line*> wanted;
    for (Line& line : lines) {
        if (line.place.line == 0 && line.first != 0) {
            watches.push_back({line.account->path, line.first});
            wanted.push_back(&line);
        }
    }
    const std::vector<std::string>& files = options.inputs.files;
    if (watches.empty() || !std::all_of(files.begin(), files.end(), staysInPlace)) {
        return;
    }
    ReadingOptions again = options.reading;
    again.cache.clear();
    again.shape = {{}, shape, {}};
    again.debug.clear();
    const Session session(again, options.inputs, {}, {.watches = watches, .again = true});
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        wanted[i]->place = session.document().watched(i);
    }
}

// " (2 of them strayed, 1 cut)"; nothing when there are none.
std::string partOfCells(uint64_t strayed, uint64_t cut) {
    std::string text;
    for (const auto& [count, way] : {std::pair{strayed, " strayed"}, std::pair{cut, " cut"}}) {
        if (count != 0) {
            text += (text.empty() ? " (" : ", ") + std::to_string(count) +
                    (text.empty() ? " of them" : "") + way;
        }
    }
    return text.empty() ? text : text + ")";
}

uint64_t valuesOf(const std::vector<PathAccount>& accounts) {
    uint64_t values = 0;
    for (const PathAccount& account : accounts) {
        values += account.values;
    }
    return values;
}

std::string sumLine(const std::vector<PathAccount>& accounts) {
    const uint64_t values = valuesOf(accounts);
    uint64_t cells = 0;
    uint64_t strayed = 0;
    uint64_t cut = 0;
    std::array<uint64_t, kLosses> lost = {};
    for (const PathAccount& account : accounts) {
        cells += account.cells;
        strayed += account.strayed.count;
        cut += account.cut.count;
        for (std::size_t loss = 0; loss < kLosses; ++loss) {
            lost[loss] += account.lost[loss].count;
        }
    }
    std::string line = std::to_string(values) + (values == 1 ? " value = " : " values = ") +
                       std::to_string(cells) + " in cells" + partOfCells(strayed, cut);
    for (std::size_t loss = 0; loss < kLosses; ++loss) {
        line += " + " + std::to_string(lost[loss]) + " ";
        line += nameOf(static_cast<Loss>(loss));
    }
    return line;
}

// Sums that do not agree are a mistake of this program, and must not be shown as an account.
void checkSums(const std::vector<PathAccount>& accounts) {
    for (const PathAccount& account : accounts) {
        if (!account.meets()) {
            throw Failure(LIMIT_REACHED, "the account of " + escaped(withSlashes(account.path)) +
                                             " does not add up; please report this");
        }
    }
}

// Has its shape rules whose names may be there already?
bool givesNames(const Document& document) {
    if (document.reshaper() == nullptr) {
        return false;
    }
    const std::vector<ShapeRule>& rules = document.reshaper()->shape().rules();
    return std::any_of(rules.begin(), rules.end(), [](const ShapeRule& rule) {
        return rule.kind == ShapeRule::ROWS || rule.kind == ShapeRule::INLINE;
    });
}

}  // namespace

AccountText textOf(const Options& options, const Account& account) {
    checkSums(account.paths);
    std::vector<Line> lines = linesOf(account.paths, account.starts);
    findPlaces(options, account.shape, lines);
    AccountText text;
    if (!lines.empty()) {
        text.rows.push_back({"path", "values", "lost", "first"});
    }
    const std::string& first = options.inputs.files.front();
    const std::string file = first == "-" ? "<stdin>" : first;
    for (const Line& line : lines) {
        text.rows.push_back(
            {escaped(withSlashes(line.account->path)), std::to_string(line.count),
             std::string(line.way),
             line.place.line == 0 ? "" : shown(spotText(file, line.place, account.texts))});
    }
    text.sums.push_back(sumLine(account.paths));
    if (account.shapeCounts) {
        text.sums.push_back(shapeLine(*account.shapeCounts, valuesOf(account.paths)));
    }
    return text;
}

ExitCode reportAccount(const Options& options, const Account& account) {
    const AccountText text = textOf(options, account);
    Writer out = standardOutput();
    print(out, text.rows);
    for (const std::string& sum : text.sums) {
        out.append(sum + "\n");
    }
    out.flush();
    return text.rows.empty() ? DONE : REJECTED;
}

namespace {

std::vector<Spot> startsOf(const Document& document, const std::vector<PathAccount>& accounts) {
    const auto before = [](Spot a, Spot b) {
        return std::tie(a.text, a.line, a.column) < std::tie(b.text, b.line, b.column);
    };
    std::unordered_map<std::string, Spot> starts;
    for (const PathStatistics& path : document.pathStatistics()) {
        for (const KindStatistics& kind : path.kinds) {
            if (kind.kind == JMAP_KIND_FAKE_VARIABLE) {
                continue;  // no value: an empty container
            }
            const auto [at, isNew] = starts.try_emplace(path.path, kind.first);
            if (!isNew && before(kind.first, at->second)) {
                at->second = kind.first;
            }
        }
    }
    std::vector<Spot> found;
    found.reserve(accounts.size());
    for (const PathAccount& account : accounts) {
        found.push_back(starts[account.path]);
    }
    return found;
}

}  // namespace

Account takeAccount(const Document& document, const std::vector<const Table*>& tables, bool retain,
                    bool carry) {
    Account account;
    account.paths = accountOf(document, tables, retain, carry);
    account.starts = startsOf(document, account.paths);
    account.texts = document.texts();
    if (document.reshaper() != nullptr) {
        account.shape = document.reshaper()->shape();
    }
    if (document.reshaper() != nullptr && tables.size() == document.tables().size()) {
        account.shapeCounts = document.reshaper()->counts();
    }
    return account;
}

ExitCode tellLost(const std::string& what, const Document& document, const RowLosses& losses,
                  uint64_t inNoCell) {
    const auto values = [](uint64_t count) {
        return std::to_string(count) + (count == 1 ? " value" : " values");
    };
    const auto are = [](uint64_t count) { return count == 1 ? " is " : " are "; };
    std::string hint = " (qvejmap check --account tells which)";
    const uint64_t overwritten = losses.overwritten;
    if (overwritten != 0 && givesNames(document)) {
        hint.insert(hint.size() - 1, "; rows PATH as KEY gives the names another member");
    }
    if (inNoCell != 0) {
        const std::string some =
            overwritten == 0 ? "" : ", " + std::to_string(overwritten) + " overwritten";
        tell(what + ": " + values(inNoCell) + are(inNoCell) + "in no cell" + some + hint);
    } else if (overwritten != 0) {
        tell(what + ": " + values(overwritten) + are(overwritten) + "overwritten by a later one" +
             hint);
    }
    if (losses.strayed != 0) {
        tell(what + ": " + values(losses.strayed) +
             (losses.strayed == 1 ? " strayed into a row" : " strayed into rows") +
             " that may be another parent's" + hint);
    }
    return overwritten == 0 && losses.strayed == 0 ? DONE : REJECTED;
}

}  // namespace qvej::cli
