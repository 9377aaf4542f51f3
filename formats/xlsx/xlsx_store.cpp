// See xlsx_store.h.
#include "formats/xlsx/xlsx_store.h"

#include "client/error.h"
#include "formats/target_names.h"
#include "formats/xlsx/archive_check.h"
#include "formats/xlsx/contents.h"
#include "formats/xlsx/sheet_sink.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sys/resource.h>
#include <utility>

namespace qvej {

namespace {

constexpr uint64_t kMostRows = 1048575;  // the header apart
constexpr std::size_t kMostColumns = 16384;
constexpr std::size_t kOtherFiles = 256;  // that may be open besides

// The library cannot have an apostrophe at the ends of a name, and readers disagree on others.
constexpr std::string_view kForbidden{
    "[]:*?/\\'\0\x01\x02\x03\x04\x05\x06\x07\x08\t\n\x0B\x0C\r\x0E\x0F\x10\x11\x12\x13\x14\x15\x16"
    "\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F",
    40};

void checkLimits(const StoreParms& parms) {
    for (const TableSchema& table : parms.schema.tables) {
        const std::string name = "table " + table.table->name + " has ";
        if (table.rows > kMostRows) {
            throw Error(QV_IO_REFUSED,
                        name + std::to_string(table.rows) +
                            " rows, and a sheet of XLSX has at most " + std::to_string(kMostRows) +
                            " (--table chooses others)",
                        parms.shownTarget);
        }
        if (table.fields.size() > kMostColumns) {
            throw Error(QV_IO_REFUSED,
                        name + std::to_string(table.fields.size()) +
                            " columns, and a sheet of XLSX has at most " +
                            std::to_string(kMostColumns) +
                            " (--shape auto may make rows of them, --table chooses others)",
                        parms.shownTarget);
        }
    }
}

// The library keeps a file of each sheet open.
void allowOpenFiles(const StoreParms& parms) {
    const rlim_t needed = parms.schema.tables.size() + kOtherFiles;
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= needed) {
        return;
    }
    limit.rlim_cur = std::min(needed, limit.rlim_max);
    if (limit.rlim_max < needed || ::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
        throw Error(QV_IO_REFUSED,
                    std::to_string(parms.schema.tables.size()) +
                        " sheets of XLSX need as many open files, and the system allows " +
                        std::to_string(limit.rlim_max) + " (--table chooses tables)",
                    parms.shownTarget);
    }
}

FittedNames sheetNames(const Schema& schema) {
    static const std::string kTaken[] = {kContents,
                                         "History"};  // the latter is no name for a sheet
    std::vector<std::string> names;
    for (const TableSchema& table : schema.tables) {
        names.push_back(table.table->name);
    }
    return fittedNames(names, {.longest = 31,
                               .unit = NameRules::UTF16,
                               .same = NameRules::UNICODE,
                               .forbidden = kForbidden,
                               .taken = kTaken});
}

class XlsxStore final : public Store {
   public:
    explicit XlsxStore(const StoreParms& parms)
        : parms_(parms), names_(sheetNames(parms.schema)), bytes_(parms.schema.tables.size()) {
        checkLimits(parms);
        allowOpenFiles(parms);
        open();
        addLooks();
        Sheet contents = addSheet(kContents);
        for (const std::string& name : names_.names) {
            sheets_.push_back(addSheet(name));
        }
        writeContents(contents, parms.schema, names_.names);
        contentsBytes_ = contents.finish();
    }
    ~XlsxStore() override {
        if (book_ != nullptr) {
            lxw_workbook_free(book_);
        }
    }

    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override {
        return std::make_unique<SheetSink>(parms_.schema.tables[table], sheets_[table], losses_,
                                           bytes_[table]);
    }

