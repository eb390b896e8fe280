// Speaking to the user by windows.
#pragma once

namespace tav {

// From now on messages are boxes and an import shows its progress window. Without a toolkit or a screen: a
// Failure that says so, and everything stays as it was.
void UseWindows();

// The same where windows are welcome but not needed: false,
// and nothing is shown, when windows cannot be shown.
bool UseWindowsIfAny();

}  // namespace tav
