// SPDX-License-Identifier: MIT
#include "app/CommandLine.h"

#include "shared/Version.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <string_view>

namespace
{
void describe(QCommandLineParser &parser)
{
    QCoreApplication::setApplicationName(QStringLiteral("Brindle"));
    QCoreApplication::setApplicationVersion(Version::text());
    parser.setApplicationDescription(
        QCoreApplication::translate("CommandLine", "A keyboard-driven task tracker."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QCoreApplication::translate("CommandLine", "Data files to open beside the known ones."),
        QStringLiteral("[FILE…]"));
}

bool asksForInformation(std::string_view argument)
{
    return argument == "--help" || argument == "-h" || argument == "--help-all"
        || argument == "--version" || argument == "-v";
}
} // namespace

void CommandLine::answerWithoutDisplay(int argc, char **argv)
{
    if (std::none_of(argv + 1, argv + argc, asksForInformation))
        return;
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
}

QStringList CommandLine::filesToOpen()
{
    QCommandLineParser parser;
    describe(parser);
    parser.process(*QCoreApplication::instance());
    return parser.positionalArguments();
}
