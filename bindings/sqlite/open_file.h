// A file that was read, with its tables as SQLite has them, and the files of one connection.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/file_options.h"
#include "client/open/open_document.h"
#include "client/schema/schema.h"

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej::sqlite {

// What a declaration says of a table, and what plans rely on.
struct TableShape {
    std::vector<std::string> names = {};  // of the columns
    std::vector<std::string> types = {};
    std::vector<bool> ordinals = {};         // which of them are ordinals
    std::optional<std::size_t> own = {};     // the ordinal that counts the rows
    std::optional<std::size_t> parent = {};  // that of the parents
    bool key = false;                        // the own one goes up with every row

    bool operator==(const TableShape&) const = default;
};

class OpenFile {
   public:
    // Reads it.  Throws Error.
    OpenFile(const FileOptions& options, bool records);

    [[nodiscard]] const Document& document() const { return document_.document(); }
    [[nodiscard]] bool hasRecords() const { return records_; }

    // Tables by their position in all lists.
    [[nodiscard]] const Schema& schema() const { return schema_; }
    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }
    // Throws Error: SQLite has no such tables.
    [[nodiscard]] TableShape shapeOf(std::size_t table) const;
    // Throws Error: there is none of that name.
    [[nodiscard]] std::size_t find(const std::string& name) const;

    // Is an ordinal in every row, and never less than in the row before?  The first time reads the
    // rows of the table.
    [[nodiscard]] bool ascends(std::size_t table, std::size_t column) const;

    // Bytes of memory, nearly.
    [[nodiscard]] uint64_t held() const;

   private:
    OpenDocument document_;
    std::string file_;
    bool records_;
    Schema schema_;
    std::vector<std::string> names_;
    mutable std::vector<std::vector<bool>> ascending_;  // of each column; empty: not known yet
};

// The files that a connection has read.  A file that has changed is read anew.
class OpenFiles {
   public:
    // `mostHeld`: bytes of memory, with more of which those that nobody uses are dropped.
    explicit OpenFiles(uint64_t mostHeld = uint64_t{1} << 30) : mostHeld_(mostHeld) {}

    // Throws Error.  `records`: of ALLDATA.
    [[nodiscard]] std::shared_ptr<const OpenFile> open(const FileOptions& options,
                                                       bool records = false);

   private:
    struct Kept {
        std::string key;    // of the options
        std::string stamp;  // of the files
        std::shared_ptr<const OpenFile> file;
    };
    [[nodiscard]] static std::shared_ptr<const OpenFile> read(const FileOptions& options,
                                                              bool records);
    void dropUnused();

    const uint64_t mostHeld_;
    std::list<Kept> kept_;  // the one used last is the first
};

// Of a connection: its modules, its function and its tables have them.
using SharedFiles = std::shared_ptr<OpenFiles>;

}  // namespace qvej::sqlite
