// Which tables a document has, by its automatic map and by the user's.
//
// Tested by tests/frame/catalogue_test.cpp and tests/automap/lengths_test.cpp
#include "catalogue.h"

#include "automap/lengths.h"
#include "automap/map_dump.h"
#include "automap/map_index.h"
#include "core/context.h"
#include "core/map.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

constexpr QVStatus kMemberExists = 0;
constexpr QVStatus kNoMember = 1;

// Equal by the document's string service; by bytes when it could not be made.
[[nodiscard]] bool sameName(JMAP_PRIVATE* p, std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    if (p->smh == nullptr) {
        return a == b;
    }
    return p->smh->equal(p->smh, a.data(), lengthOf(a), b.data(), lengthOf(b), 0) != 0;
}

}  // namespace

QVStatus GetAutoMap(QVEJMAPJsonContexth inh, QVMemPtr* m) {
    *m = contextOf(inh)->automap;
    return QV_OK;
}

QVStatus GetUserMap(QVEJMAPJsonContexth inh, QVMemPtr* m, QVPoolh pool, INFORMATINFO** ii) {
    JMAP_PRIVATE* p = contextOf(inh);
    *m = p->usermap;
    if (p->usermap == nullptr) {
        return QV_OK;
    }
    getAutomapLengths(p);
    if (p->debugUserMap) {
        QV_TRY(dumpMap2(p, p->usermap, "USER post automap lengths"));
    }
    return charInformatDefaultWidths(p, p->usermap, pool, ii);
}

QVStatus GetDsName(QVEJMAPJsonContexth inh, QVMemPtr m, uint64_t index, char* dsname,
                   int16_t* dsnameLen) {
    const DSINFO* ds = tableAt(contextOf(inh), static_cast<MAP*>(m), index);
    if (ds == nullptr) {
        return QV_EOF;
    }
    const QVStrSize capacity = std::max<QVStrSize>(*dsnameLen, 0);
    const QVStrSize count = std::min(capacity, ds->nameLen);
    *dsnameLen = static_cast<int16_t>(count);
    if (count > 0) {
        std::memcpy(dsname, ds->name, static_cast<size_t>(count));
    }
    return QV_OK;
}

QVStatus MemberExist(QVEJMAPJsonContexth inh, QVMemPtr m, int16_t nameLen, char* name) {
    if (nameLen < 0) {
        return kNoMember;
    }
    JMAP_PRIVATE* p = contextOf(inh);
    const std::string_view wanted = view(name, nameLen);
    if (findTable(p, static_cast<MAP*>(m), wanted, sameName) != nullptr) {
        return kMemberExists;
    }
    // ALLDATA is in no map, but always exists.
    const bool isAlldata = sameName(p, wanted, view(p->alldataName, p->alldataNameLen));
    return isAlldata ? kMemberExists : kNoMember;
}

QVStatus GetAlldataInfo(QVEJMAPJsonContexth inh, int32_t** i) {
    JMAP_PRIVATE* p = contextOf(inh);
    *i = nullptr;
    const QVStrSize levels = QVStrSize{p->labelCountMax} + 1;
    auto* info = poolNew<int32_t>(p->cpool, levels + 2);
    if (info == nullptr) {
        return QV_NOMEM;
    }
    info[0] = static_cast<int32_t>(levels);
    info[1] = static_cast<int32_t>(p->valueMaxLen);
    std::memcpy(info + 2, p->labelMaxes, static_cast<size_t>(levels) * sizeof(int32_t));
    *i = info;
    return QV_OK;
}

}  // namespace jmap
