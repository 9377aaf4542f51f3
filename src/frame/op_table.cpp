// The operation table of the instance: the only place that fills it.
//
// Tested by tests/abi/layout_test.c and tests/frame/entry_test.cpp
#include "op_table.h"

#include "catalogue.h"
#include "document.h"
#include "driver.h"
#include "mapdoc/map_reader.h"
#include "mapdoc/map_writer.h"
#include "reader/read_context.h"
#include "reader/row_loop.h"

namespace jmap {

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
    table->MapInit = MapInit;
    table->MapInput = MapInput;
    table->MapTerm = MapTerm;
    table->GetAutoMap = GetAutoMap;
    table->GetUserMap = GetUserMap;
    table->GetAlldataInfo = GetAlldataInfo;
    table->MemberExist = MemberExist;
    table->Term = Term;
}

}  // namespace jmap
