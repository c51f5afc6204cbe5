// SPDX-License-Identifier: MIT
#include "ui/CommandLog.h"

Q_LOGGING_CATEGORY(commandLog, "brindle.ui.commands")

void logCommand(Command command)
{
    qCDebug(commandLog) << "command" << static_cast<int>(command);
}
