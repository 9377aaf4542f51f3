// Passing statuses on.
//
// Tested by every test of a failing call.
#pragma once

#include "qvstatus.h"

// Returns the status of `expr` from the calling routine unless it is QV_OK.
#define QV_TRY(expr)                                           \
    do {                                                       \
        if (const QVStatus qvTry_ = (expr); qvTry_ != QV_OK) { \
            return qvTry_;                                     \
        }                                                      \
    } while (false)
