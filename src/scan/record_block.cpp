// Blocks of the record stream.
//
// Tested by tests/scan/record_block_test.cpp
#include "record_block.h"

#include "core/guard.h"
#include "core/hash.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

// Raw deflate: no header, no checksum.
constexpr int kLevelDefault = -1;
constexpr int kMethodDeflated = 8;
constexpr int kRawWindowBits = -15;
constexpr int kMemLevel = 8;
constexpr int kStrategyDefault = 0;
constexpr double kOutputSlack = 1.3;  // times the bound: the output buffer seldom grows

constexpr std::u32string_view kFileModule = U"qvioe";
constexpr std::string_view kFileDesc = "json cache file";

// Asks how much memory is free, and decides whether this block and all later ones are spilled.
// Kept: when the query fails, blocks stay where they went before.  An uncompressed block then
// returns the status of the query, although it is stored.
QVStatus checkMemory(JMAP_PRIVATE* p) {
    uint64_t available = UINT64_MAX;
    const QVStatus rc = availableMemory(p, &available);
    if (available < p->rlmemMin) {
        p->usingTemp = true;
    }
    return rc;
}

QVStatus outputRoom(JMAP_PRIVATE* p, unsigned long bound) {
    if (static_cast<unsigned long>(p->coutBufLen) >= bound) {
        return QV_OK;
    }
    (void)poolFree(p->cpool, p->coutBuf);  // the buffer is replaced whatever the pool says
    p->coutBufLen = 0;
    const auto size = static_cast<QVStrSize>(static_cast<double>(bound) * kOutputSlack);
    p->coutBuf = poolBytes(p->cpool, size);
    if (p->coutBuf == nullptr) {
        return QV_NOMEM;
    }
    p->coutBufLen = size;
    return QV_OK;
}

// Deflates the open block into `coutBuf`.  `z` stays open, also after a failure; the caller ends
// it.
QVStatus deflateBlock(JMAP_PRIVATE* p, std::string_view* stored) {
    QVZLIBh zlib = p->zlibh;
    QVZStream* z = &p->z;
    QV_TRY(zlib->deflateInit2(z, kLevelDefault, kMethodDeflated, kRawWindowBits, kMemLevel,
                              kStrategyDefault));
    z->next_in = reinterpret_cast<const uint8_t*>(p->cBuf);
    z->avail_in = static_cast<uint32_t>(p->cBufi);
    QV_TRY(outputRoom(p, zlib->deflateBound(z, static_cast<unsigned long>(p->cBufi))));
    z->next_out = reinterpret_cast<uint8_t*>(p->coutBuf);
    z->avail_out = static_cast<uint32_t>(p->coutBufLen);
    if (zlib->deflate(z, QVZ_FINISH) != QVZ_STREAM_END) {
        myLogNote(p, U"rc not Z_STREAM_END in compressPathBuffer");
        return QV_NOMEM;
    }
    *stored = std::string_view(p->coutBuf, z->total_out);
    return QV_OK;
}

QVStatus loadFileModule(JMAP_PRIVATE* p) {
    if (p->qvioeh != nullptr) {
        return QV_OK;
    }
    QVHndlp host = qvGlobalHandle();
    QVExtensionh module = host->loadExtension(host, kFileModule.data(),
                                              static_cast<QVStrSize>(kFileModule.size()), p->jnl);
    if (module == nullptr) {
        return QV_NOMEM;
    }
    p->qvioeh = reinterpret_cast<QVIOEh>(module);  // an instance begins with its extension header
    return QV_OK;
}

// Opens the cache file unless `*file` is open.
QVStatus openCacheFile(JMAP_PRIVATE* p, int32_t mode, QVIOFileh* file) {
    if (*file != nullptr) {
        return QV_OK;
    }
    QV_TRY(loadFileModule(p));
    QVIOOpenParms parms = {};
    std::copy_n(U"DISK    ", std::size(parms.device), parms.device);
    parms.name = p->tempName;
    parms.nameLen = p->tempNameLen;
    parms.desc = kFileDesc.data();
    parms.descLen = lengthOf(kFileDesc);
    parms.mode = mode;
    parms.recfm = QVIO_RECFM_BINARY;
    parms.access = QVIO_ACCESS_SEQUENTIAL;
    parms.modifier = QVIO_MODIFIER_DEFAULT;
    parms.dataL = kBlockBytes;
    QVIOFileh opened = nullptr;
    QV_TRY(p->qvioeh->open(p->qvioeh, &parms, p->jnl, &opened));
    if (opened == nullptr) {
        return QV_NOMEM;
    }
    *file = opened;
    return QV_OK;
}

// Stores the open block as it is, without a copy, and allocates a new open block.
QVStatus handOver(JMAP_PRIVATE* p, COMPPATHS* n) {
    char* open = poolBytes(p->cpool, kBlockBytes);
    if (open == nullptr) {
        return QV_NOMEM;
    }
    n->buf = p->cBuf;
    p->cBuf = open;
    return QV_OK;
}

