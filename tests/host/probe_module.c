/* A module in a shared object, for the loader's tests: it needs host interface 7.1.PROBE_PATCH and
 * writes a note when it is released. */
#include "qvehost.h"

#include <stdlib.h>

static void note(QVJnlh jnl, const QVChar* fmt, QVStrSize fmtLen, ...) {
    va_list args;
    va_start(args, fmtLen);
    jnl->write(jnl, QV_NOTE, fmt, fmtLen, args);
    va_end(args);
}

static QVStatus needs(QVExtensionh ext, size_t* a, size_t* b, size_t* c) {
    (void)ext;
    *a = 7;
    *b = 1;
    *c = PROBE_PATCH;
    return QV_OK;
}

static QVStatus release(QVExtensionh ext) {
    note(ext->hndl->jnl, U"probe released", 14);
    free(ext);
    return QV_OK;
}

__attribute__((visibility("default"))) QVExtensionh PROBE_NAME(QVHndlp hndl, QVJnlh jnl) {
    (void)jnl;
    QVExtensionh probe = calloc(1, sizeof(QVExtension));
    if (probe != NULL) {
        probe->getReqVersion = needs;
        probe->realDestroy = release;
        probe->hndl = hndl;
    }
    return probe;
}
