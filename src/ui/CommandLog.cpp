// SPDX-License-Identifier: MIT
#include "ui/CommandLog.h"

Q_LOGGING_CATEGORY(lcCommands, "brindle.ui.commands")

void logCommand(Command command)
{
    qCDebug(lcCommands) << "command" << static_cast<int>(command);
}
