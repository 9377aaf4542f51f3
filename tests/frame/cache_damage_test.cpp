// A cache file that is not what it was when its blocks are read: no row is made of it.
#include "testkit/open_document.h"
#include "tests/frame/operations.h"

#include <filesystem>
#include <fstream>

namespace jmap::test {
namespace {

namespace fs = std::filesystem;

// Writes `text` at a place of the file, counted from the end when it is negative.
void overwrite(const fs::path& file, std::streamoff at, const std::string& text) {
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(at, at < 0 ? std::ios::end : std::ios::beg);
    stream << text;
    ASSERT_TRUE(stream.flush().good());
}

struct Damage {
    const char* name;
    QVStatus status;  // QV_OK: it does no harm, since the file stays open
    void (*inflict)(const fs::path& file);
};

constexpr Damage kDamages[] = {
    {"emptied", QV_IO_SHORT, [](const fs::path& file) { fs::resize_file(file, 0); }},
    {"a byte shorter", QV_IO_SHORT,
     [](const fs::path& file) { fs::resize_file(file, fs::file_size(file) - 1); }},
    {"its first byte is another", QV_IO_CHANGED,
     [](const fs::path& file) { overwrite(file, 0, "?"); }},
    {"its last byte is another", QV_IO_CHANGED,
     [](const fs::path& file) { overwrite(file, -1, "?"); }},
    {"a hole in it", QV_IO_CHANGED,
     [](const fs::path& file) {
         const auto size = fs::file_size(file);
         fs::resize_file(file, 100);
         fs::resize_file(file, size);
     }},
    {"overwritten as a whole", QV_IO_CHANGED,
     [](const fs::path& file) { overwrite(file, 0, std::string(fs::file_size(file), 'x')); }},
    {"longer", QV_OK,
     [](const fs::path& file) { std::ofstream(file, std::ios::app) << "and more"; }},
    {"deleted", QV_OK, [](const fs::path& file) { fs::remove(file); }},
    {"another in its place", QV_OK,
     [](const fs::path& file) {
         fs::remove(file);
         std::ofstream(file) << "not the one";
     }},
};

TEST(CacheFile, GivesNoRowWhenItIsNotWhatItWas) {
    for (const bool compress : {false, true}) {
        const Keeping keeping = {.name = "", .compress = compress, .spill = true, .rows = 700};
        LoadedHost host;
        // Before operation `at` the file is damaged.
        const auto playOn = [&](const Damage* damage, std::string_view at) {
            Stage stage(host.engine(), host.journal(), keeping, scratchFile("cache"));
            return play(stage, [&](size_t i, bool begins) {
                if (begins && operations()[i].name == at) {
                    damage->inflict(stage.file);
                }
            });
        };
        const Played whole = playOn(nullptr, "");
        ASSERT_QV_OK(whole.status);
        for (const Damage& damage : kDamages) {
            for (const char* at : {"Read", "Read of ALLDATA", "jmapRecordsNext", "jmapPassNext"}) {
                SCOPED_TRACE(std::string(damage.name) + " before " + at);
                const Played played = playOn(&damage, at);
                EXPECT_QV(damage.status, played.status);
                EXPECT_TRUE(damage.status == QV_OK ? played.out == whole.out
                                                   : whole.out.starts_with(played.out));
            }
        }
    }
}

}  // namespace
}  // namespace jmap::test
