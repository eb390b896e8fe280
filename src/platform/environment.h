// The process's surroundings: where the component lies, the temporary folder, the clock, an interrupt.
#pragma once

#include "common/date.h"
#include "common/text.h"

namespace tav {

// The folder of the library or program file, with its separator at the end.
Text ComponentFolder();

// The folder that the environment variable "TEMP" names; empty when it is not set.
Text TempVariable();
// The user's own folder; empty when it is not known.
Text HomeFolder();
// Where reports go when no export folder is set: TEMP, else TMPDIR, else the system's temporary folder.
Text ReportFolder();

struct LocalTime {
    CivilDate date;
    ClockTime time;
};
LocalTime SystemClock();
// The system's, or the clock that tests have set.
LocalTime Now();
// Tests set the clock; nullptr gives the real one back.
void SetClock(LocalTime (*clock)());

// Today's day, without the time.
Date Today();

// While one lives, an interrupt from the keyboard (Ctrl-C) is remembered instead of ending the process; a
// second one ends it.
class InterruptWatch {
 public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    static bool Interrupted();
};

}  // namespace tav
