// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

/// Gives a test its own empty settings folder and files folder; both vanish with it. Make one at
/// the start of each test function, before anything that reads settings.
class TestSettings
{
public:
    TestSettings()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("Osterlane"));
        QCoreApplication::setApplicationName(QStringLiteral("Brindle"));
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope,
                           m_folder.filePath(QStringLiteral("system")));
        QSettings().clear();
    }

    /// Full path of \a name inside the test's own folder.
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};
