// Text at the border of Qt: the same UTF-16 code units on both sides, lone surrogates and byte order marks
// included, which QString::fromUtf16 would not promise.
#pragma once

#include <QString>

#include "common/text.h"

namespace tav {

inline QString ToQt(TextView text) {
    return QStringView(text.data(), static_cast<qsizetype>(text.size())).toString();
}
inline Text FromQt(const QString& text) {
    return text.toStdU16String();
}

// A text for a place where a single "&" means a mnemonic: shown as it is, with the first `mnemonic` in it,
// when there is one, as the mnemonic.
QString WithMnemonic(TextView text, char16_t mnemonic);

// A text for a tool-tip, which has no switch against mark-up: shown as it is.
QString PlainToolTip(TextView text);

}  // namespace tav
