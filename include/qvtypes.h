/* Scalar types of the C boundary, shared by the engine, its host and every caller.
 *
 * All types have a fixed width, so that a structure made of them has one layout for every compiler
 * of the platform.  Compiles as C11 and as C++20.
 *
 * Tested by tests/abi/layout_test.c
 */
#ifndef QVTYPES_H
#define QVTYPES_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

/* On what a shared library or a program must show to the modules it loads. */
#if defined(__GNUC__)
#define QV_EXPORT __attribute__((visibility("default")))
#else
#define QV_EXPORT
#endif

typedef int32_t QVStatus;  /* 0 is success; the codes are listed in qvstatus.h */
typedef int64_t QVStrSize; /* a length in bytes (or 4-byte characters), never negative in use */
typedef void* QVMemPtr;    /* untyped memory, or an object the caller does not look into */
typedef uint8_t QVBoolean; /* 0 is false, everything else is true */
typedef char32_t QVChar;   /* a host character: one Unicode code point */
typedef int32_t QVCEI;     /* id of a character encoding, greater than 0 */

#endif
