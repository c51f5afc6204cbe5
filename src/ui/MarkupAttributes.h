// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MarkupReader.h"

#include <QString>

/// The attributes of a page from the network, judged one by one.
namespace MarkupAttributes
{

/// \a text with its numeric character references replaced, so that none can hide what it says.
QString decoded(const QString &text);

/// Whether \a attribute stays within the bounds of AnnouncementPage: its numbers are small, if
/// they matter to the layout, and no address in it is a "data:" one.
bool isWithinBounds(const MarkupReader::Attribute &attribute);

/// The attribute as it may be written into a page, with a blank before it; empty when it is
/// none of those that are known to be harmless.
QString written(const QString &element, const MarkupReader::Attribute &attribute);

} // namespace MarkupAttributes
