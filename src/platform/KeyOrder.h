// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PhysicalKey.h"

/// The order in which the meanings of a key press are tried, apart from any desktop.
namespace KeyOrder
{

/// The Qt keys that a press of \a physicalKey can mean, best first, each once; never empty.
/// \a toolkitKey is what the toolkit made of the press; \a altGr tells whether AltGr was held.
QList<int> keys(int toolkitKey, bool altGr, const PhysicalKey &physicalKey);

/// The Qt key of the unshifted symbol that a US keyboard has at \a code; 0 for none.
int usKey(quint32 code);

} // namespace KeyOrder
