// The calendar library in the one setting that this project uses: English names from its own
// tables, no locale of the system.  Every file must include it from here, since the setting changes
// the bodies of its inline routines.
#pragma once

#define ONLY_C_LOCALE 1
#include <date/date.h>
#include <date/iso_week.h>
