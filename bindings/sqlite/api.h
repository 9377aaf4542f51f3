// SQLite as an extension sees it: by the table of functions that the loader hands over.
#pragma once

#include <sqlite3ext.h>

extern "C" {
SQLITE_EXTENSION_INIT3
}
