// The source files that the database holds a document of.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "common/name_hash.h"
#include "common/text.h"
#include "db/connection.h"
#include "load/account.h"
#include "load/taxpayer_choice.h"

namespace tav {

// Their names: a file is known without regard to letter case.
using KnownFiles = std::unordered_set<Text, NameHash, SameName>;

KnownFiles ReadKnownFiles(Connection& connection);

// What the database holds of a file.
struct HeldOfFile {
    bool current = false;     // an act of the taxpayer, or a statement that is the current one of its series
    bool superseded = false;  // a statement that is not
    std::vector<Remark> foreign;         // of a file that has documents of others only: whose
    std::vector<std::int16_t> replaced;  // the numbers of these superseded statements
};
// By the name, without regard to letter case.
using HeldFiles = std::unordered_map<Text, HeldOfFile, NameHash, SameName>;

HeldFiles ReadHeldFiles(Connection& connection, const TaxpayerChoice& taxpayer);

}  // namespace tav
