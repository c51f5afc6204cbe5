// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// What the platform refused or could not do; the user is not bothered with it.
Q_DECLARE_LOGGING_CATEGORY(platformLog)
