// The loadable module: its symbols, and how it is loaded.
#include "frame/entry.h"
#include "testkit/testkit.h"

#include <array>
#include <cstdio>
#include <set>

namespace jmap::test {
namespace {

// All that the module may ask of its surroundings: the host; memory and strings; the checks of
// debug and hardened builds; what every shared object has.
constexpr std::string_view kKnownUndefined =
    " qvGlobalHandle memcpy memmove memset memcmp memchr strlen __assert_fail __stack_chk_fail "
    "__cxa_finalize __gmon_start__ _ITM_deregisterTMCloneTable _ITM_registerTMCloneTable ";

// The symbol names that `nm` prints for the module, without versions.
std::set<std::string> symbols(const std::string& option) {
    const std::string command = "nm -D -P " + option + " " JMAP_MODULE_FILE;
    std::set<std::string> names;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> line{};
    while (pipe != nullptr && std::fgets(line.data(), line.size(), pipe) != nullptr) {
        const std::string_view text(line.data());
        names.emplace(text.substr(0, text.find_first_of(" @")));
    }
    EXPECT_TRUE(pipe != nullptr && pclose(pipe) == 0) << command;
    return names;
}

TEST(Module, ExportsItsEntryPointAndNothingElse) {
    EXPECT_EQ(symbols("--defined-only"), std::set<std::string>{"qvejmap"});
}

TEST(Module, ImportsOnlyTheHostAndMemoryPrimitives) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "a sanitizer adds symbols of its own";
#endif
    const std::set<std::string> undefined = symbols("--undefined-only");
    EXPECT_TRUE(undefined.count("qvGlobalHandle") == 1);
    for (const std::string& name : undefined) {
        EXPECT_NE(kKnownUndefined.find(" " + name + " "), std::string_view::npos)
            << name << " is not on the list of symbols that the engine may import";
    }
}

TEST(Module, IsLoadedByNameFromTheModulePath) {
    QVPortableOptions options{};
    options.structSize = sizeof options;
    options.modulePath = "/nowhere:" JMAP_MODULE_FOLDER;
    QVHndlp host = nullptr;
    ASSERT_QV_OK(qvPortableStart(&options, &host));
    auto* engine = reinterpret_cast<UserJMAP_S*>(host->loadExtension(host, U"qvejmap", 7, nullptr));
    ASSERT_NE(engine, nullptr);
    // The loader filled what the entry point leaves to it.
    EXPECT_EQ(engine->exth.hndl, host);
    ASSERT_NE(engine->exth.generic.destroy, nullptr);
    // It is the module's own code, not the engine that is linked into this program.
    EXPECT_NE(engine->exth.realDestroy, &qvejmaprd);
    EXPECT_QV_OK(engine->exth.generic.destroy(&engine->exth.generic));
    EXPECT_QV_OK(qvPortableStop(host));
}

}  // namespace
}  // namespace jmap::test
