// SPDX-License-Identifier: MIT
#include "app/activation/DesktopApplication.h"

class DesktopApplication::Bus
{
};

DesktopApplication::DesktopApplication() = default;

DesktopApplication::~DesktopApplication() = default;

bool DesktopApplication::serve()
{
    return false;
}
