/* The one list of status codes.
 *
 * Every operation returns a QVStatus.  QV_OK is 0; all others are non-zero and, read as signed
 * numbers, negative.  Compare with QV_OK, never with "< 0": QV_EOF is an answer, not a failure.
 *
 *   QV_       host statuses, their values fixed
 *   QV_JSON_  mistakes in the text of a JSON document, given by the module "qvejson"
 *   QV_IO_    file trouble, given by the module "qvioe"
 *   QV_FMT_   formats and informats, given by the module "qvefmt"
 *   JMAP_     the engine's own codes
 *   JMAP_MAP_ mistakes in a user's map
 *
 * To add a code: one row here, one in the table of docs/FORMATS.md (a test compares the two).
 */
#ifndef QVSTATUS_H
#define QVSTATUS_H

#include "qvtypes.h"

/* X(name, value, sentence).  A sentence completes "the operation failed: ...". */
#define QV_STATUS_LIST(X)                                                                        \
    X(QV_OK, 0, "success")                                                                       \
    X(QV_NOMEM, 0x803FC002u, "memory could not be obtained")                                     \
    X(QV_BADPARMS, 0x803FC003u, "the option record is missing or invalid")                       \
    X(QV_EOF, 0x803FC064u, "end of data")                                                        \
    X(QV_NOTNUM, 0x803FE810u, "the text is not a number")                                        \
    X(QV_NEEDMORE, 0x85FFC80Du, "the parser needs more input")                                   \
    X(QV_INTERNAL, 0x803FC0F0u, "the host met an error of its own")                              \
    X(QV_UNSUPPORTED, 0x803FC0F1u, "the host does not offer this")                               \
    X(QV_UNMAPPABLE, 0x803FC0F2u, "a character does not exist in the target encoding")           \
    X(QV_TRUNCATED, 0x803FC0F3u, "the result does not fit in the buffer")                        \
    X(QV_LIMIT_PATHS, 0x803FC0F4u, "the document has too many distinct paths")                   \
    X(QV_LIMIT_DISK, 0x803FC0F5u, "the records would fill the disk")                             \
    X(QV_LIMIT_MEMORY, 0x803FC0F6u, "more memory is needed than may be used")                    \
    X(QV_STOPPED, 0x803FC0F7u, "the work was stopped")                                           \
    X(QV_JSON_VALUE, 0x85FFC901u, "a value was expected")                                        \
    X(QV_JSON_NAME, 0x85FFC902u, "a member name in double quotes was expected")                  \
    X(QV_JSON_COLON, 0x85FFC903u, "':' was expected after the member name")                      \
    X(QV_JSON_OBJECT_NEXT, 0x85FFC904u, "',' or '}' was expected after the member")              \
    X(QV_JSON_ARRAY_NEXT, 0x85FFC905u, "',' or ']' was expected after the element")              \
    X(QV_JSON_LITERAL, 0x85FFC906u, "not a JSON word: only true, false and null stand unquoted") \
    X(QV_JSON_LEADING_ZERO, 0x85FFC907u, "a number must not begin with a superfluous zero")      \
    X(QV_JSON_DIGIT, 0x85FFC908u, "a digit was expected in the number")                          \
    X(QV_JSON_CONTROL, 0x85FFC909u, "a control character in a string must be escaped")           \
    X(QV_JSON_ESCAPE, 0x85FFC90Au, "unknown escape sequence in a string")                        \
    X(QV_JSON_HEX, 0x85FFC90Bu, "\\u must be followed by four hexadecimal digits")               \
    X(QV_JSON_SURROGATE, 0x85FFC90Cu, "a surrogate escape without its other half")               \
    X(QV_JSON_UTF8, 0x85FFC90Du, "invalid UTF-8")                                                \
    X(QV_JSON_UNMAPPABLE, 0x85FFC90Eu, "an escaped character does not exist in the encoding")    \
    X(QV_JSON_TRAILING, 0x85FFC90Fu, "only white space may follow the document")                 \
    X(QV_JSON_DEPTH, 0x85FFC910u, "the document is nested deeper than the limit")                \
    X(QV_JSON_BOM, 0x85FFC911u, "a byte order mark is not part of JSON")                         \
    X(QV_JSON_COMMENT, 0x85FFC912u, "comments are not part of JSON")                             \
    X(QV_JSON_LINE_REST, 0x85FFC913u, "only white space may follow the value in its line")       \
    X(QV_JSON_LINE_END, 0x85FFC914u, "the value does not end in its line")                       \
    X(QV_IO_NOTFOUND, 0x80BFC801u, "the file does not exist")                                    \
    X(QV_IO_REFUSED, 0x80BFC802u, "the file is not an empty regular file of this user")          \
    X(QV_IO_OPEN, 0x80BFC803u, "the file could not be opened")                                   \
    X(QV_IO_WRITE, 0x80BFC804u, "the file could not be written")                                 \
    X(QV_IO_FULL, 0x80BFC805u, "the disk is full")                                               \
    X(QV_IO_READ, 0x80BFC806u, "the file could not be read")                                     \
    X(QV_IO_SHORT, 0x80BFC807u, "the file is shorter than what was written to it")               \
    X(QV_IO_CLOSE, 0x80BFC808u, "the file could not be closed")                                  \
    X(QV_IO_CHANGED, 0x80BFC809u, "the file no longer holds what was written to it")             \
    X(QV_IO_DAMAGED, 0x80BFC80Au, "the compressed data are damaged")                             \
    X(QV_FMT_NAME, 0x82FFC801u, "no format or informat of that name")                            \
    X(QV_FMT_TYPE, 0x82FFC802u, "the format or informat is not for columns of this type")        \
    X(QV_FMT_PATTERN, 0x82FFC803u, "the pattern has an unknown letter or lacks a part")          \
    X(QV_FMT_WIDTH, 0x82FFC804u, "the width or the decimals are not usable here")                \
    X(QV_FMT_VALUE, 0x82FFC805u, "the value does not suit the format or informat")               \
    X(QV_FMT_RANGE, 0x82FFC806u, "the value is out of range")                                    \
    X(QV_FMT_LONG, 0x82FFC807u,                                                                  \
      "the name or pattern is longer than the 32 bytes that a map keeps")                        \
    X(JMAP_NOTABLE, -10, "no table of that name")                                                \
    X(JMAP_PARSE, -11, "the text could not be parsed")                                           \
    X(JMAP_INCOMPLETE, -12, "the document ends before a complete object or array")               \
    X(JMAP_MAP_DATASETS, -13, "a map is an object whose one member is DATASETS")                 \
    X(JMAP_MAP_TABLEKEY, -14, "unknown key in a table: it has DSNAME, TABLEPATH and VARIABLES")  \
    X(JMAP_MAP_COLUMNKEY, -15,                                                                   \
      "unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, "               \
      "FORMAT, INFORMAT, LABEL and OPTIONS")                                                     \
    X(JMAP_MAP_TYPE, -16, "TYPE must be NUMERIC, CHARACTER or ORDINAL")                          \
    X(JMAP_MAP_ARRAY, -17,                                                                       \
      "'[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays")          \
    X(JMAP_MAP_ELEMENTS, -18,                                                                    \
      "']' was expected: FORMAT and INFORMAT have at most name, width and decimals")             \
    X(JMAP_MAP_OBJECT, -19,                                                                      \
      "'{' was expected: a map, each of its tables and each column is an object")                \
    X(JMAP_MAP_TRAILING, -20, "'}' was expected: nothing may follow DATASETS in a map")          \
    X(JMAP_MAP_STRING, -21, "a text in double quotes was expected")                              \
    X(JMAP_MAP_INTEGER, -22, "an integer was expected: a number without fraction and exponent")  \
    X(JMAP_MAP_OPTION, -23, "an option must be RETAIN or NORETAIN")                              \
    X(JMAP_MAP_EMPTY, -24, "DATASETS is empty: a map must have at least one table")              \
    X(JMAP_MAP_NONAME, -25, "the table has no name: its DSNAME must be there and not be empty")  \
    X(JMAP_MAP_NOPATH, -26, "the table has no TABLEPATH, which says where its rows are")         \
    X(JMAP_MAP_NOMEM, 0x80000000u, "memory for a table of the map could not be obtained")

