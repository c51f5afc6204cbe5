// SPDX-License-Identifier: MIT
#include "shared/ProgramEnd.h"

#include <QCoreApplication>

void endProgram()
{
    QCoreApplication::exit(0);
}
