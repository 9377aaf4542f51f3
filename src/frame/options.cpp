// The debug keywords of JsonInit.
//
// Tested by tests/frame/document_test.cpp
#include "options.h"

#include "core/text.h"

#include <string_view>

namespace jmap {
namespace {

using Switch = bool JMAP_PRIVATE::*;

constexpr Switch kSwitches[] = {
    &JMAP_PRIVATE::debugMap,    &JMAP_PRIVATE::debugMapGen,     &JMAP_PRIVATE::debugValidateMap,
    &JMAP_PRIVATE::debugLevel,  &JMAP_PRIVATE::debugPath,       &JMAP_PRIVATE::debugCompression,
    &JMAP_PRIVATE::debugRead,   &JMAP_PRIVATE::debugReadInit,   &JMAP_PRIVATE::debugReadReset,
    &JMAP_PRIVATE::debugMemory, &JMAP_PRIVATE::debugInsertPath, &JMAP_PRIVATE::debugUserMap,
    &JMAP_PRIVATE::debugRlmem,  &JMAP_PRIVATE::debugAllData,
};

struct KEYWORD {
    std::string_view word;
    bool on;
    Switch first;   // null: every switch
    Switch second;  // null: no other one
};

// In the order of their effect: all that set, then all that clear.
constexpr KEYWORD kKeywords[] = {
    {",RLMEM,", true, &JMAP_PRIVATE::debugRlmem, nullptr},
    {",MAP,", true, &JMAP_PRIVATE::debugMap, nullptr},
    {",MAPGEN,", true, &JMAP_PRIVATE::debugMapGen, nullptr},
    {",MAPVAL,", true, &JMAP_PRIVATE::debugValidateMap, nullptr},
    {",LEVEL,", true, &JMAP_PRIVATE::debugLevel, nullptr},
    {",PARSE,", true, &JMAP_PRIVATE::debugLevel, nullptr},
    {",PATH,", true, &JMAP_PRIVATE::debugPath, nullptr},
    {",COMPRESSION,", true, &JMAP_PRIVATE::debugCompression, nullptr},
    {",MEMORY,", true, &JMAP_PRIVATE::debugMemory, nullptr},
    {",INSERTPATH,", true, &JMAP_PRIVATE::debugInsertPath, nullptr},
    {",READ,", true, &JMAP_PRIVATE::debugRead, &JMAP_PRIVATE::debugReadInit},
    {",READINIT,", true, &JMAP_PRIVATE::debugReadInit, nullptr},
    {",READRESET,", true, &JMAP_PRIVATE::debugReadReset, nullptr},
    {",USERMAP,", true, &JMAP_PRIVATE::debugUserMap, nullptr},
    {",ALLDATA,", true, &JMAP_PRIVATE::debugAllData, nullptr},
    {",ALL,", true, nullptr, nullptr},
    {",-RLMEM,", false, &JMAP_PRIVATE::debugRlmem, nullptr},
    {",-MAP,", false, &JMAP_PRIVATE::debugMap, nullptr},
    {",-MAPGEN,", false, &JMAP_PRIVATE::debugMapGen, nullptr},
    {",-MAPVAL,", false, &JMAP_PRIVATE::debugValidateMap, nullptr},
    {",-LEVEL,", false, &JMAP_PRIVATE::debugLevel, nullptr},
    {",-PARSE,", false, &JMAP_PRIVATE::debugLevel, nullptr},
    {",-PATH,", false, &JMAP_PRIVATE::debugPath, nullptr},
    {",-COMPRESSION,", false, &JMAP_PRIVATE::debugCompression, nullptr},
    {",-MEMORY,", false, &JMAP_PRIVATE::debugMemory, nullptr},
    {",-INSERTPATH,", false, &JMAP_PRIVATE::debugInsertPath, nullptr},
    {",-READ,", false, &JMAP_PRIVATE::debugRead, &JMAP_PRIVATE::debugReadInit},
    {",-READINIT,", false, &JMAP_PRIVATE::debugReadInit, nullptr},
    {",-READRESET,", false, &JMAP_PRIVATE::debugReadReset, nullptr},
    {",-USERMAP,", false, &JMAP_PRIVATE::debugUserMap, nullptr},
    {",-ALLDATA,", false, &JMAP_PRIVATE::debugAllData, nullptr},
};

void apply(JMAP_PRIVATE* p, const KEYWORD& keyword) noexcept {
    if (keyword.first == nullptr) {
        for (const Switch debug : kSwitches) {
            p->*debug = keyword.on;
        }
        return;
    }
    p->*keyword.first = keyword.on;
    if (keyword.second != nullptr) {
        p->*keyword.second = keyword.on;
    }
}

}  // namespace

void applyKeywords(JMAP_PRIVATE* p, const char* keywords, QVStrSize keywordsLen) noexcept {
    if (p->smh == nullptr) {
        return;
    }
    for (const KEYWORD& keyword : kKeywords) {
        if (p->smh->index(p->smh, keywords, keywordsLen, keyword.word.data(),
                          lengthOf(keyword.word), 0) >= 0) {
            apply(p, keyword);
        }
    }
}

}  // namespace jmap
