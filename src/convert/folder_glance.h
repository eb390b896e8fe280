// What the next scan of a folder will find, without changing anything and without a message.
//
// A settled document costs a look at its file; of every other one the head is read. Whether such a
// document is cut off or drops text, and whether its entry will be readable, is known only when it has
// been converted.
#pragma once

#include <optional>

#include "common/text.h"
#include "convert/scan_account.h"

namespace tav {

// `acts_as_xml` as for CheckXml. Throws Failure when the folder or its catalogue cannot be read.
ScanAccount GlanceAtFolder(TextView folder, std::optional<bool> acts_as_xml = {});

}  // namespace tav
