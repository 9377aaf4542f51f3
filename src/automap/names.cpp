// Names of the automatic map, and the names of tables.
//
// Tested by tests/automap/names_test.cpp
#include "names.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "path_parts.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

constexpr QVStrSize kJoinedMax = 30;  // bytes of a joined name: room for two digits of suffix
constexpr QVStrSize kFreeSuffixDigits =
    2;  // digits that a suffix may have before the name gives way

bool isLetterOrUnderscore(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// Shortens the two parts of a joined name until, with the underscore, they fill kJoinedMax bytes.
//   Kept: when the longer part is longer than the excess, it alone is cut, even if it becomes the
//   shorter one: 28 and 28 bytes become 1 and 28.
void fitParts(QVStrSize& aLen, QVStrSize& bLen) noexcept {
    QVStrSize excess = aLen + bLen - (kJoinedMax - 1);
    if (excess <= 0) {
        return;
    }
    QVStrSize& longer = aLen >= bLen ? aLen : bLen;
    const QVStrSize other = std::min(aLen, bLen);
    if (longer > excess) {
        longer -= excess;
        return;
    }
    const QVStrSize levelled = std::min(excess, longer - other);
    longer -= levelled;
    excess -= levelled;
    aLen -= (excess + 1) / 2;  // in turn, A first
    bLen -= excess / 2;
}

// The entry of a candidate name, or null when it has not been asked for yet.
DSNAMELIST* findDsName(JMAP_PRIVATE* p, std::string_view uname) noexcept {
    return static_cast<DSNAMELIST*>(
        p->dsNameHash->find(p->dsNameHash, uname.data(), lengthOf(uname)));
}

QVStatus createDsNameHash(JMAP_PRIVATE* p) {
    if (p->dsNameHash != nullptr) {
        return QV_OK;
    }
    constexpr std::u32string_view kTracker = U"dsname tracker";
    QVHndlp host = qvGlobalHandle();
    p->dsNameHash = host->createTracker(host, QV_TRACKER_HASH, 1, kTracker.data(), kTracker.size());
    return p->dsNameHash == nullptr ? QV_NOMEM : QV_OK;
}

// Remembers a name that is asked for the first time.
QVStatus addDsName(JMAP_PRIVATE* p, std::string_view name, std::string_view uname) {
    auto* entry = poolNew<DSNAMELIST>(p->cpool);
    if (entry == nullptr) {
        return QV_NOMEM;
    }
    std::memcpy(entry->name, name.data(), name.size());
    std::memcpy(entry->uname, uname.data(), uname.size());
    entry->nameLen = lengthOf(name);
    entry->count = 1;
    append(p->dshead, p->dstail, entry);
    return p->dsNameHash->insert(p->dsNameHash, entry->uname, entry->nameLen, entry);
}

// Appends a running number to the name.  The third digit and further ones replace the last bytes of
// the name.
QVStatus addSuffix(JMAP_PRIVATE* p, DSINFO* ds, int32_t number) {
    char digits[kNumberMax];
    QVStrSize digitCount = 0;
    QV_TRY(formatNumber(p, U"%d", number, digits, &digitCount));
    if (digitCount > kFreeSuffixDigits) {
        ds->nameLen = std::max<QVStrSize>(0, ds->nameLen - (digitCount - kFreeSuffixDigits));
    }
    std::memcpy(ds->name + ds->nameLen, digits, static_cast<std::size_t>(digitCount));
    ds->nameLen += digitCount;
    return QV_OK;
}

}  // namespace

void validateName(char* name, QVStrSize nameLen) noexcept {
    for (QVStrSize i = 0; i < nameLen; ++i) {
        if (!isLetterOrUnderscore(name[i]) && (i == 0 || !isDigit(name[i]))) {
            name[i] = '_';
        }
    }
}

void upperName(char* out, std::string_view name) noexcept {
    if (name.empty()) {
        return;
    }
    std::memcpy(out, name.data(), name.size());
    QVNLSh nls = qvGlobalHandle()->nls;
    nls->upper8(nls, out, lengthOf(name));
}

QVStatus formatNumber(JMAP_PRIVATE* p, const QVChar* fmt, int32_t number, char* out,
                      QVStrSize* outLen) {
    if (p->tosess == nullptr) {
        return QV_NOMEM;
    }
    QVChar wide[kNumberMax];
    QVStrSize wideLen = 0;
    QVNLSh nls = qvGlobalHandle()->nls;
    QV_TRY(nls->format(nls, wide, kNumberMax, &wideLen, fmt, number));
    return p->tosess->convert(p->tosess, wide, wideLen, out, kNumberMax, outLen);
}

QVStrSize candidateDsName(JMAP_PRIVATE* p, std::string_view path, char* out) noexcept {
    const PATHPARTS object = partsOf(p, parentOf(p, path));
    const std::string_view b = object.last;
    const PATHPARTS around = partsOf(p, object.parent);
    const std::string_view a = around.last;

    // The first component of a path, with or without a separator before it, is not joined.
    if (around.parent.empty()) {
        const QVStrSize bLen = std::min(lengthOf(b), kNameMax);
        std::copy_n(b.data(), bLen, out);
        return bLen;
    }
    QVStrSize aLen = lengthOf(a);
    QVStrSize bLen = lengthOf(b);
    fitParts(aLen, bLen);
    char* to = std::copy_n(a.data(), aLen, out);
    *to++ = '_';
    return std::copy_n(b.data(), bLen, to) - out;
}

QVStatus uniqueDsName(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* path) {
    const std::string_view text = pathOf(p, *path);
    if (text.data() == nullptr) {
        return QV_NOMEM;
    }
    ds->nameLen = candidateDsName(p, text, ds->name);
    validateName(ds->name, ds->nameLen);
    char upper[kNameMax];
    upperName(upper, nameOf(*ds));
    const std::string_view uname = view(upper, ds->nameLen);

    QV_TRY(createDsNameHash(p));
    DSNAMELIST* entry = findDsName(p, uname);
    if (entry == nullptr) {
        return addDsName(p, nameOf(*ds), uname);
    }
    entry->count += 1;
    return addSuffix(p, ds, entry->count);
}

}  // namespace jmap
