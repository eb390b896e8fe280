// Texts as rows store them: UTF-16LE, or compressed.
//
// A compressed text starts with FF FE. One-byte mode comes first: a byte is a character U+0001 to U+00FF. A
// zero byte, which is no character, switches to two-byte mode (UTF-16LE) and back. A plain text that begins
// with U+FEFF would be taken for a compressed one, so it is never stored.
#pragma once

#include <optional>
#include <string>

#include "common/text.h"
#include "jet/file/format.h"

namespace tav::jet {

// The text of stored bytes, whichever form they have. No value when they end in the middle of a character.
std::optional<Text> DecodeText(const std::uint8_t* bytes, std::size_t size);

// Appends a text as the database engine stores it. It is compressed when that is allowed, the text has three
// characters or more, none of them with a zero low byte, and it does not become longer. A text that begins
// with U+FEFF is compressed in any case; false when it cannot be.
bool AppendText(std::string& out, TextView text, bool compress);

}  // namespace tav::jet
