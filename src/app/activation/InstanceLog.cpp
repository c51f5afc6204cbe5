// SPDX-License-Identifier: MIT
#include "app/activation/InstanceLog.h"

Q_LOGGING_CATEGORY(instanceLog, "brindle.activation.instance")
