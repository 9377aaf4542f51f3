// Modules beside the shared library that wants them, as in a package of another language.
#include "formats/module.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <filesystem>
#include <string>

namespace jmap::test {
namespace {

TEST(ModulePlace, IsBesideTheLibrary) {
    namespace fs = std::filesystem;
    const ScratchFolder folder;
    const fs::path library = folder.path / "library.so";
    fs::copy_file(QVEJMAP_MODULE_PROBE, library);
    void* const handle = ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << ::dlerror();
    using Probe = const char*(const char*);
    auto* const probe = reinterpret_cast<Probe*>(::dlsym(handle, "qvejmapProbe"));
    ASSERT_NE(probe, nullptr);
    EXPECT_EQ(std::string(probe("xlsx")).find("the module qvejmap_to_xlsx.so is not there"), 0u);
    fs::copy_file(QVEJMAP_FOLDER "/qvejmap_to_xlsx.so", folder.path / "qvejmap_to_xlsx.so");
    EXPECT_STREQ(probe("xlsx"), qvej::formatBuild());
}

}  // namespace
}  // namespace jmap::test
