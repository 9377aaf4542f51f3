// The extension of SQLite: tables of JSON files as virtual tables.
//
//     SELECT load_extension('qvejmap_sqlite');
//     SELECT qvejmap_attach('orders.json');
//     SELECT * FROM orders_items WHERE ordinal_orders = 7;
//
// It has the engine in it, and of SQLite nothing: the program that loads it brings that.
//
// Tested by tests/bindings/sqlite_extension.py
#include "bindings/sqlite/attach.h"
#include "bindings/sqlite/catalog.h"
#include "bindings/sqlite/failure.h"
#include "bindings/sqlite/file_table.h"
#include "bindings/sqlite/open_file.h"

#include <memory>

extern "C" {
SQLITE_EXTENSION_INIT1
}

namespace qvej::sqlite {

namespace {

int registerAll(sqlite3* database) {
    constexpr struct {
        const char* name;
        const sqlite3_module* module;
    } kModules[] = {
        {"qvejmap", &kFileTable},
        {"qvejmap_tables", &kTables},
        {"qvejmap_columns", &kColumns},
        {"qvejmap_all", &kAll},
    };
    const auto files = std::make_shared<OpenFiles>();
    const auto end = [](void* shared) { delete static_cast<SharedFiles*>(shared); };
    for (const auto& module : kModules) {
        const int code = sqlite3_create_module_v2(database, module.name, module.module,
                                                  new SharedFiles(files), end);
        if (code != SQLITE_OK) {
            return code;
        }
    }
    return sqlite3_create_function_v2(
        database, "qvejmap_attach", -1, SQLITE_UTF8 | SQLITE_DIRECTONLY, new Attaching{files},
        attach, nullptr, nullptr, [](void* of) { delete static_cast<Attaching*>(of); });
}

}  // namespace

}  // namespace qvej::sqlite

// The first name is the one that the loader makes of the file's name.
extern "C" __attribute__((visibility("default"))) int sqlite3_qvejmapsqlite_init(
    sqlite3* database, char** message, const sqlite3_api_routines* api) {
    SQLITE_EXTENSION_INIT2(api)
    return qvej::sqlite::guarded(message, [&] { return qvej::sqlite::registerAll(database); });
}

extern "C" __attribute__((visibility("default"))) int sqlite3_extension_init(
    sqlite3* database, char** message, const sqlite3_api_routines* api) {
    return sqlite3_qvejmapsqlite_init(database, message, api);
}