QVStatus storeBlock(JMAP_PRIVATE* p, std::string_view stored, COMPPATHS* n) {
    if (p->usingTemp) {
        n->onDisk = true;
        n->checksum = checksumOf(stored);
        QV_TRY(openCacheFile(p, QVIO_OUTPUT, &p->tfp));
        p->spilledPathBytes += stored.size();
        return p->tfp->write(p->tfp, stored.data(), lengthOf(stored));
    }
    if (!n->compressed && p->cBufi > kBlockBytes / 2) {
        return handOver(p, n);
    }
    n->buf = poolCopy(p->cpool, stored);
    return n->buf == nullptr ? QV_NOMEM : QV_OK;
}

// Makes `n` refer to the next block of the cache file, until the next call on the file.
QVStatus readBlock(BLOCKREADER* reader, COMPPATHS* n) {
    QV_TRY(openCacheFile(reader->p, QVIO_INPUT, &reader->rfp));
    char* buf = nullptr;
    QVStrSize bufLen = 0;
    QV_TRY(reader->rfp->read(reader->rfp, &buf, &bufLen));
    // Other bytes would be read as records, so check.
    if (bufLen != n->bufLen) {
        return QV_IO_SHORT;
    }
    if (checksumOf(view(buf, bufLen)) != n->checksum) {
        return QV_IO_CHANGED;
    }
    n->buf = buf;
    return QV_OK;
}

QVStatus inflateBlock(BLOCKREADER* reader, const COMPPATHS* n, char* outbuf) {
    QVZLIBh zlib = reader->p->zlibh;
    QVZStream* z = &reader->z;
    *z = {};
    (void)zlib->inflateInit2(z, kRawWindowBits);  // if this fails, inflate fails
    z->next_in = reinterpret_cast<const uint8_t*>(n->buf);
    z->avail_in = static_cast<uint32_t>(n->bufLen);
    z->next_out = reinterpret_cast<uint8_t*>(outbuf);
    z->avail_out = static_cast<uint32_t>(kBlockBytes);
    if (zlib->inflate(z, QVZ_FINISH) != QVZ_STREAM_END) {
        (void)zlib->inflateEnd(z);  // the first failure is returned
        myLogNote(reader->p, U"rc not Z_STREAM_END in uncompressPathBuffer");
        return QV_NOMEM;
    }
    if (z->total_out != n->uncompressedLen) {
        myLogNote(reader->p,
                  U"!!!uncompressed length doesnt match save uncompressed length in "
                  U"uncompressPathBuffer");
    }
    return zlib->inflateEnd(z);
}

// Closes the open block.
QVStatus closeBlock(JMAP_PRIVATE* p) {
    std::string_view stored = view(p->cBuf, p->cBufi);
    if (p->compress) {
        QV_TRY(deflateBlock(p, &stored));
    }
    // Kept: counted before the block is stored, so the totals include a block that is then lost.
    p->uncompressedPathBytes += static_cast<uint64_t>(p->cBufi);
    p->compressedPathBytes += stored.size();
    if (p->debugCompression) {
        myLogNote(p, U"compressPathBuffer compressed %ld bytes to %ld", static_cast<long>(p->cBufi),
                  static_cast<long>(stored.size()));
    }
    auto* n = poolNew<COMPPATHS>(p->cpool);
    if (n == nullptr) {
        return QV_NOMEM;
    }
    n->compressed = p->compress;
    n->bufLen = lengthOf(stored);
    n->uncompressedLen = static_cast<uint64_t>(p->cBufi);
    QV_TRY(storeBlock(p, stored, n));
    append(p->chead, p->ctail, n);
    p->cBufi = 0;
    return QV_OK;
}

}  // namespace

QVStatus compressPathBuffer(JMAP_PRIVATE* p) {
    if (p->cBufi == 0) {
        return QV_OK;
    }
    QV_TRY(askGuard(p, 0));
    p->z = {};
    QVStatus endStatus = checkMemory(p);
    const QVStatus rc = closeBlock(p);
    if (p->compress) {
        endStatus = p->zlibh->deflateEnd(&p->z);
    }
    return rc != QV_OK ? rc : endStatus;
}

QVStatus uncompressPathBuffer(BLOCKREADER* reader, COMPPATHS* n, char* outbuf) {
    if (n->onDisk) {
        // After a failure the position in the file is unknown, so no further block is read.
        if (reader->rfpStatus == QV_OK) {
            reader->rfpStatus = readBlock(reader, n);
        }
        QV_TRY(reader->rfpStatus);
    }
    if (n->compressed) {
        return inflateBlock(reader, n, outbuf);
    }
    std::memcpy(outbuf, n->buf, static_cast<std::size_t>(n->bufLen));
    return QV_OK;
}

}  // namespace jmap
