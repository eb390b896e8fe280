// The account of an import as a person and as a program read it.
#pragma once

#include "load/account.h"

namespace tav::cli {

// The counts, one a line; below those that need a person the names and reasons; at the end one sentence.
void PrintAccount(const ImportAccount& account);

// One object:
//
//   {"sentence": "...", "imported": true, "complete": true, "documents": 3, "rows": 40, "moved": 0,
//    "counts": {"loaded": 12, ...}, "notices": ["..."],
//    "files": [{"name": "1.rtf", "now": true, "remarks": [{"finding": "loaded"}]}, ...]}
//
// A remark has "reason", "inn" and "kpp" where they are known. "counts" has every finding, those of which
// there are none with 0.
void PrintAccountAsJson(const ImportAccount& account);

}  // namespace tav::cli