    void end() override {
        const lxw_error code = workbook_close(std::exchange(book_, nullptr));
        if (code != LXW_NO_ERROR) {
            throw Error(QV_IO_WRITE, lxw_strerror(code), parms_.shownTarget);
        }
        std::map<std::string, uint64_t> least = {{sheetFile(0), contentsBytes_},
                                                 {"[Content_Types].xml", 1},
                                                 {"xl/workbook.xml", 1},
                                                 {"xl/styles.xml", 1}};
        for (std::size_t t = 0; t < bytes_.size(); ++t) {
            least[sheetFile(t + 1)] = bytes_[t];
        }
        checkArchive(parms_.target, least, parms_.shownTarget);
    }
    void commit() override {}
    [[nodiscard]] std::vector<std::string> remarks() const override;

   private:
    static std::string sheetFile(std::size_t number) {
        return "xl/worksheets/sheet" + std::to_string(number + 1) + ".xml";
    }
    void open() {
        // Beside the workbook: what is on its way to it needs as much room.
        std::string folder = std::filesystem::path(parms_.target).parent_path().string();
        folder = folder.empty() ? "." : folder;
        lxw_workbook_options options = {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = folder.data();
        book_ = workbook_new_opt(parms_.target.c_str(), &options);
        if (book_ == nullptr) {
            throw Error(QV_NOMEM);
        }
    }
    void addLooks() {
        looks_ = {look(), look(), look(), look(), workbook_get_default_url_format(book_)};
        format_set_bold(looks_.header);
        format_set_num_format(looks_.date, "yyyy-mm-dd");
        format_set_num_format(looks_.time, "yyyy-mm-dd hh:mm:ss");
        format_set_num_format(looks_.millis, "yyyy-mm-dd hh:mm:ss.000");
    }
    lxw_format* look() {
        lxw_format* const format = workbook_add_format(book_);
        if (format == nullptr) {
            throw Error(QV_NOMEM);
        }
        return format;
    }
    Sheet addSheet(const std::string& name) {
        lxw_worksheet* const sheet = workbook_add_worksheet(book_, name.c_str());
        if (sheet == nullptr || sheet->optimize_tmpfile == nullptr) {
            throw Error(QV_IO_OPEN, "sheet " + name + ": no file for it could be made",
                        parms_.shownTarget);
        }
        return {sheet, looks_, parms_.shownTarget + ": sheet " + name};
    }

    const StoreParms parms_;
    FittedNames names_;
    lxw_workbook* book_ = nullptr;
    SheetLooks looks_ = {};
    std::vector<Sheet> sheets_;
    std::vector<uint64_t> bytes_;  // of each sheet, when it has ended
    uint64_t contentsBytes_ = 0;
    SheetLosses losses_;
};

// "3 columns ... , such as orders.id"
void addRemark(std::vector<std::string>& remarks, std::size_t count, const std::string& noun,
               const std::string& sentence, const std::string& first) {
    if (count != 0) {
        remarks.push_back("XLSX: " + std::to_string(count) + " " + noun + (count == 1 ? "" : "s") +
                          " " + sentence + (count == 1 ? ": " : ", such as ") + first);
    }
}

std::vector<std::string> XlsxStore::remarks() const {
    std::vector<std::string> remarks;
    if (!names_.changed.empty()) {
        const std::size_t first = names_.changed.front();
        addRemark(remarks, names_.changed.size(), "sheet",
                  "could not be named as the table (Contents has both names)",
                  parms_.schema.tables[first].table->name + " is " + names_.names[first]);
    }
    std::set<std::string> texts;
    for (const TableSchema& table : parms_.schema.tables) {
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            if (isTextInSheet(table.fields[c])) {
                texts.insert(table.table->name + "." + table.table->columns[c].name);
            }
        }
    }
    const auto add = [&](const std::set<std::string>& columns, const std::string& sentence) {
        addRemark(remarks, columns.size(), "column", sentence,
                  columns.empty() ? "" : *columns.begin());
    };
    add(texts, "with more digits than a sheet keeps as text");
    add(losses_.rounded, "with numbers that were rounded to 16 digits");
    add(losses_.oldDates, "with dates before 1900-03-01, as text");
    return remarks;
}

}  // namespace

std::unique_ptr<Store> openXlsxStore(const StoreParms& parms) {
    return std::make_unique<XlsxStore>(parms);
}

}  // namespace qvej
