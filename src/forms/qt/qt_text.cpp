#include "forms/qt/qt_text.h"

#include <QTextDocument>

namespace tav {

QString WithMnemonic(TextView text, char16_t mnemonic) {
    const QString shown = ToQt(text);
    const qsizetype at = mnemonic != 0 ? shown.indexOf(QChar(mnemonic), 0, Qt::CaseInsensitive) : -1;
    QString out;
    for (qsizetype i = 0; i < shown.size(); ++i) {
        if (i == at || shown[i] == u'&') out += u'&';
        out += shown[i];
    }
    return out;
}

QString PlainToolTip(TextView text) {
    const QString shown = ToQt(text);
    if (!Qt::mightBeRichText(shown)) return shown;
    return QStringLiteral("<p style=\"white-space: pre\">%1</p>").arg(shown.toHtmlEscaped());
}

}  // namespace tav
