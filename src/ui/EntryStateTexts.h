// SPDX-License-Identifier: MIT
#pragma once

#include "shared/EntryState.h"

#include <QString>

/// How windows name the states of entries. A state without a text yields an empty one.
namespace EntryStateTexts
{

/// The value of the dynamic property "iconstate", by which the style sheet colours state bars.
QString iconState(EntryState state);

/// The name of \a state for the user; empty for no state.
QString toolTip(EntryState state);

} // namespace EntryStateTexts
