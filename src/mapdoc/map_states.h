// The states of the parse of a user map, and a table of the transitions.
//
//   S_BEGIN ─{► S_WANT_DATASETS ─key► S_WANT_DATASETS_OPEN ─[► S_IN_DATASETS ─]► S_WANT_END
//                                                                  {▼  ▲}          }▼
//     S_WANT_DSNAMESTR, S_WANT_TABLEPATHSTR   ◄─key, text──► S_IN_A_DATASET      S_END
//                                   S_WANT_VARIABLES_OPEN ◄─key─┘      ▲]
//                                                     └─────[► S_IN_VARIABLES
//                                                                  {▼  ▲}
//     a chain of states for each property     ◄─key, value─► S_IN_A_VARIABLE
//
// Tested by tests/mapdoc/map_reader_test.cpp
#pragma once

#include "map_values.h"

#include <string_view>

namespace jmap {

// X(state, status of an event that the state does not expect)
#define JMAP_VSTATE_LIST(X)                      \
    X(S_BEGIN, JMAP_MAP_OBJECT)                  \
    X(S_WANT_DATASETS, JMAP_MAP_DATASETS)        \
    X(S_WANT_DATASETS_OPEN, JMAP_MAP_ARRAY)      \
    X(S_IN_DATASETS, JMAP_MAP_OBJECT)            \
    X(S_IN_A_DATASET, JMAP_MAP_TABLEKEY)         \
    X(S_WANT_DSNAMESTR, JMAP_MAP_STRING)         \
    X(S_WANT_TABLEPATHSTR, JMAP_MAP_STRING)      \
    X(S_WANT_VARIABLES_OPEN, JMAP_MAP_ARRAY)     \
    X(S_IN_VARIABLES, JMAP_MAP_OBJECT)           \
    X(S_IN_A_VARIABLE, JMAP_MAP_COLUMNKEY)       \
    X(S_WANT_NAMESTR, JMAP_MAP_STRING)           \
    X(S_WANT_TYPESTR, JMAP_MAP_STRING)           \
    X(S_WANT_PATHSTR, JMAP_MAP_STRING)           \
    X(S_WANT_LENGTHNUM, JMAP_MAP_INTEGER)        \
    X(S_WANT_CURRENTLENGTHNUM, JMAP_MAP_INTEGER) \
    X(S_WANT_FORMAT_OPEN, JMAP_MAP_ARRAY)        \
    X(S_WANT_FORMAT0, JMAP_MAP_STRING)           \
    X(S_WANT_FORMAT1, JMAP_MAP_INTEGER)          \
    X(S_WANT_FORMAT2, JMAP_MAP_INTEGER)          \
    X(S_WANT_FORMAT_CLOSE, JMAP_MAP_ELEMENTS)    \
    X(S_WANT_INFORMAT_OPEN, JMAP_MAP_ARRAY)      \
    X(S_WANT_INFORMAT0, JMAP_MAP_STRING)         \
    X(S_WANT_INFORMAT1, JMAP_MAP_INTEGER)        \
    X(S_WANT_INFORMAT2, JMAP_MAP_INTEGER)        \
    X(S_WANT_INFORMAT_CLOSE, JMAP_MAP_ELEMENTS)  \
    X(S_WANT_LABELSTR, JMAP_MAP_STRING)          \
    X(S_WANT_OPTIONS_OPEN, JMAP_MAP_ARRAY)       \
    X(S_WANT_OPTIONSTR, JMAP_MAP_STRING)         \
    X(S_WANT_END, JMAP_MAP_TRAILING)             \
    X(S_END, JMAP_MAP_TRAILING)

enum VSTATE : int32_t {
#define JMAP_VSTATE(state, problem) state,
    JMAP_VSTATE_LIST(JMAP_VSTATE)
#undef JMAP_VSTATE
};
static_assert(S_BEGIN == 0 && S_END == 29);

struct VSTATEINFO {
    const char* name;
    QVStatus problem;
};

inline constexpr VSTATEINFO kStates[] = {  // by VSTATE
#define JMAP_VSTATE(state, problem) {#state, problem},
    JMAP_VSTATE_LIST(JMAP_VSTATE)
#undef JMAP_VSTATE
};

// Events that a state may expect.  None expects null, a boolean or a number that is no integer.
enum class EVENT : uint8_t { ARRAY_START, ARRAY_END, OBJECT_START, OBJECT_END, INTEGER, STRING };

// Special values of `key` in a transition.
inline constexpr std::string_view kAnyText;
inline constexpr std::string_view kAnyOf4 = "????";  // any text of this length

struct TRANSITION {
    VSTATE state;
    EVENT event;
    std::string_view key;  // of a STRING: the text it must be
    VSTATE next;
    ACTION action;  // null: none
};

// The first matching row is taken.
inline constexpr TRANSITION kTransitions[] = {
    {S_BEGIN, EVENT::OBJECT_START, {}, S_WANT_DATASETS, nullptr},
    {S_WANT_DATASETS, EVENT::STRING, "DATASETS", S_WANT_DATASETS_OPEN, nullptr},
    {S_WANT_DATASETS, EVENT::STRING, kAnyText, S_WANT_DATASETS, unknownKey},
    {S_WANT_DATASETS_OPEN, EVENT::ARRAY_START, {}, S_IN_DATASETS, newUserMap},
    {S_IN_DATASETS, EVENT::OBJECT_START, {}, S_IN_A_DATASET, newTable},
    {S_IN_DATASETS, EVENT::ARRAY_END, {}, S_WANT_END, endTables},

    {S_IN_A_DATASET, EVENT::STRING, "DSNAME", S_WANT_DSNAMESTR, nullptr},
    {S_IN_A_DATASET, EVENT::STRING, "TABLEPATH", S_WANT_TABLEPATHSTR, nullptr},
    {S_IN_A_DATASET, EVENT::STRING, "VARIABLES", S_WANT_VARIABLES_OPEN, nullptr},
    {S_IN_A_DATASET, EVENT::STRING, kAnyText, S_IN_A_DATASET, unknownKey},
    {S_IN_A_DATASET, EVENT::OBJECT_END, {}, S_IN_DATASETS, endTable},
    {S_WANT_DSNAMESTR, EVENT::STRING, kAnyText, S_IN_A_DATASET, setDsName},
    {S_WANT_TABLEPATHSTR, EVENT::STRING, kAnyText, S_IN_A_DATASET, setTablePath},
    {S_WANT_VARIABLES_OPEN, EVENT::ARRAY_START, {}, S_IN_VARIABLES, nullptr},
    {S_IN_VARIABLES, EVENT::OBJECT_START, {}, S_IN_A_VARIABLE, newColumn},
    {S_IN_VARIABLES, EVENT::ARRAY_END, {}, S_IN_A_DATASET, nullptr},

    {S_IN_A_VARIABLE, EVENT::STRING, "NAME", S_WANT_NAMESTR, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "TYPE", S_WANT_TYPESTR, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "PATH", S_WANT_PATHSTR, nullptr},
    // Kept: an unknown key of four bytes is skipped, and a string after it is then read as a key:
    // {"NOTE":"NAME", ...} expects a name next, {"NOTE":"x"} is an unknown key.
    {S_IN_A_VARIABLE, EVENT::STRING, kAnyOf4, S_IN_A_VARIABLE, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "LENGTH", S_WANT_LENGTHNUM, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "CURRENT_LENGTH", S_WANT_CURRENTLENGTHNUM, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "FORMAT", S_WANT_FORMAT_OPEN, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "INFORMAT", S_WANT_INFORMAT_OPEN, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "LABEL", S_WANT_LABELSTR, nullptr},
    // Kept: the misspelt key is a synonym, since there are maps that have it.
    {S_IN_A_VARIABLE, EVENT::STRING, "LABLE", S_WANT_LABELSTR, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, "OPTIONS", S_WANT_OPTIONS_OPEN, nullptr},
    {S_IN_A_VARIABLE, EVENT::STRING, kAnyText, S_IN_A_VARIABLE, unknownKey},
    {S_IN_A_VARIABLE, EVENT::OBJECT_END, {}, S_IN_VARIABLES, endColumn},
    {S_WANT_NAMESTR, EVENT::STRING, kAnyText, S_IN_A_VARIABLE, setName},
    {S_WANT_TYPESTR, EVENT::STRING, kAnyText, S_IN_A_VARIABLE, setType},
    {S_WANT_PATHSTR, EVENT::STRING, kAnyText, S_IN_A_VARIABLE, setPath},
    {S_WANT_LENGTHNUM, EVENT::INTEGER, {}, S_IN_A_VARIABLE, setLength},
    // Information for people only.
    {S_WANT_CURRENTLENGTHNUM, EVENT::INTEGER, {}, S_IN_A_VARIABLE, nullptr},

    {S_WANT_FORMAT_OPEN, EVENT::ARRAY_START, {}, S_WANT_FORMAT0, nullptr},
    {S_WANT_FORMAT0, EVENT::STRING, kAnyText, S_WANT_FORMAT1, setFormat},
    {S_WANT_FORMAT1, EVENT::INTEGER, {}, S_WANT_FORMAT2, setFormatWidth},
    {S_WANT_FORMAT1, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},
    {S_WANT_FORMAT2, EVENT::INTEGER, {}, S_WANT_FORMAT_CLOSE, setFormatDec},
    {S_WANT_FORMAT2, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},
    {S_WANT_FORMAT_CLOSE, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},

    {S_WANT_INFORMAT_OPEN, EVENT::ARRAY_START, {}, S_WANT_INFORMAT0, nullptr},
    {S_WANT_INFORMAT0, EVENT::STRING, kAnyText, S_WANT_INFORMAT1, setInformat},
    {S_WANT_INFORMAT1, EVENT::INTEGER, {}, S_WANT_INFORMAT2, setInformatWidth},
    {S_WANT_INFORMAT1, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},
    {S_WANT_INFORMAT2, EVENT::INTEGER, {}, S_WANT_INFORMAT_CLOSE, setInformatDec},
    {S_WANT_INFORMAT2, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},
    {S_WANT_INFORMAT_CLOSE, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},

    {S_WANT_LABELSTR, EVENT::STRING, kAnyText, S_IN_A_VARIABLE, setLabel},
    {S_WANT_OPTIONS_OPEN, EVENT::ARRAY_START, {}, S_WANT_OPTIONSTR, nullptr},
    {S_WANT_OPTIONSTR, EVENT::STRING, kAnyText, S_WANT_OPTIONSTR, setOption},
    {S_WANT_OPTIONSTR, EVENT::ARRAY_END, {}, S_IN_A_VARIABLE, nullptr},
    {S_WANT_END, EVENT::OBJECT_END, {}, S_END, nullptr},
};

}  // namespace jmap
