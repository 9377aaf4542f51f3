/* A module in a shared object, for the loader's tests: it needs host interface 7.1.PROBE_PATCH and
 * writes a note when it is released. */
#include "qvehost.h"

#include <stdlib.h>

static void note(QVJnlh jnl, ...) {
    va_list args;
    va_start(args, jnl);
    jnl->write(jnl, QV_NOTE, U"probe released", 14, args);
    va_end(args);
}

static QVStatus needs(QVExtensionh ext, size_t* a, size_t* b, size_t* c) {
    *a = 7;
    *b = 1;
    *c = PROBE_PATCH;
    return ext == NULL ? QV_BADPARMS : QV_OK;
}

static QVStatus release(QVExtensionh ext) {
    note(ext->hndl->jnl);
    free(ext);
    return QV_OK;
}

__attribute__((visibility("default"))) QVExtensionh PROBE_NAME(QVHndlp hndl, QVJnlh jnl) {
    QVExtensionh probe = jnl == NULL ? NULL : malloc(sizeof *probe);
    if (probe != NULL) {
        *probe = (QVExtension){.getReqVersion = needs, .realDestroy = release, .hndl = hndl};
    }
    return probe;
}
