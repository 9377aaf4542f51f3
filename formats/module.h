// Formats in loadable modules, since their libraries are large: a run that does not need one does
// not load it.
//
// A module is `qvejmap_to_NAME.so`, beside the tool or in the library folder `qvejmap` of its
// installation, or beside the shared library that this code is in.  It is built with the tool and
// fits that build only.
//
// Tested by tests/formats/module_place_test.cpp and tests/tool/golden/dictionary.t
#pragma once

#include "formats/formats.h"
#include "formats/store.h"

#include <memory>
#include <string_view>

namespace qvej {

// What a module exports as `qvejmapFormats`, a constant.  A routine that it does not have is null.
struct FormatModule {
    const char* (*build)();  // formatBuild
    // A sink for the rows of one table in a file of its own.
    std::unique_ptr<Sink> (*makeSink)(std::string_view format, Writer out, const SinkParms& parms);
    // Opens a store: checks names and limits before anything is written.
    std::unique_ptr<Store> (*openStore)(const StoreParms& parms);
};

// Of this build.  It changes with every version, since modules use the classes of the tool as they
// are.
[[nodiscard]] const char* formatBuild();

// The module of that name; it stays loaded.  Throws Error (QV_IO_...): it is not there, with what
// to do, or it is of another build.
[[nodiscard]] const FormatModule& formatModule(std::string_view name);

}  // namespace qvej
