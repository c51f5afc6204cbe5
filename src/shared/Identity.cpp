// SPDX-License-Identifier: MIT
#include "shared/Identity.h"

#include "shared/Maker.h"

#include <QCoreApplication>

void setApplicationIdentity()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Osterlane"));
    QCoreApplication::setOrganizationDomain(QString::fromLatin1(Maker::domain));
    QCoreApplication::setApplicationName(QStringLiteral("Brindle"));
}
