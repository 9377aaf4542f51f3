// Blocks: closing, deflating, spilling, loading back.
#include "scan/record_block.h"

#include "testkit/open_document.h"

namespace jmap::test {
namespace {

// What the zlib and the file module of a test answer, and what they were asked.
struct Fakes {
    int init = 0, stream = QVZ_STREAM_END, end = 0;
    QVStatus open = QV_OK, read = QV_OK;
    QVStrSize readLen = 100;
    bool noHandle = false;
    int ends = 0;               // streams that were ended
    std::vector<int> settings;  // of the last stream
    std::string opened;         // files: mode and name
    QVIOOpenParms parms = {};   // of the last one
    std::string written;        // the blocks back to back
};
Fakes fakes;
QVIOFile file;

// A document whose open block has 100 bytes.
struct OpenBlock : HandDocument {
    explicit OpenBlock(bool compress, bool spill) {
        fakes = {};
        zlib.deflateInit2 = [](QVZStream*, int level, int method, int bits, int mem, int strategy) {
            fakes.settings = {level, method, bits, mem, strategy};
            return fakes.init;
        };
        zlib.deflateBound = [](QVZStream*, unsigned long n) { return n + 100; };
        zlib.deflate = zlib.inflate = [](QVZStream* z, int) {
            z->total_out = 7;
            return fakes.stream;
        };
        zlib.deflateEnd = zlib.inflateEnd = [](QVZStream*) { return ++fakes.ends, fakes.end; };
        zlib.inflateInit2 = [](QVZStream*, int bits) {
            fakes.settings = {bits};
            return fakes.init;
        };
        file.generic.destroy = [](QVGeneric*) { return QV_OK; };
        file.write = [](QVIOFileh, const void* block, QVStrSize len) {
            fakes.written += view(static_cast<const char*>(block), len);
            return QV_OK;
        };
        file.read = [](QVIOFileh, char** block, QVStrSize* len) {
            *block = fakes.written.data();
            *len = fakes.readLen;
            return fakes.read;
        };
        io.open = [](QVIOEh, const QVIOOpenParms* parms, QVJnlh, QVIOFileh* opened) {
            fakes.parms = *parms;
            fakes.opened += parms->mode == QVIO_OUTPUT ? "out " : "in ";
            fakes.opened.append(parms->name, parms->name + parms->nameLen) += ";";
            *opened = fakes.open == QV_OK && !fakes.noHandle ? &file : nullptr;
            return fakes.open;
        };
        p.zlibh = &zlib;
        p.qvioeh = &io;
        p.tempName = name;
        p.tempNameLen = 5;
        p.rlmemMin = 1000;
        p.compress = compress;
        reader.p = &p;
        host.setAvailable(spill ? 999 : 1000);
        std::memset(p.cBuf, 'a', 100);
        p.cBufi = 100;
    }
    ~OpenBlock() { p.qvioeh = nullptr; }  // it has no end of its own
    QVStatus close() { return compressPathBuffer(&p); }
    QVStatus load() { return uncompressPathBuffer(&reader, p.ctail, out.data()); }
    QVZLIB zlib = {};
    QVIOE io = {};
    QVChar name[5] = {'c', 'a', 'c', 'h', 'e'};
    BLOCKREADER reader = {};
    std::string out = std::string(kBlockBytes, '.');
};

TEST(RecordBlock, SpillsFromTheFirstShortageOn) {
    OpenBlock open(false, false);
    std::string kept;
    for (const uint64_t available : {1000, 999, 5000}) {
        open.host.setAvailable(available);
        open.p.cBufi = 100;
        ASSERT_QV_OK(open.close());
        ASSERT_QV_OK(open.close()) << "an empty block is none";
        kept += open.p.ctail->onDisk ? "disk " : "memory ";
        ASSERT_QV_OK(open.load());
        EXPECT_EQ(std::string(100, 'a') + '.', open.out.substr(0, 101));
    }
    EXPECT_EQ("memory disk disk ", kept);
    EXPECT_EQ(std::string(200, 'a'), fakes.written);
    EXPECT_TRUE(open.p.uncompressedPathBytes == 300 && open.p.compressedPathBytes == 300);
    EXPECT_EQ("out cache;in cache;", fakes.opened) << "opened once each";
    const QVIOOpenParms& o = fakes.parms;
    EXPECT_TRUE(std::u32string(o.device, 8) == U"DISK    " && o.flags == 0);
    EXPECT_EQ("json cache file", view(o.desc, o.descLen));
    EXPECT_TRUE(o.recfm == QVIO_RECFM_BINARY && o.access == QVIO_ACCESS_SEQUENTIAL);
    EXPECT_TRUE(o.modifier == QVIO_MODIFIER_DEFAULT && o.dataL == 1048576);
}

TEST(RecordBlock, ClosesWithTheseAnswers) {
    static constexpr auto kNoQuery = [](QVHndlp, uint64_t*) { return QV_UNSUPPORTED; };
    static constexpr struct {
        const char* name;
        bool compress, spill;
        uint64_t failing;  // the allocation that fails
        void (*arrange)(OpenBlock&);
        QVStatus status;
        uint64_t counted;  // bytes, before the block is kept
        QVStrSize kept;    // bytes, 0: the block stays open
    } kCases[] = {
        {"refused", 0, 1, 0, [](auto&) { fakes.open = QV_IO_REFUSED; }, QV_IO_REFUSED, 100, 0},
        {"no file", 0, 1, 0, [](auto&) { fakes.noHandle = true; }, QV_NOMEM, 100, 0},
        {"no stream", 1, 0, 0, [](auto&) { fakes.init = -2; }, -2, 0, 0},
        {"the stream breaks off", 1, 0, 0, [](auto&) { fakes.stream = 0; }, QV_NOMEM, 0, 0},
        {"no output buffer", 1, 0, 1, [](auto&) {}, QV_NOMEM, 0, 0},
        {"no block", 1, 0, 2, [](auto&) {}, QV_NOMEM, 100, 0},
        {"no bytes", 1, 0, 3, [](auto&) {}, QV_NOMEM, 100, 0},
        {"an end that fails", 1, 0, 0, [](auto&) { fakes.end = -3; }, -3, 100, 7},
        {"no query", 0, 0, 0, [](auto& open) { open.host.handle()->qvmrlmem = kNoQuery; },
         QV_UNSUPPORTED, 100, 100},
        {"no query, deflated", 1, 0, 0, [](auto& open) { open.host.handle()->qvmrlmem = kNoQuery; },
         QV_OK, 100, 7},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        OpenBlock open(c.compress, c.spill);
        c.arrange(open);
        open.host.failAllocation(c.failing);
        EXPECT_EQ(c.status, open.close());
        const COMPPATHS* n = open.p.chead;
        EXPECT_EQ(c.kept, n == nullptr ? 0 : n->bufLen);
        EXPECT_TRUE(n == nullptr || (n->compressed == c.compress && !n->onDisk));
        EXPECT_EQ(c.kept == 0 ? 100 : 0, open.p.cBufi);
        EXPECT_EQ(c.counted, open.p.uncompressedPathBytes);
        EXPECT_EQ(c.compress ? 1 : 0, fakes.ends) << "a failure ends the stream as well";
        EXPECT_EQ(c.kept == 7 ? 260 : open.p.coutBufLen, open.p.coutBufLen);
        EXPECT_TRUE(!c.compress || fakes.settings == (std::vector<int>{-1, 8, -15, 8, 0}));
    }
}

TEST(RecordBlock, LoadsWithTheseAnswersAndAFileThatFailedOnceGivesNoLaterBlock) {
    static constexpr struct {
        const char* name;
        bool compress, spill;
        void (*arrange)();
        QVStatus status;
        int ends;
    } kCases[] = {
        {"refused", false, true, [] { fakes.open = QV_IO_REFUSED; }, QV_IO_REFUSED, 0},
        {"a byte less", false, true, [] { fakes.readLen = 99; }, QV_IO_SHORT, 0},
        {"a byte more", false, true, [] { fakes.readLen = 101; }, QV_IO_SHORT, 0},
        {"another byte", false, true, [] { fakes.written[99] = 'b'; }, QV_IO_CHANGED, 0},
        {"a read that fails", false, true, [] { fakes.read = QV_IO_READ; }, QV_IO_READ, 0},
        {"less than none", true, true, [] { fakes.readLen = -1; }, QV_IO_SHORT, 1},
        {"another byte, deflated", true, true, [] { fakes.written[0] ^= 1; }, QV_IO_CHANGED, 1},
        {"inflate finds out", true, false, [] { fakes.stream = 0; }, QV_NOMEM, 2},
        {"the start is not looked at", true, false, [] { fakes.init = -2; }, QV_OK, 2},
        {"the end is", true, false, [] { fakes.end = -3; }, -3, 2},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        OpenBlock open(c.compress, c.spill);
        ASSERT_QV_OK(open.close());
        fakes.readLen = lengthOf(fakes.written);
        c.arrange();
        EXPECT_EQ(c.status, open.load());
        EXPECT_EQ(c.ends, fakes.ends);
        EXPECT_EQ(std::string(200, '.'), open.out.substr(0, 200));
        EXPECT_TRUE(c.ends < 2 || fakes.settings == std::vector<int>{-15}) << "raw";
        fakes.open = fakes.read = QV_OK;
        fakes.readLen = c.compress ? 7 : 100;
        EXPECT_TRUE(c.ends == 2 || open.load() == c.status) << "of the file, it stays";
    }
}

}  // namespace
}  // namespace jmap::test
