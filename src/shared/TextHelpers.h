// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Text helpers that every room shares.
namespace Global
{

/// Joins the lines of \a text with single blanks and cuts what is longer than \a maxLength UTF-16
/// code units, marking the cut with " ..."; a character of two units is kept or left out whole.
QString truncateWithEllipsis(QString text, int maxLength);

/// The same for a text that is shown on one line: the separators of lines and paragraphs, which the
/// editor keeps when they are pasted, are breaks, too.
QString oneLineExcerpt(QString text, int maxLength);

/// The one-line ownership notice with the year of the build. With \a html the copyright sign is the
/// HTML entity, otherwise the character U+00A9.
QString getCopyrightString(bool html);

} // namespace Global
