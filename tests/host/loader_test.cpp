#include "tests/host/host_fixture.h"

#include <dlfcn.h>

namespace qvhost::test {
namespace {

TEST(Loader, UnloadsASharedObjectAfterTheReleaseOfItsLastInstance) {
    const auto isLoaded = [](const char* object) {
        void* const found = dlopen(object, RTLD_NOW | RTLD_NOLOAD);
        return found != nullptr && dlclose(found) == 0;
    };
    const RunningHost host("::/nowhere:" JMAP_PROBE_MODULES);
    QVExtensionh first = host.load(U"qvprobe");
    QVExtensionh second = host.load(U"qvprobe");
    EXPECT_QV_OK(destroy(first));
    EXPECT_TRUE(isLoaded(JMAP_PROBE_MODULES "/qvprobe.so"));
    EXPECT_QV_OK(destroy(second));
    EXPECT_FALSE(isLoaded(JMAP_PROBE_MODULES "/qvprobe.so"));
    EXPECT_EQ(host.load(U"qvprobe_newer"), nullptr);
    EXPECT_FALSE(isLoaded(JMAP_PROBE_MODULES "/qvprobe_newer.so"));
    EXPECT_EQ(host.leftovers(), "");
    EXPECT_EQ(host.notes, split("probe released|probe released|module qvprobe_newer not loaded: it "
                                "needs a newer host|probe released"));
}

TEST(Loader, YieldsNullForWhatIsNotThereOrRefuses) {
    const ScratchFolder folder;
    const std::string path = folder.path;
    folder.write("qvbroken.so", "not an object");
    folder.write("sub/x", "");
    for (const char* copy : {"other.so", "qvprobe.so", "sub/qvprobe.so"}) {
        std::filesystem::copy_file(JMAP_PROBE_MODULES "/qvprobe.so", folder.path / copy);
    }
    const RunningHost host(path.c_str());
    // A built-in module comes first, the last of its name, and no other is tried.
    for (const char* name : {"qvprobe", "qvejson"}) {
        EXPECT_QV_OK(
            qvPortableRegister(host.handle, name, [](QVHndlp, QVJnlh) { return QVExtensionh{}; }));
    }
    for (const char32_t* name : {U"qvmissing", U"", U"sub/qvprobe", U"../sub/qvprobe", U"qv\u00E9",
                                 U"qvprobe", U"qvejson", U"qvbroken", U"other"}) {
        EXPECT_EQ(host.load(name), nullptr) << testing::PrintToString(std::u32string(name));
    }
    ASSERT_EQ(host.notes.size(), 2U);
    EXPECT_TRUE(host.notes[0].starts_with("module qvbroken not loaded: " + path));
    EXPECT_EQ(host.notes[1],
              "module other not loaded: " + path + "/other.so has no entry point of that name");
}

}  // namespace
}  // namespace qvhost::test
