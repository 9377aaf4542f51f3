// The operation table of the instance: the only place that fills it.
//
// Tested by tests/abi/layout_test.c and tests/frame/entry_test.cpp
#include "op_table.h"

#include "catalogue.h"
#include "document.h"
#include "driver.h"
#include "mapdoc/map_writer.h"
#include "reader/read_context.h"
#include "reader/row_loop.h"

namespace jmap {
namespace {

// Stands in the slots of the user-map operations, which this version does not have: JMAP_NOTAVAIL,
// whatever the arguments, and no out-parameter is touched.
template <class... Args>
QVStatus notAvailable(Args... /*args*/) {
    return JMAP_NOTAVAIL;
}

}  // namespace

void fillOperations(UserJMAP_S* table) noexcept {
    table->JsonInit = JsonInit;
    table->JsonInput = JsonInput;
    table->GetAutoMapBuf = GetAutoMapBuf;
    table->GetAutoMapBufFree = GetAutoMapBufFree;
    table->ReadInit = ReadInit;
    table->Read = Read;
    table->ReadReset = ReadReset;
    table->ReadTerm = ReadTerm;
    table->GetDsName = GetDsName;
    table->MapInit = notAvailable;
    table->MapInput = notAvailable;
    table->MapTerm = notAvailable;
    table->GetAutoMap = GetAutoMap;
    table->GetUserMap = notAvailable;
    table->GetAlldataInfo = GetAlldataInfo;
    table->MemberExist = MemberExist;
    table->Term = Term;
}

}  // namespace jmap
