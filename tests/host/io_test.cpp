// Files of blocks: what is written and read back, what is refused, and every system call failing.
#include "host/io/io_module.h"
#include "host/io/syscalls.h"
#include "tests/host/host_fixture.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace qvhost::test {
namespace {

namespace fs = std::filesystem;

QVIOOpenParms parmsOf(const std::u32string& name, int32_t mode) {
    QVIOOpenParms parms{};
    std::u32string_view(U"DISK    ").copy(parms.device, 8);
    parms.name = name.data();
    parms.nameLen = lengthOf(name);
    parms.desc = "cache";
    parms.descLen = 5;
    parms.mode = mode;
    parms.recfm = QVIO_RECFM_BINARY;
    parms.access = QVIO_ACCESS_SEQUENTIAL;
    parms.modifier = QVIO_MODIFIER_DEFAULT;
    return parms;
}

// The file, null when the status expected is not QV_OK.
QVIOFileh open(QVIOEh io, const QVIOOpenParms& parms, QVStatus expected = QV_OK) {
    QVIOFileh file = nullptr;
    EXPECT_QV(expected, io->open(io, &parms, nullptr, &file));
    EXPECT_EQ(file != nullptr, expected == QV_OK);
    return file;
}

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

auto openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

class IoTest : public testing::Test {
   protected:
    [[nodiscard]] fs::path path(const std::string& file) const { return folder_.path / file; }
    QVIOFileh output(const std::string& file, QVStatus expected = QV_OK) const {
        return open(io_, parmsOf(path(file).u32string(), QVIO_OUTPUT), expected);
    }
    QVIOFileh input(const std::string& file, QVStatus expected = QV_OK) const {
        return open(io_, parmsOf(path(file).u32string(), QVIO_INPUT), expected);
    }
    // Writes the blocks to a new file and closes it.
    void store(const std::string& file, const std::vector<std::string>& blocks) const {
        QVIOFileh const out = output(file);
        for (const std::string& block : blocks) {
            EXPECT_QV_OK(write(out, block));
        }
        EXPECT_QV_OK(destroy(out));
    }
    [[nodiscard]] fs::perms modeOf(const std::string& file) const {
        return fs::status(path(file)).permissions();
    }

