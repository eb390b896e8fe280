// The account of a folder as it is: what an import would find, without importing or writing anything.
#pragma once

#include <optional>

#include "load/account.h"

namespace tav {

// `inn` and `kpp` as for LoadFromXml; an empty INN means everybody's documents. `acts_as_xml` as for CheckXml. What
// cannot be read (the folder's catalogue, the database) is thrown as a Failure.
ImportAccount AccountOfFolder(TextView folder, TextView database, TextView inn, TextView kpp,
                              std::optional<bool> acts_as_xml = {});

}  // namespace tav
