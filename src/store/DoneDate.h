// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QVariant>

/// The form of a done date in a data file: the text yyyy-MM-ddTHH:mm:ss, UTC without a zone suffix,
/// which sorts as it should beside the dates that older files hold.
namespace DoneDate
{

/// The value to bind; SQL NULL for an invalid date.
QVariant toStored(const QDateTime &date);

/// Reads that form and also one with milliseconds or a "Z"; the result is UTC, null when there is
/// no date.
QDateTime fromStored(const QVariant &value);

} // namespace DoneDate