    ScratchFolder folder_;
    RunningHost host_;
    QVIOEh io_ = host_.load<QVIOE>(U"qvioe");
};

TEST_F(IoTest, EachReaderReadsTheBlocksWholeEvenWithoutNameOrInstance) {
    const auto before = openDescriptors();
    const std::vector<std::string> blocks = {"first", "", std::string(1 << 20, 'x'), {"\0\n", 2}};
    store("f", blocks);
    EXPECT_TRUE(folder_.read("f") == blocks[0] + blocks[2] + blocks[3]);
    fs::remove(path("f"));
    QVIOFileh const readers[] = {input("f"), input("f")};
    EXPECT_EQ(host_.leftovers(), "module qvioe;file cache;file cache;");
    EXPECT_QV_OK(destroy(io_));
    for (QVIOFileh in : readers) {
        for (const std::string& block : blocks) {
            EXPECT_TRUE(read(in) == block) << block.size();
        }
        EXPECT_EQ(read(in), "QV_IO_SHORT");
        EXPECT_QV_OK(destroy(in));
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(IoTest, ANameMeansTheFileThatThisInstanceWroteLast) {
    input("f", QV_IO_NOTFOUND);
    QVIOFileh const empty = output("f");
    output("f", QV_IO_REFUSED);  // somebody writes it
    QVIOEh const mine = std::exchange(io_, host_.load<QVIOE>(U"qvioe"));
    output("f", QV_IO_REFUSED);
    input("f", QV_IO_NOTFOUND);
    io_ = mine;
    EXPECT_QV_OK(destroy(empty));
    store("f", {"old one", "old two"});  // an empty file may be written again
    QVIOFileh const old = input("f");
    EXPECT_EQ(read(old), "old one");
    output("f", QV_IO_REFUSED);
    fs::remove(path("f"));
    store("f", {"new", "more"});
    EXPECT_EQ(read(old), "old two");
    fs::resize_file(path("f"), 5);
    QVIOFileh const in = input("f");
    EXPECT_EQ(read(in), "new");
    EXPECT_EQ(read(in), "QV_IO_SHORT");
}

TEST_F(IoTest, NamesBecomeUtf8AndRawBytesHaveNamesToo) {
    const std::u32string base = path("x").u32string();
    open(io_, parmsOf(base + U"\u00E9\U0001F600\xDC80\xDCFF", QVIO_OUTPUT));
    EXPECT_TRUE(fs::exists(path("x\xC3\xA9\xF0\x9F\x98\x80\x80\xFF")));
    for (const char32_t none :
         {char32_t{0}, char32_t{0xDC7F}, char32_t{0xDD00}, char32_t{0x110000}}) {
        open(io_, parmsOf(base + none, QVIO_OUTPUT), QV_IO_OPEN);
    }
    open(io_, parmsOf(base + std::u32string(300, U'x'), QVIO_OUTPUT), QV_IO_OPEN);
    open(io_, parmsOf(U"", QVIO_OUTPUT), QV_IO_OPEN);
}

TEST_F(IoTest, WritesOnlyToAnEmptyFileOfThisUserWhichItClosesToOthers) {
    folder_.write("full", "precious");
    folder_.write("target", "");
    folder_.write("one of two", "");
    fs::create_symlink("target", path("link"));
    fs::create_symlink("nowhere", path("dangling"));
    fs::create_hard_link(path("one of two"), path("other of two"));
    fs::create_directory(path("folder"));
    fs::create_directory_symlink("folder", path("way"));
    const fs::perms before = modeOf("one of two");
    for (const char* file : {"full", "link", "dangling", "one of two", "folder", "/dev/null"}) {
        SCOPED_TRACE(file);
        output(file, QV_IO_REFUSED);
    }
    if (geteuid() == 0) {  // another's file, which only this user can open and make
        ASSERT_EQ(chown(folder_.write("foreign", "").c_str(), 65534, 65534), 0);
        output("foreign", QV_IO_REFUSED);
    }
    EXPECT_EQ(modeOf("one of two"), before);
    EXPECT_EQ(folder_.read("full"), "precious");
    EXPECT_FALSE(fs::exists(path("nowhere")));
    chmod(folder_.write("way/open", "").c_str(), 0666);  // this link is followed, unlike a file's
    for (const char* file : {"way/open", "way/new"}) {
        const mode_t mask = umask(0777);
        store(file, {"one"});
        umask(mask);
        EXPECT_EQ(modeOf(file), fs::perms{0600}) << file;
    }
}

TEST_F(IoTest, OffersOneKindOfFileAndOneDirectionAHandle) {
    const std::u32string name = path("f").u32string();
    for (const auto field : {&QVIOOpenParms::mode, &QVIOOpenParms::recfm, &QVIOOpenParms::access,
                             &QVIOOpenParms::modifier}) {
        QVIOOpenParms parms = parmsOf(name, QVIO_OUTPUT);
        parms.*field += 3;
        open(io_, parms, QV_UNSUPPORTED);
    }
    QVIOOpenParms parms = parmsOf(name, QVIO_OUTPUT);
    parms.flags = 1;
    open(io_, parms, QV_UNSUPPORTED);
    parms.flags = 0;
    parms.device[7] = U'T';
    open(io_, parms, QV_UNSUPPORTED);
    parms.nameLen = -1;
    open(io_, parms, QV_BADPARMS);
    QVIOFileh const out = output("f");
    EXPECT_EQ(read(out), "QV_UNSUPPORTED");
    EXPECT_QV(QV_BADPARMS, out->write(out, "x", -1));
    EXPECT_QV(QV_UNSUPPORTED, write(input("f"), "x"));
}

// Answers for one of the system calls, used up one by one; then the system answers.  A positive
// answer cuts the count of a transfer to it, 0 makes it transfer nothing, a negative one is an
// errno.
using Answers = std::vector<int>;

void cutCount(auto& /*other argument*/, int /*most*/) {}
void cutCount(std::size_t& count, int most) {
    count = std::min(count, static_cast<std::size_t>(most));
}

// Stands in for a system call.  One that acts anyway is made even when it says that it failed.
template <auto Call, bool kActsAnyway = false>
struct Planned;

template <class Result, class... Args, Result (*Syscalls::*Call)(Args...), bool kActsAnyway>
struct Planned<Call, kActsAnyway> {
    static inline Answers answers;

    static Result call(Args... args) {
        if (answers.empty()) {
            return (posixSyscalls().*Call)(args...);
        }
        const int next = answers.front();
        answers.erase(answers.begin());
        (cutCount(args, next), ...);
        const Result made = next > 0 || kActsAnyway ? (posixSyscalls().*Call)(args...) : 0;
        errno = -next;
        return next < 0 ? -1 : made;
    }
};
using Open = Planned<&Syscalls::open>;
using Stat = Planned<&Syscalls::fstat>;
using Chmod = Planned<&Syscalls::fchmod>;
using Lock = Planned<&Syscalls::flock>;
using Write = Planned<&Syscalls::pwrite>;
using Read = Planned<&Syscalls::pread>;
using Dup = Planned<&Syscalls::duplicate>;
using Close = Planned<&Syscalls::close, true>;
constexpr Syscalls kFaulty = {&Open::call, &Stat::call,  &Chmod::call, &Lock::call, &Write::call,
                              &Read::call, &::ftruncate, &Dup::call,   &Close::call};

TEST_F(IoTest, FailingSystemCallsBecomeStatusesAndInterruptedOnesAreRepeated) {
    ASSERT_QV_OK(qvPortableRegister(host_.handle, "qvioe",
                                    [](QVHndlp, QVJnlh) { return createIo(kFaulty); }));
    const std::string whole = "[first][second][QV_IO_SHORT] firstsecond";
    const std::string noFirst = "[second][QV_IO_SHORT][QV_IO_SHORT] second";
    const std::string noSecond = "[first][QV_IO_SHORT][QV_IO_SHORT] first";
    const struct {
        const char* name;
        Answers& planned;
        Answers answers;
        QVStatus opened;
        std::string outcome;  // what failed, what was read back, what the file holds
    } cases[] = {
        {"open interrupted", Open::answers, {-EINTR, -EINTR}, QV_OK, whole},
        {"no room for a name", Open::answers, {-ENOSPC}, QV_IO_FULL, ""},
        {"a socket", Open::answers, {-ENXIO}, QV_IO_REFUSED, ""},
        {"no descriptor", Open::answers, {-EMFILE}, QV_IO_OPEN, ""},
        {"fstat", Stat::answers, {-EIO}, QV_IO_OPEN, ""},
        {"fchmod", Chmod::answers, {-EPERM}, QV_IO_OPEN, ""},
        {"held by another", Lock::answers, {-EWOULDBLOCK}, QV_IO_REFUSED, ""},
        {"no locks there", Lock::answers, {-ENOLCK}, QV_OK, whole},
        {"writes in pieces", Write::answers, {-EINTR, 1, 3, -EINTR, 1, 2}, QV_OK, whole},
        {"disk full", Write::answers, {-ENOSPC}, QV_OK, "QV_IO_FULL " + noFirst},
        {"quota half way", Write::answers, {3, -EDQUOT}, QV_OK, "QV_IO_FULL " + noFirst},
        {"write error", Write::answers, {5, 2, -EIO}, QV_OK, "QV_IO_WRITE " + noSecond},
        {"nothing written", Write::answers, {0}, QV_OK, "QV_IO_WRITE " + noFirst},
        {"close", Close::answers, {-EIO}, QV_OK, "QV_IO_CLOSE " + whole},
        {"no second descriptor", Dup::answers, {-EMFILE}, QV_OK, whole},
        {"reads in pieces", Read::answers, {-EINTR, 1, 2, -EINTR, 2, 5}, QV_OK, whole},
        {"read error", Read::answers, {4, -EIO}, QV_OK, "[QV_IO_READ][first][second] firstsecond"},
        {"cut off", Read::answers, {4, 0}, QV_OK, "[QV_IO_SHORT][first][second] firstsecond"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = openDescriptors();
        io_ = host_.load<QVIOE>(U"qvioe");
        c.planned = c.answers;
        std::string outcome;
        if (QVIOFileh const out = output(c.name, c.opened)) {
            for (const QVStatus status :
                 {write(out, "first"), write(out, "second"), destroy(out)}) {
                outcome += status == QV_OK ? "" : std::string(qvStatusName(status)) + " ";
            }
            QVIOFileh const in = input(c.name);
            for (int i = 0; i < 3; ++i) {
                outcome += "[" + read(in) + "]";
            }
            EXPECT_QV_OK(destroy(in));
            outcome += " " + folder_.read(c.name);
        }
        EXPECT_EQ(outcome, c.outcome);
        EXPECT_TRUE(c.planned.empty()) << "a planned failure was not asked for";
        EXPECT_QV_OK(destroy(io_));
        EXPECT_EQ(openDescriptors(), before);
    }
}

}  // namespace
}  // namespace qvhost::test
