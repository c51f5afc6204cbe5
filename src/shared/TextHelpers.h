// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Text helpers that every room shares.
namespace Global
{

/// Joins the lines of \a text with single blanks and cuts what is longer than \a maxLength
/// characters, marking the cut with " ...".
QString truncateWithEllipsis(QString text, int maxLength);

/// The one-line ownership notice with the year of the build. With \a html the copyright sign is the
/// HTML entity, otherwise the character U+00A9.
QString getCopyrightString(bool html);

} // namespace Global