#ifdef __cplusplus
#define QV_STATUS_CONSTANT(name, value, sentence) \
    inline constexpr QVStatus name = static_cast<QVStatus>(value);
QV_STATUS_LIST(QV_STATUS_CONSTANT)
#else
#define QV_STATUS_CONSTANT(name, value, sentence) name = (QVStatus)(value),
enum { QV_STATUS_LIST(QV_STATUS_CONSTANT) QV_STATUS_END_ = 1 };
#endif
#undef QV_STATUS_CONSTANT

/* The name of a status as written above, or "unknown".  The text is static. */
static inline const char* qvStatusName(QVStatus status) {
    switch (status) {
#define QV_STATUS_CASE(name, value, sentence) \
    case name:                                \
        return #name;
        QV_STATUS_LIST(QV_STATUS_CASE)
#undef QV_STATUS_CASE
        default:
            return "unknown";
    }
}

/* The sentence of a status, or "unknown status".  The text is static. */
static inline const char* qvStatusText(QVStatus status) {
    switch (status) {
#define QV_STATUS_CASE(name, value, sentence) \
    case name:                                \
        return sentence;
        QV_STATUS_LIST(QV_STATUS_CASE)
#undef QV_STATUS_CASE
        default:
            return "unknown status";
    }
}

#endif
