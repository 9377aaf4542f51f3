// Files of blocks: what is written and read back, what is refused, and every system call failing.
#include "host/io/io_module.h"
#include "tests/host/faulty_calls.h"
#include "tests/host/host_fixture.h"

#include <sys/stat.h>

namespace qvhost::test {
namespace {

namespace fs = std::filesystem;

QVStatus write(QVIOFileh file, std::string_view block) {
    return file->write(file, block.data(), lengthOf(block));
}

// The next block, or the name of the status.
std::string read(QVIOFileh file) {
    char* block = nullptr;
    QVStrSize length = -1;
    const QVStatus status = file->read(file, &block, &length);
    return status == QV_OK ? std::string(block, block + length) : qvStatusName(status);
}

struct IoTest : testing::Test {
    [[nodiscard]] fs::path path(const std::string& file) const { return folder.path / file; }
    // The file, null when the status expected is not QV_OK.
    QVIOFileh open(const std::u32string& name, int32_t mode, QVStatus expected) const {
        const QVChar* const at = name.data();
        QVIOOpenParms parms{{}, at, lengthOf(name), "cache", 5, mode, QVIO_RECFM_BINARY, 0, 0,
                            0,  0};
        std::u32string_view(U"DISK    ").copy(parms.device, 8);
        parms.access = QVIO_ACCESS_SEQUENTIAL;
        parms.modifier = QVIO_MODIFIER_DEFAULT;
        QVIOFileh file = nullptr;
        EXPECT_QV(expected, io->open(io, &parms, nullptr, &file));
        EXPECT_EQ(file != nullptr, expected == QV_OK);
        return file;
    }
    QVIOFileh output(const std::string& file, QVStatus expected = QV_OK) const {
        return open(path(file).u32string(), QVIO_OUTPUT, expected);
    }
    QVIOFileh input(const std::string& file, QVStatus expected = QV_OK) const {
        return open(path(file).u32string(), QVIO_INPUT, expected);
    }
    // Writes the blocks to a new file and closes it.
    void store(const std::string& file, const std::vector<std::string>& blocks) const {
        QVIOFileh const out = output(file);
        for (const std::string& block : blocks) {
            EXPECT_QV_OK(write(out, block));
        }
        EXPECT_QV(QV_BADPARMS, out->write(out, "x", -1));
        EXPECT_EQ(read(out), "QV_UNSUPPORTED");
        EXPECT_QV_OK(destroy(out));
    }

