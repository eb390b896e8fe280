// The settings store with the shape of the registry: hives, key paths, typed values.
//
// On Windows it is the registry. The host is a 32-bit program: its half of the machine's hive is read before
// the 64-bit one, and written. Where TAV_SETTINGS names a key of the current user, both hives are looked for
// below that key, so that tests and trial runs leave the user's settings alone.
//
// On Linux it is one readable text file: the one that TAV_SETTINGS names,
// else tav/settings under XDG_CONFIG_HOME (else ~/.config). A section per
// key, a line per value; the file is replaced whole at every write:
//
//     [HKEY_CURRENT_USER\SOFTWARE\VELSKAR\PLX\TAV_OperationImport]
//     ImportPath = expand "/home/anna/import"
//     SpAct = dword 1
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "common/text.h"
#include "common/value.h"

namespace tav {

enum class Hive { CurrentUser, LocalMachine };

// Registry value types by their numbers.
enum class RegistryType : std::uint32_t {
    String = 1,
    ExpandString = 2,
    Binary = 3,
    DoubleWord = 4,
    MultiString = 7
};

// Null, text (types 1 and 2), a number (type 4), or the raw data (types 3 and 7).
using RegistryValue = std::variant<Null, Text, std::uint32_t, Binary>;

// Sets `slot` to Null, then to the value when it can be read; true only then. A separator at the end of the
// key path is ignored; key paths and names are the same in every letter case.
bool ReadRegistry(Hive hive, TextView key, TextView name, RegistryValue& slot);

// Creates the key when missing and writes the value; false when it could not be written.
bool WriteRegistry(Hive hive, TextView key, TextView name, const RegistryValue& value, RegistryType type);

// Removes the value wherever ReadRegistry would find it; one that is absent is no failure. False when it
// could not be removed.
bool RemoveFromRegistry(Hive hive, TextView key, TextView name);

// The operating system's result of the last of these, 0 for success; and what refused it, in words.
int LastRegistryResult();
inline constexpr int kRegistryAbsent = 2;  // there is no such key or value; both systems have that number
Text LastRegistryFailure();

}  // namespace tav
