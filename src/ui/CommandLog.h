// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"

#include <QLoggingCategory>

/// Which commands the user gave, one line each: "command 17".
Q_DECLARE_LOGGING_CATEGORY(lcCommands)

void logCommand(Command command);
