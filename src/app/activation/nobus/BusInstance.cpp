// SPDX-License-Identifier: MIT
#include "app/activation/BusInstance.h"

class BusInstance::Bus
{
};

BusInstance::BusInstance() = default;

BusInstance::~BusInstance() = default;

bool BusInstance::isThere() const
{
    return false;
}

bool BusInstance::send(const InstanceRequest &) const
{
    return false;
}

bool BusInstance::hasActivationToken()
{
    return false;
}
