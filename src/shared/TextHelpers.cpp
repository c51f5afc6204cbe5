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
    const bool cutsThroughPair = maxLength > 0 && text.at(maxLength - 1).isHighSurrogate()
        && text.at(maxLength).isLowSurrogate();
    return text.left(cutsThroughPair ? maxLength - 1 : maxLength) + u" ..."_s;
}

QString Global::oneLineExcerpt(QString text, int maxLength)
{
    text.replace(QChar::LineSeparator, u'\n').replace(QChar::ParagraphSeparator, u'\n');
    return truncateWithEllipsis(text, maxLength);
}

QString Global::getCopyrightString(bool html)
{
    // The compiler's build date has the form "Nov 21 2026".
    const QString year = QString::fromLatin1(__DATE__).right(4);
    const QString sign = html ? u"&copy;"_s : QString(QChar(0x00A9));
    return u"Copyright "_s + sign + u' ' + year + u" Osterlane. All rights reserved."_s;
}
