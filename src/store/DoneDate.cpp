// SPDX-License-Identifier: MIT
#include "store/DoneDate.h"

#include <QMetaType>

using namespace Qt::StringLiterals;

QVariant DoneDate::toStored(const QDateTime &date)
{
    if (!date.isValid())
        return QVariant(QMetaType::fromType<QString>());
    return date.toUTC().toString(u"yyyy-MM-ddTHH:mm:ss"_s);
}

QDateTime DoneDate::fromStored(const QVariant &value)
{
    if (value.isNull())
        return QDateTime();
    // Date and time are read apart: as one text the clock of the user's own time zone would be
    // applied, and a time that daylight saving skips there would come out an hour off.
    QString text = value.toString();
    if (text.endsWith(u'Z'))
        text.chop(1);
    const QDate day = QDate::fromString(text.left(10), Qt::ISODate);
    const QTime time = QTime::fromString(text.mid(11), Qt::ISODateWithMs);
    if (!day.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(day, time, Qt::UTC);
}
