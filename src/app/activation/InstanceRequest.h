// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

/// What one copy of the program, or the desktop, asks of the running one.
struct InstanceRequest {
    enum class Kind { Activate, Toggle, Open, Terminate };

    /// To come forward with these files open, which may be named from the working directory; just
    /// to come forward when there are none.
    static InstanceRequest toOpen(const QStringList &files);

    Kind kind = Kind::Activate;
    QStringList files; ///< Full paths; for Open.
    QByteArray token; ///< The desktop's proof of the user's action; empty when there is none.
};
