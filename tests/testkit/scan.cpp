// Texts for everything a test wants to look at in a scanned document; files.
#include "core/list.h"
#include "core/pool.h"
#include "core/readctx.h"
#include "core/text.h"
#include "scan/record_block.h"
#include "scratch_folder.h"
#include "testkit.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace jmap::test {
namespace {

std::string statusLine(QVStatus status) {
    return std::string("status ") + qvStatusName(status) + "\n";
}

std::string text(const char* at, QVStrSize len) {
    return std::string(view(at, len));
}

std::string tableText(const DSINFO& ds) {
    constexpr const char* kKinds[] = {":O", ":D", ":C", ":F"};
    std::string line = text(ds.name, ds.nameLen) + " ";
    std::string path(static_cast<std::size_t>(ds.tablePathLen), ' ');
    jmapTablePath(const_cast<DSINFO*>(&ds), path.data());
    line += ds.tableNode == nullptr && ds.tablePath == nullptr ? "-" : slashes(path);
    const char* between = " (";
    for (const VARINFO& column : each(ds.vhead)) {
        line += between + text(column.name, column.nameLen) + kKinds[column.type];
        if (column.type == VAR_DOUBLE || column.type == VAR_CHAR) {
            line += std::to_string(column.length);
        }
        between = ", ";
    }
    return line + (ds.vhead == nullptr ? " ()\n" : ")\n");
}

std::string cellText(const QVEJMAPReadContexth rctx, const VARIABLEINFO& column) {
    const char* at = rctx->obsbuf + column.offset;
    if (column.vartype == VARTYPE_CHARACTER) {
        std::string cell = text(at, column.length);
        cell.erase(cell.find_last_not_of(' ') + 1);
        return cell;
    }
    double value = 0;
    std::memcpy(&value, at, sizeof value);
    if (std::bit_cast<uint64_t>(value) == QVEJMAP_MISSING_BITS) {
        return "~";
    }
    char digits[400];
    const bool whole = std::abs(value) < 1e15 && std::trunc(value) == value;
    return {digits, whole ? std::to_chars(digits, std::end(digits), static_cast<int64_t>(value)).ptr
                          : std::to_chars(digits, std::end(digits), value).ptr};
}

}  // namespace

std::string slashes(std::string_view path) {
    std::string shown(path);
    std::replace(shown.begin(), shown.end(), '\x02', '/');
    return shown;
}

Scan::Scan(std::string_view json, const ScanOptions& options)
    : ownHost_(std::make_unique<FakeHost>()), host_(ownHost_.get()) {
    run(json, options);
}

Scan::Scan(FakeHost& host, std::string_view json, const ScanOptions& options) : host_(&host) {
    run(json, options);
}

Scan::~Scan() {
    if (doc_ != nullptr) {
        EXPECT_QV_OK(engine()->Term(doc_, host_->journal()));
    }
}

void Scan::run(std::string_view json, const ScanOptions& options) {
    UserJMAP_S* table = engine();
    std::string debug = options.debug, alldata = options.alldata;
    std::u32string tempName(options.cacheFile.begin(), options.cacheFile.end());
    QVEJMAPJsonInitParms parms{};
    parms.inCEI = options.encoding;
    parms.debugString = debug.data();
    parms.debugStringLen = lengthOf(debug);
    parms.descLen = static_cast<QVStrSize>(options.desc.copy(parms.desc, sizeof parms.desc));
    parms.tempName = tempName.data();
    parms.tempNameLen = static_cast<QVStrSize>(tempName.size());
    parms.memLeave = options.memLeave;
    parms.compress = options.compress ? 1 : 0;
    parms.ordinalCount = options.ordinals;
    parms.alldataName = alldata.data();
    parms.alldataNameLen = lengthOf(alldata);
    initStatus = table->JsonInit(&table->exth, &parms, &doc_, host_->journal());
    for (bool done = false; initStatus == QV_OK && !done && status == QV_OK;) {
        const auto piece = json.substr(0, options.split == 0 ? json.size() : options.split);
        json.remove_prefix(piece.size());
        done = json.empty();
        QVBoolean spilled = 0;
        // The engine only reads its input.
        status = table->JsonInput(doc_, const_cast<char*>(piece.data()), lengthOf(piece),
                                  done ? 1 : 0, &spilled, host_->journal());
        ++inputCalls;
        if (spilled != 0) {
            cachingCalls.push_back(inputCalls);
        }
    }
}

std::string Scan::map() const {
    std::string lines = p()->automap == nullptr ? "no map\n" : "";
    for (const DSINFO& ds : each(p()->automap == nullptr ? nullptr : p()->automap->dshead)) {
        lines += tableText(ds);
    }
    return lines + (p()->alldataDs == nullptr ? "no ALLDATA\n" : tableText(*p()->alldataDs));
}

std::string Scan::rows(std::string_view table, uint64_t flags) const {
    std::string name(table);
    QVEJMAPReadInitParms rip = {flags};
    QVEJMAPReadContexth rctx = nullptr;
    const QVStatus rc =
        engine()->ReadInit(doc_, automap(), name.data(), lengthOf(name), &rip, &rctx);
    if (rc != QV_OK) {
        return statusLine(rc);
    }
    std::string lines = rowsOf(engine(), rctx);
    EXPECT_QV_OK(engine()->ReadTerm(rctx));
    return lines;
}

std::string Scan::rowsOf(UserJMAP_S* engine, QVEJMAPReadContexth rctx) {
    std::string lines;
    QVStatus rc = QV_OK;
    while ((rc = engine->Read(rctx)) == QV_OK) {
        for (QVStrSize i = 0; i < rctx->varCount; ++i) {
            lines += (i == 0 ? "" : "|") + cellText(rctx, rctx->varinfo[i]);
        }
        lines += "\n";
    }
    return rc == QV_EOF ? lines : lines + statusLine(rc);
}

std::vector<std::string> Scan::blocks() const {
    BLOCKREADER reader{};
    reader.p = p();
    std::vector<std::string> all;
    std::string buffer(kBlockBytes, '\0');
    for (COMPPATHS& block : each(p()->chead)) {
        EXPECT_QV_OK(uncompressPathBuffer(&reader, &block, buffer.data()));
        all.push_back(buffer.substr(0, block.uncompressedLen));
    }
    EXPECT_QV_OK(destroyHandle(reader.rfp));
    return all;
}

QVStatus Scan::readMap(std::string_view map, std::size_t split, ERRORINFO* e) const {
    QVEJMAPMapContexth ctx = nullptr;
    QVStatus rc = engine()->MapInit(doc_, nullptr, &ctx, host_->journal());
    for (bool done = false; rc == QV_OK && !done;) {
        const auto piece = map.substr(0, split == 0 ? map.size() : split);
        map.remove_prefix(piece.size());
        done = map.empty();
        rc = engine()->MapInput(ctx, const_cast<char*>(piece.data()), lengthOf(piece), done ? 1 : 0,
                                host_->journal());
    }
    if (e != nullptr && ctx != nullptr) {
        *e = ctx->e;
    }
    EXPECT_QV_OK(engine()->MapTerm(doc_, &ctx, host_->journal()));
    EXPECT_EQ(ctx, nullptr);
    return rc;
}

// ---- Files --------------------------------------------------------------------------------------

std::optional<std::string> sharedFile(const std::string& name) {
    std::ifstream file(JMAP_SOURCE_DIR "/../shared/data/" + name, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string scratchFile(const std::string& name) {
    static const ScratchFolder folder;
    static int serial = 0;
    return folder.path / (std::to_string(++serial) + "-" + name);
}

}  // namespace jmap::test
