// Modules by name: built-in ones first, then shared objects.
//
// A shared object is looked for as NAME.so in each directory of the module path, in order, and must
// export the entry point under the module's name.  Only plain names (letters, digits, "_", "-") are
// looked for as files, so a name never acts as a path.  Every load makes an instance of its own; it
// is ended through its `generic.destroy`, which calls `realDestroy` and then unloads the object.
//
// Tested by tests/host/loader_test.cpp
#pragma once

#include "qvehost.h"

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace qvhost {

class Loader {
   public:
    // `modulePath`: directories, ":" between them; may be null.  Empty ones are left out.
    explicit Loader(const char* modulePath);

    // Adds a built-in module; a later one of the same name takes precedence.
    void add(std::string_view name, QVEntry entry);

    // A new instance, or null when there is no such module, its entry point refuses, or it needs a
    // newer host interface.
    [[nodiscard]] QVExtensionh load(QVHndlp host, const std::string& name, QVJnlh jnl);

   private:
    struct BuiltIn {
        std::string name;
        QVEntry entry;
    };

    [[nodiscard]] QVEntry builtIn(std::string_view name);

    std::mutex mutex_;
    std::vector<BuiltIn> builtIns_;
    std::vector<std::string> directories_;
};

}  // namespace qvhost
