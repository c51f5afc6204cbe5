// SPDX-License-Identifier: MIT
#pragma once

#include "store/FileWait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>

/// A wait that tells the user after a second what is waited for, and keeps the windows painted.
class WaitNotice : public FileWait
{
    Q_DECLARE_TR_FUNCTIONS(WaitNotice)

public:
    /// A shorter wait isn't worth a word.
    static constexpr int silentMs = 1000;

    explicit WaitNotice(const QString &fileName);
    void pause() override;

    /// Whether a wait is on the screen: the program is then in the middle of something.
    static bool isShown();

private:
    QElapsedTimer m_waited;
    QLabel m_notice;
};
