// The page of a report: HTML with its style, script and picture in it.
//
//     ReportPage page(facts, survey);
//     page.putTables(details...);
//     page.putAccount(text);
//     page.text()
//
// It reads nothing else, and all is there without its script.  Every text of the document goes
// through markup().
//
// Tested by tests/tool/golden/report.t and tests/tool/pictures.py
#pragma once

#include "tools/cli/report/table_details.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/survey.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

// Of the document as a whole.
struct ReportFacts {
    std::string name;
    std::optional<uint64_t> bytes;  // nothing: it is no file
    uint64_t values = 0;
    std::string made;                // the time, as 2024-02-29 13:05 UTC
    std::vector<std::string> shape;  // the rules that it was read with
};

// What a report shows of a text of the document: more would hide the rest.
inline constexpr std::size_t kLongestShown = 80;  // characters

class ReportPage {
   public:
    // Writes the head and the picture.  `survey` must outlive the page.
    ReportPage(const ReportFacts& facts, const Survey& survey);

    // Lists all tables, and shows those in detail whose positions in the schema are `tables`, as
    // far as there is room.
    void putTables(const std::vector<std::size_t>& tables,
                   const std::vector<TableDetails>& details);

    void putAccount(const AccountText& account);

    // The whole page, once.
    [[nodiscard]] std::string text();

   private:
    void putHead(const ReportFacts& facts);
    void putPicture();
    void putContents(const std::vector<bool>& detailed);
    void putTable(std::size_t table, const TableDetails& details);
    void putKeys(const TableSchema& table);
    void putColumns(std::size_t table, const TableDetails& details);
    void putColumn(const TableSchema& table, std::size_t column, const ColumnDetails& details);
    void putRows(const TableSchema& table, const TableDetails& details);
    void putMoreColumns(const TableSchema& table, const TableDetails& details);

    const Survey& survey_;
    std::string out_;
};

}  // namespace qvej::cli
