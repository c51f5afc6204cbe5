// SPDX-License-Identifier: MIT
#include "app/activation/InstanceRequest.h"

#include <QFileInfo>

InstanceRequest InstanceRequest::toOpen(const QStringList &files)
{
    InstanceRequest request{files.isEmpty() ? Kind::Activate : Kind::Open, {}, {}};
    for (const QString &file : files)
        request.files.append(QFileInfo(file).absoluteFilePath());
    return request;
}