    ScratchFolder folder;
    RunningHost host;
    QVIOEh io = host.load<QVIOE>(U"qvioe");
};

TEST_F(IoTest, EachReaderReadsTheBlocksWholeEvenWithoutNameOrInstance) {
    const std::vector<std::string> blocks = {"first", "", std::string(1 << 20, 'x'), {"\0\n", 2}};
    store("f", blocks);
    EXPECT_TRUE(folder.read("f") == blocks[0] + blocks[2] + blocks[3]);
    fs::remove(path("f"));
    QVIOFileh const readers[] = {input("f"), input("f")};
    EXPECT_EQ(host.leftovers(), "module qvioe;file cache;file cache;");
    EXPECT_QV_OK(destroy(io));
    for (QVIOFileh in : readers) {
        for (const std::string& block : blocks) {
            EXPECT_TRUE(read(in) == block) << block.size();
        }
        EXPECT_EQ(read(in), "QV_IO_SHORT");
        EXPECT_QV(QV_UNSUPPORTED, write(in, "x"));
    }
}

TEST_F(IoTest, ANameMeansTheFileThatThisInstanceWroteLast) {
    QVIOFileh const empty = output("f");
    output("f", QV_IO_REFUSED);  // open for writing already
    QVIOEh const mine = std::exchange(io, host.load<QVIOE>(U"qvioe"));
    output("f", QV_IO_REFUSED);
    input("f", QV_IO_NOTFOUND);
    io = mine;
    EXPECT_QV_OK(destroy(empty));
    store("f", {"old one", "old two"});  // an empty file may be written again
    output("f", QV_IO_REFUSED);
    QVIOFileh const old = input("f");
    fs::remove(path("f"));
    store("f", {"new"});
    EXPECT_EQ(read(old), "old one");
    EXPECT_EQ(read(input("f")), "new");
    EXPECT_EQ(read(old), "old two");
    // A byte that is no UTF-8 comes as a half surrogate; no other half, nor 0, is in a name.
    EXPECT_QV_OK(destroy(open(path("x").u32string() + U"\xDCE9", QVIO_OUTPUT, QV_OK)));
    EXPECT_TRUE(fs::exists(path("x\xE9")));
    open(path("x").u32string() + U"\xD800", QVIO_OUTPUT, QV_IO_OPEN);
}

TEST_F(IoTest, WritesOnlyToAnEmptyFileOfThisUserWhichItClosesToOthers) {
    folder.write("full", "precious");
    folder.write("one of two", "");
    fs::create_symlink("nowhere", path("link"));
    fs::create_hard_link(path("one of two"), path("other of two"));
    fs::create_directory(path("folder"));
    fs::create_directory_symlink("folder", path("way"));
    std::vector refused = {"full", "link", "one of two", "folder", "/dev/null"};
    if (geteuid() == 0) {  // another's file, which only this user can open and make
        ASSERT_EQ(chown(folder.write("foreign", "").c_str(), 65534, 65534), 0);
        refused.push_back("foreign");
    }
    for (const char* file : refused) {
        SCOPED_TRACE(file);
        output(file, QV_IO_REFUSED);
    }
    EXPECT_EQ(folder.read("full"), "precious");
    EXPECT_FALSE(fs::exists(path("nowhere")));
    chmod(folder.write("way/open", "").c_str(), 0666);  // this link is followed, unlike a file's
    for (const char* file : {"way/open", "way/new"}) {
        const mode_t mask = umask(0777);
        store(file, {"one"});
        umask(mask);
        EXPECT_EQ(fs::status(path(file)).permissions(), fs::perms{0600}) << file;
    }
}

TEST_F(IoTest, FailingSystemCallsBecomeStatusesAndInterruptedOnesAreRepeated) {
    ASSERT_QV_OK(qvPortableRegister(host.handle, "qvioe",
                                    [](QVHndlp, QVJnlh) { return createIo(kFaultyCalls); }));
    const std::string whole = "[first][second][QV_IO_SHORT] firstsecond";
    const std::string noFirst = "[second][QV_IO_SHORT][QV_IO_SHORT] second";
    const std::string noSecond = "[first][QV_IO_SHORT][QV_IO_SHORT] first";
    const struct {
        const char* name;
        std::vector<int>& planned;
        std::vector<int> answers;
        std::string outcome;  // what failed, what was read back, what the file holds
        QVStatus opened = QV_OK;
    } cases[] = {
        {"open interrupted", answers<&S::open>, {-EINTR, -EINTR}, whole},
        {"no room for a name", answers<&S::open>, {-ENOSPC}, "", QV_IO_FULL},
        {"no descriptor", answers<&S::open>, {-EMFILE}, "", QV_IO_OPEN},
        {"fchmod", answers<&S::fchmod>, {-EPERM}, "", QV_IO_OPEN},
        {"no locks there", answers<&S::flock>, {-ENOLCK}, whole},
        {"written in pieces", answers<&S::pwrite>, {-EINTR, 1, 3, -EINTR, 1, 2}, whole},
        {"quota half way", answers<&S::pwrite>, {3, -EDQUOT}, "QV_IO_FULL " + noFirst},
        {"write error", answers<&S::pwrite>, {5, 2, -EIO}, "QV_IO_WRITE " + noSecond},
        {"nothing written", answers<&S::pwrite>, {0}, "QV_IO_WRITE " + noFirst},
        {"close", answers<&S::close>, {-EIO}, "QV_IO_CLOSE " + whole},
        {"no second descriptor", answers<&S::duplicate>, {-EMFILE}, whole},
        {"read in pieces", answers<&S::pread>, {-EINTR, 1, 2, -EINTR, 2, 5}, whole},
        {"read error", answers<&S::pread>, {4, -EIO}, "[QV_IO_READ][first][second] firstsecond"},
        {"cut off", answers<&S::pread>, {4, 0}, "[QV_IO_SHORT][first][second] firstsecond"},
    };
    const auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = openDescriptors();
        io = host.load<QVIOE>(U"qvioe");
        c.planned = c.answers;
        std::string outcome;
        if (QVIOFileh const out = output(c.name, c.opened)) {
            for (const QVStatus done : {write(out, "first"), write(out, "second"), destroy(out)}) {
                outcome += done == QV_OK ? "" : std::string(qvStatusName(done)) + " ";
            }
            QVIOFileh const in = input(c.name);
            for (int i = 0; i < 3; ++i) {
                outcome += "[" + read(in) + "]";
            }
            EXPECT_QV_OK(destroy(in));
            outcome += " " + folder.read(c.name);
        }
        EXPECT_EQ(outcome, c.outcome);
        EXPECT_TRUE(c.planned.empty()) << "a planned failure was not asked for";
        EXPECT_QV_OK(destroy(io));
        EXPECT_EQ(openDescriptors(), before);
    }
}

TEST_F(IoTest, ADirectoryAsNameGivesAFileWithoutOne) {
    ASSERT_QV_OK(qvPortableRegister(host.handle, "qvioe",
                                    [](QVHndlp, QVJnlh) { return createIo(kFaultyCalls); }));
    const struct {
        const char* name;
        std::vector<int> opens, unlinks;
        QVStatus status;
    } cases[] = {
        {"nameless", {-EINTR}, {}, QV_OK},
        {"the file system has none", {-EOPNOTSUPP}, {}, QV_OK},
        {"nor has the system", {-EISDIR, -EINTR}, {}, QV_OK},
        {"no room", {-ENOSPC}, {}, QV_IO_FULL},
        {"no room for a name", {-EINVAL, -EDQUOT}, {}, QV_IO_FULL},
        {"not ours to write to", {-EACCES}, {}, QV_IO_OPEN},
        {"the name stays", {-EOPNOTSUPP}, {-EACCES}, QV_IO_OPEN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        io = host.load<QVIOE>(U"qvioe");
        answers<& S::open> = c.opens;
        answers<& S::unlink> = c.unlinks;
        if (QVIOFileh const out = output("", c.status)) {
            QVIOEh const other = std::exchange(io, host.load<QVIOE>(U"qvioe"));
            QVIOFileh const another = output("");
            EXPECT_TRUE(write(out, "mine") == QV_OK && write(another, "yours") == QV_OK);
            EXPECT_TRUE(destroy(out) == QV_OK && destroy(another) == QV_OK);
            EXPECT_EQ(read(input("")), "yours");
            io = other;
            EXPECT_EQ(read(input("")), "mine");
            EXPECT_TRUE(fs::is_empty(folder.path));
        }
        EXPECT_TRUE(answers<&S::open>.empty() && answers<&S::unlink>.empty());
    }
}

}  // namespace
}  // namespace qvhost::test
