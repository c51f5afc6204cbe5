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

BusInstance::Answer BusInstance::send(const InstanceRequest &) const
{
    return Answer::Refused;
}

bool BusInstance::hasActivationToken()
{
    return false;
}
