/* Start and stop the portable host: the bundled implementation of qvehost.h.
 *
 * A program starts a host, loads the engine through it, works, and stops it:
 *
 *     QVHndlp host;
 *     QVPortableOptions options = {sizeof options};
 *     if (qvPortableStart(&options, &host) != QV_OK) { ... }
 *     UserJMAP_S* engine = (UserJMAP_S*)host->loadExtension(host, U"qvejmap", 7, NULL);
 *     ...
 *     engine->exth.generic.destroy(&engine->exth.generic);
 *     qvPortableStop(host);
 *
 * The host touches neither locale, signals, exit hooks nor standard output.  One host is the global
 * one at a time: a start makes it so, its stop restores the one before.  Start and stop are not
 * to be called while another thread uses a host; all else follows qvejmap.h.
 *
 * Tested by tests/host/kernel_test.cpp
 */
#ifndef QVPORTABLE_H
#define QVPORTABLE_H

#include "qvehost.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct QVPortableOptions {
    uint64_t structSize;     /* sizeof(QVPortableOptions) */
    const char* modulePath;  /* directories with modules, ":" between them; null: none */
    const char* journalFile; /* file that notes are appended to, a line each; null: see below */
    /* Takes each note, without line end; used when set.  Its text is UTF-8, but what it shows of a
     * document stays in the document's encoding, control characters included.  With neither it nor
     * a file, notes go to standard error.  Lines there and in the file have control characters
     * escaped. */
    void (*journalCallback)(void* arg, const char* note, size_t noteLen);
    void* journalArg;
    uint64_t memoryBudget; /* bytes that the process may hold, in pools and elsewhere, before
                              qvmrlmem gives 0; 0: no budget */
    uint64_t maxDepth;     /* nesting limit of the JSON parser; 0: none */
} QVPortableOptions;

/* Starts a host and makes it the global one.  QV_BADPARMS for a wrong structSize, QV_IO_OPEN for a
 * journal file that cannot be opened, QV_NOMEM. */
QV_EXPORT QVStatus qvPortableStart(const QVPortableOptions* options, QVHndlp* host);

/* Ends what is still open (in reverse order of its making), then the host.  Every handle is invalid
 * afterwards. */
QV_EXPORT QVStatus qvPortableStop(QVHndlp host);

/* Adds a built-in module, found before any shared object of that name and before a built-in one
 * added earlier.  The name is copied. */
QV_EXPORT QVStatus qvPortableRegister(QVHndlp host, const char* name, QVEntry entry);

/* Makes `host` (null allowed) the global handle and returns the one before.  For a program that
 * brings a host of its own, and for tests that stand between the engine and the host. */
QV_EXPORT QVHndlp qvPortableInstall(QVHndlp host);

/* Changes the memory budget of a running host. */
QV_EXPORT void qvPortableSetBudget(QVHndlp host, uint64_t bytes);

/* Bytes that the process holds, in pools and elsewhere, as a memory budget counts them. */
QV_EXPORT uint64_t qvPortableHeld(QVHndlp host);

/* A journal that belongs to no host, for the notes of one document: each goes to the callback, as
 * to `journalCallback`.  It ends with its `destroy`.  QV_NOMEM. */
QV_EXPORT QVStatus qvPortableJournal(void (*callback)(void* arg, const char* note, size_t noteLen),
                                     void* arg, QVJnlh* journal);

/* What the pools of a host hold and did. */
typedef struct QVPortableCounts {
    uint64_t poolsAlive;
    uint64_t bytesInUse; /* memory held from the system for pools and trackers */
    uint64_t bytesPeak;
    uint64_t allocations; /* successful calls of allocate and reallocate, ever */
} QVPortableCounts;
QV_EXPORT void qvPortableCounts(QVHndlp host, QVPortableCounts* counts);

/* From now on the n-th (1 is the next) pool allocation, reallocation, pool or tracker creation
 * fails, once or, with `always`, from then on.  0 ends it. */
QV_EXPORT void qvPortableFailAllocation(QVHndlp host, uint64_t n, QVBoolean always);

/* Calls `visit` for every object that is still alive, oldest first: its kind ("pool", "module",
 * "tracker", "file", "parser", "writer", "transcoder", "strings") and its name, cut to 63 bytes.
 * `visit` must neither make nor end objects. */
QV_EXPORT void qvPortableLeftovers(QVHndlp host,
                                   void (*visit)(void* arg, const char* kind, const char* name),
                                   void* arg);

#ifdef __cplusplus
}
#endif

#endif
