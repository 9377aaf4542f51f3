// See attach.h.
#include "bindings/sqlite/attach.h"

#include "bindings/sqlite/failure.h"
#include "bindings/sqlite/interrupt.h"
#include "bindings/sqlite/open_file.h"
#include "client/error.h"
#include "formats/database/database.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej::sqlite {

namespace {

// Runs a statement, perhaps of several rows; the texts of their first column.
std::vector<std::string> run(sqlite3* database, const std::string& sql) {
    std::vector<std::string> rows;
    char* message = nullptr;
    const auto take = [](void* to, int, char** texts, char**) noexcept {
        try {
            static_cast<std::vector<std::string>*>(to)->emplace_back(
                texts[0] == nullptr ? "" : texts[0]);
            return 0;
        } catch (...) {
            return 1;
        }
    };
    const int code = sqlite3_exec(database, sql.c_str(), take, &rows, &message);
    if (code != SQLITE_OK) {
        const std::unique_ptr<char, void (*)(void*)> owned(message, sqlite3_free);
        throw Error(code == SQLITE_INTERRUPT ? QV_STOPPED : QV_UNSUPPORTED,
                    message == nullptr ? sqlite3_errmsg(database) : message);
    }
    return rows;
}

// A table of the name in any database would be hidden, or hide the new one.
void checkFree(sqlite3* database, const std::vector<std::string>& names) {
    for (const std::string& schema : run(database, "SELECT name FROM pragma_database_list")) {
        for (const std::string& name : names) {
            if (!run(database, "SELECT 1 FROM " + quotedName(schema) +
                                   ".sqlite_master WHERE type <> 'trigger' AND name = " +
                                   quotedText(name) + " COLLATE NOCASE")
                     .empty()) {
                throw Error(QV_IO_REFUSED, "there is a table " + shownName(name) + " in " + schema +
                                               " already (prefix=... gives other names)");
            }
        }
    }
}

constexpr std::string_view kCreate = "CREATE VIRTUAL TABLE ";

// Makes all tables, or none.  Those that cannot be taken back are left for `dropLeft`.
//   definitions  of each what follows its name
void makeAll(sqlite3* database, const std::vector<std::string>& names,
             const std::vector<std::string>& definitions, std::vector<TableLeft>& left) {
    std::size_t made = 0;
    try {
        for (; made < names.size(); ++made) {
            run(database,
                std::string(kCreate) + "temp." + quotedName(names[made]) + definitions[made]);
        }
    } catch (...) {
        while (made-- != 0) {
            const std::string name = quotedName(names[made]);
            const std::string drop = "DROP TABLE temp." + name;
            if (sqlite3_exec(database, drop.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
                left.push_back({name, std::string(kCreate) + name + definitions[made]});
            }
        }
        throw;
    }
}

// Drops what an earlier call left and nobody has dropped or replaced since.
void dropLeft(sqlite3* database, std::vector<TableLeft>& left) {
    for (; !left.empty(); left.pop_back()) {
        if (!run(database,
                 "SELECT 1 FROM temp.sqlite_master WHERE sql = " + quotedText(left.back().sql))
                 .empty()) {
            run(database, "DROP TABLE temp." + left.back().name);
        }
    }
}

std::string textOf(sqlite3_value* value) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text == nullptr ? "" : text;
}

int attachAll(sqlite3* database, Attaching& attaching, int argc, sqlite3_value** argv) {
    FileOptions options{argc == 0 ? "" : textOf(argv[0])};
    if (options.file.empty()) {
        throw Error(QV_BADPARMS, "a file was expected: qvejmap_attach('orders.json')");
    }
    std::string prefix;
    std::string arguments = quotedText(options.file);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = textOf(argv[i]);
        const Setting setting = settingOf(argument);
        if (setting.name == "prefix") {
            prefix = setting.value;
        } else if (options.set(setting.name, setting.value)) {
            arguments += ", " + quotedText(setting.name + "=" + quotedText(setting.value));
        } else {
            throwUnknown(setting.name, ", prefix");
        }
    }
    const std::shared_ptr<const OpenFile> file = attaching.files->open(options);
    std::vector<std::string> names;
    std::vector<std::string> definitions;
    for (std::size_t t = 0; t < file->names().size(); ++t) {
        (void)file->shapeOf(t);  // throws when SQLite has no such tables
        names.push_back(prefix + file->names()[t]);
        definitions.push_back(" USING qvejmap(" + arguments + ", " +
                              quotedText("table=" + quotedText(file->names()[t])) + ")");
    }
    dropLeft(database, attaching.left);
    checkFree(database, names);
    makeAll(database, names, definitions, attaching.left);
    return static_cast<int>(names.size());
}

}  // namespace

void attach(sqlite3_context* result, int argc, sqlite3_value** argv) noexcept {
    char* message = nullptr;
    const int code = guarded(&message, [&] {
        sqlite3* const connection = sqlite3_context_db_handle(result);
        const Interruptible work(connection);
        Attaching& attaching = *static_cast<Attaching*>(sqlite3_user_data(result));
        sqlite3_result_int(result, attachAll(connection, attaching, argc, argv));
        return SQLITE_OK;
    });
    if (code == SQLITE_NOMEM || code == SQLITE_INTERRUPT) {
        sqlite3_result_error_code(result, code);
    } else if (code != SQLITE_OK) {
        sqlite3_result_error(result, message == nullptr ? "it failed" : message, -1);
    }
    sqlite3_free(message);
}

}  // namespace qvej::sqlite
