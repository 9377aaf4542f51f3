// Parts of files: which files have them, and what tells that one has changed.
#include "client/parts/input_parts.h"

#include "client/parts/part_sequence.h"
#include "tests/client/parts_document.h"
#include "tests/testkit/scratch_folder.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace jmap::test {
namespace {

TEST(InputParts, AreOfFilesThatDoNotChange) {
    const ScratchFolder folder;
    const std::string text = manyObjects(300).texts[0].text;
    const std::string first = folder.write("1.json", text);
    const std::string second = folder.write("2.json", text);
    const qvej::InputList inputs = {{first, second}, true};
    EXPECT_EQ(2 * text.size(), qvej::rereadableBytes(inputs));
    EXPECT_EQ(std::nullopt, qvej::rereadableBytes({{first, "-"}, true}));
    EXPECT_EQ(std::nullopt, qvej::rereadableBytes({{first, "/dev/null"}, true}));
    const qvej::ReadParts read =
        qvej::partsOf(inputs, {}, &qvej::ByteSource::file, qvej::checkOfChanges(inputs));
    std::string both;
    read(100, [&](qvej::TextPart part) {
        EXPECT_EQ(part.text == 0 ? first : second, part.name);
        both += part.partition.text;
    });
    EXPECT_EQ(text + text, both);
    const auto changes = [&](const std::function<void()>& change) {
        const qvej::ReadParts again =
            qvej::partsOf(inputs, {}, &qvej::ByteSource::file, qvej::checkOfChanges(inputs));
        bool changed = false;
        try {
            again(100,
                  [&](const qvej::TextPart& /*part*/) { changed || (change(), changed = true); });
            return std::string("nothing");
        } catch (const qvej::Error& error) {
            EXPECT_EQ(QV_IO_CHANGED, error.status());
            return error.file();
        }
    };
    // Each time only one thing tells: the size, the bytes at both ends, the file, the time.
    const auto write = [&](const std::string& name, const std::string& to) {
        const auto time = std::filesystem::last_write_time(second);
        std::filesystem::last_write_time(folder.write(name, to), time);
    };
    EXPECT_EQ("nothing", changes([] {}));
    EXPECT_EQ("nothing", changes([&] { write("2.json", text); }));
    EXPECT_EQ(second, changes([&] { write("2.json", text + "\n"); }));
    for (const std::size_t at : {std::size_t{2}, text.size() - 3}) {
        std::string other = text;
        other[at] = 'y';
        EXPECT_EQ(second, changes([&] { write("2.json", other); }));
    }
    EXPECT_EQ(second, changes([&] {
                  write("3.json", text + "\n");
                  std::filesystem::rename(folder.path / "3.json", second);
              }));
    EXPECT_EQ(first, changes([&] { folder.write("1.json", text); }));
    std::filesystem::remove(first);
    EXPECT_THROW(read(100, [](const qvej::TextPart& /*part*/) {}), qvej::Error);
}

TEST(InputParts, AreNoneInAnotherEncoding) {
    const ScratchFolder folder;
    const std::string file = folder.write("1.json", std::string_view("[\0{\0}\0]\0", 8));
    const qvej::ReadParts read = qvej::partsOf({{file}}, {}, &qvej::ByteSource::file);
    EXPECT_THROW(read(100, [](const qvej::TextPart& /*part*/) {}), qvej::Indivisible);
}

}  // namespace
}  // namespace jmap::test
