// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QLoggingCategory>
#include <QSettings>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

void registerReadingBenchmarks();
void registerChangingBenchmarks();
void registerModelBenchmarks();
void registerWindowBenchmarks();

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brindle.*=false"));
    // The user's own settings stay out of it.
    const QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QCoreApplication::setOrganizationName(QStringLiteral("Osterlane"));
    QCoreApplication::setApplicationName(QStringLiteral("Brindle"));

    registerReadingBenchmarks();
    registerChangingBenchmarks();
    registerModelBenchmarks();
    registerWindowBenchmarks();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
