// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// A variable of the environment as it was when this was made.
class EnvironmentVariable
{
public:
    /// \a name must outlive this object.
    explicit EnvironmentVariable(const char *name)
        : m_name(name)
        , m_value(qgetenv(name))
        , m_wasSet(qEnvironmentVariableIsSet(name))
    {
    }

    /// Sets it back, or takes it away when it wasn't there.
    void restore() const
    {
        if (m_wasSet)
            qputenv(m_name, m_value);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    QByteArray m_value;
    bool m_wasSet;
};
