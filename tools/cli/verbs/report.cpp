// qvejmap report: one page of HTML on a document: its tables as a picture, their columns and first
// rows, the account.
//
// Tested by tests/tool/golden/report.t and tests/tool/pictures.py
#include "client/error.h"
#include "tools/cli/choice.h"
#include "tools/cli/report/page.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/session.h"
#include "tools/cli/text_output.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>
#include <ctime>
#include <optional>
#include <sys/stat.h>

namespace qvej::cli {

namespace {

constexpr std::size_t kMostDetailed = 300;

// Of all files; nothing when one is no file.
std::optional<uint64_t> sizeOf(const std::vector<std::string>& files) {
    uint64_t size = 0;
    for (const std::string& file : files) {
        struct stat found = {};
        if (file == "-" || ::stat(file.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) {
            return std::nullopt;
        }
        size += static_cast<uint64_t>(found.st_size);
    }
    return size;
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    std::tm parts = {};
    char text[32];
    (void)std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", ::gmtime_r(&time, &parts));
    return text;
}

ReportFacts factsOf(const Options& options, const Session& session) {
    const Document& document = session.document();
    const std::string& name = session.name();
    // Whoever gets the page has no use for the folder.
    ReportFacts facts = {name.substr(name.rfind('/') + 1),
                         sizeOf(options.inputs.files),
                         document.totals().values,
                         now(),
                         {}};
    if (document.reshaper() != nullptr) {
        for (const ShapeRule& rule : document.reshaper()->shape().rules()) {
            facts.shape.push_back(rule.text());
        }
    }
    return facts;
}

// Of many tables those with most rows, in the order of the tree.
std::vector<std::size_t> detailedTables(const Schema& schema) {
    std::vector<std::size_t> tables;
    for (const TreeNode& node : treeOf(schema)) {
        tables.push_back(node.table);
    }
    if (tables.size() <= kMostDetailed) {
        return tables;
    }
    std::vector<uint64_t> rows;
    for (const TableSchema& table : schema.tables) {
        rows.push_back(table.rows);
    }
    std::nth_element(rows.begin(), rows.begin() + kMostDetailed, rows.end(), std::greater<>());
    const uint64_t bound = rows[kMostDetailed];  // tables with more are shown, of equal ones some
    auto room = static_cast<std::ptrdiff_t>(kMostDetailed) -
                std::count_if(rows.begin(), rows.end(), [&](uint64_t r) { return r > bound; });
    std::erase_if(tables, [&](std::size_t table) {
        const uint64_t count = schema.tables[table].rows;
        return count < bound || (count == bound && room-- <= 0);
    });
    return tables;
}

// All but the account, and what is kept for that.
ReportPage pageOf(const Options& options, const Session& session, Survey& survey,
                  Account& account) {
    const Document& document = session.document();
    const std::vector<const Table*> tables = chosenTables(options, document.tables());
    if (session.map() != nullptr && !options.quiet) {
        tellMapOddities(session.map()->name(), tables);
    }
    if (shapeMayHelp(options)) {
        tellShapeHint(document.tables());
    }
    try {
        survey = surveyOf(session, tables, options);
        ReportPage page(factsOf(options, session), survey);
        const std::vector<std::size_t> detailed = detailedTables(survey.schema);
        page.putTables(detailed,
                       detailsOf(document, survey.schema, detailed, options, kLongestShown));
        account = takeAccount(document, tables, options.retain, options.carry);
        return page;
    } catch (const Error& error) {
        session.failReading(error);
    }
}

}  // namespace

ExitCode runReport(const Options& options) {
    checkTextOutput(options, options.sources);
    Survey survey;
    Account account;
    std::optional<ReportPage> page;
    ExitCode code = DONE;
    {
        // With records: the examples of a column are values of the document at their places.
        const Session session(options.reading, options.inputs, options.map);
        page.emplace(pageOf(options, session, survey, account));
        code = session.skipped().exitCode();
    }
    page->putAccount(textOf(options, account));
    putText(page->text(), options, options.sources);
    return code;
}

}  // namespace qvej::cli
