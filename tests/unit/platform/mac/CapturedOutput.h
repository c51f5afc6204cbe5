// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QTemporaryFile>
#include <QtGlobal>
#include <cstdio>
#include <unistd.h>

/// Catches what the process writes to standard output, from construction to text().
class CapturedOutput
{
    Q_DISABLE_COPY_MOVE(CapturedOutput)

public:
    CapturedOutput()
    {
        std::fflush(stdout);
        if (!m_file.open())
            qFatal("no temporary file");
        m_standardOutput = dup(STDOUT_FILENO);
        dup2(m_file.handle(), STDOUT_FILENO);
    }

    ~CapturedOutput() { restore(); }

    /// Everything written until now; later output goes where it used to go. What the writer left
    /// unflushed is not in it.
    QByteArray text()
    {
        m_file.seek(0);
        const QByteArray written = m_file.readAll();
        restore();
        return written;
    }

private:
    void restore()
    {
        if (m_standardOutput < 0)
            return;
        std::fflush(stdout);
        dup2(m_standardOutput, STDOUT_FILENO);
        close(m_standardOutput);
        m_standardOutput = -1;
    }

    QTemporaryFile m_file;
    int m_standardOutput = -1;
};
