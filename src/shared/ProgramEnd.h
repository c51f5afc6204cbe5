// SPDX-License-Identifier: MIT
#pragma once

/// Ends the event loop with success, whatever windows are open. QCoreApplication::quit() would ask
/// the windows first, and the main window refuses to close.
void endProgram();
