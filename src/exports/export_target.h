// What both exports ask before and during their work.
#pragma once

#include "common/text.h"

namespace tav {

// The path from the root on, without separators at its end. What exists there is a Failure: it is not replaced.
Text NewTarget(TextView path);

// An interrupt that is watched for (platform/environment.h) is a Failure.
void StopIfInterrupted();

}  // namespace tav
