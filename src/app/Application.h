// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>

/// The application object and last line of defence against file errors.
class Application : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    /// Delivers \a event; a DiskStore::FileException that escapes from a handler ends here, since
    /// the store has already reported it. \return false then.
    bool notify(QObject *receiver, QEvent *event) override;
};
