// See module.h.
#include "formats/module.h"

#include "client/error.h"

#include <link.h>

#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace qvej {

namespace {

// The folder of the shared library that this code is in; empty: it is in the program itself.
std::filesystem::path libraryFolder() {
    static const char kHere = 0;
    Dl_info info = {};
    link_map* map = nullptr;
    const int found = ::dladdr1(&kHere, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP);
    const std::filesystem::path library = found != 0 && map != nullptr ? map->l_name : "";
    return library.is_absolute() ? library.parent_path() : std::filesystem::path();
}

// Where modules may be: beside the library that wants them, for they are of one build; beside the
// program, and where it is installed.
std::vector<std::filesystem::path> places() {
    std::vector<std::filesystem::path> places;
    if (std::filesystem::path folder = libraryFolder(); !folder.empty()) {
        places.push_back(std::move(folder));
    }
    std::error_code trouble;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", trouble);
    const std::filesystem::path folder = program.parent_path();
    places.push_back(folder);
    places.push_back(folder.parent_path() / QVEJMAP_LIBDIR / "qvejmap");
    return places;
}

std::string missing(std::string_view name) {
    return name == "arrow" ? "Parquet and Arrow need a module that is not installed: "
                             "scripts/install-arrow builds it"
                           : "the module qvejmap_to_" + std::string(name) +
                                 ".so is not there: it belongs beside qvejmap, or in the library "
                                 "folder of the installation";
}

}  // namespace

const FormatModule& formatModule(std::string_view name) {
    const std::string file = "qvejmap_to_" + std::string(name) + ".so";
    for (const std::filesystem::path& place : places()) {
        const std::filesystem::path path = place / file;
        std::error_code trouble;
        if (!std::filesystem::exists(path, trouble)) {
            continue;
        }
        void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) {
            throw Error(QV_IO_REFUSED, std::string("cannot be loaded: ") + ::dlerror(),
                        path.string());
        }
        const auto* const formats =
            static_cast<const FormatModule*>(::dlsym(module, "qvejmapFormats"));
        if (formats == nullptr || std::string_view(formats->build()) != formatBuild()) {
            throw Error(QV_IO_REFUSED, "is of another version than qvejmap", path.string());
        }
        return *formats;
    }
    throw Error(QV_IO_NOTFOUND, missing(name));
}

}  // namespace qvej
