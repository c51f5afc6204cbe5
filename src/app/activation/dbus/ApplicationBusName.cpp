// SPDX-License-Identifier: MIT
#include "app/activation/dbus/ApplicationBusName.h"

#include "app/activation/InstanceEndpoint.h"

QString ApplicationBusName::service()
{
    return InstanceEndpoint::name();
}

QString ApplicationBusName::objectPath()
{
    // A domain may hold a hyphen, a path may not.
    return u'/' + service().replace(u'.', u'/').replace(u'-', u'_');
}
