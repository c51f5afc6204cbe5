// SPDX-License-Identifier: MIT
#include "shared/TextHelpers.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

QString Global::truncateWithEllipsis(QString text, int maxLength)
{
    static const QRegularExpression lineBreaks(u"[\\n\\r]+"_s);
    text.replace(lineBreaks, u" "_s);
    if (text.size() <= maxLength)
        return text;
    return text.left(maxLength) + u" ..."_s;
}

QString Global::getCopyrightString(bool html)
{
    // The compiler's build date has the form "Nov 21 2026".
    const QString year = QString::fromLatin1(__DATE__).right(4);
    const QString sign = html ? u"&copy;"_s : QString(QChar(0x00A9));
    return u"Copyright "_s + sign + u' ' + year + u" Osterlane. All rights reserved."_s;
}
