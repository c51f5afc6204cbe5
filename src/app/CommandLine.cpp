// SPDX-License-Identifier: MIT
#include "app/CommandLine.h"

#include "app/activation/InstanceClient.h"
#include "shared/Identity.h"
#include "shared/Version.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{
using CommandLine::Arguments;
using Wish = Arguments::Wish;

QCommandLineOption activateOption()
{
    return {u"activate"_s,
            QCoreApplication::translate("CommandLine",
                                        "Bring the running Brindle forward, with the FILEs opened "
                                        "in it; start Brindle when none runs.")};
}

QCommandLineOption toggleOption()
{
    return {u"toggle"_s,
            QCoreApplication::translate("CommandLine",
                                        "Bring the running Brindle forward, or send it back when "
                                        "it is in front; start Brindle when none runs.")};
}

void describe(QCommandLineParser &parser)
{
    setApplicationIdentity();
    QCoreApplication::setApplicationVersion(Version::text());
    parser.setApplicationDescription(
        QCoreApplication::translate("CommandLine", "A keyboard-driven task tracker."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(activateOption());
    parser.addOption(toggleOption());
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QCoreApplication::translate("CommandLine", "Data files to open beside the known ones."),
        QStringLiteral("[FILE…]"));
}

[[noreturn]] void endWithError(const char *text)
{
    std::fprintf(stderr, "brindle: %s\n", text);
    std::exit(EXIT_FAILURE);
}

/// Ends the process when the arguments contradict each other.
Arguments read(const QCommandLineParser &parser)
{
    const bool activate = parser.isSet(activateOption());
    const bool toggle = parser.isSet(toggleOption());
    const QStringList files = parser.positionalArguments();
    if (activate && toggle)
        endWithError("--activate and --toggle can't be given together");
    if (toggle && !files.isEmpty())
        endWithError("--toggle takes no FILE; --activate does");
    const Wish ofTheRest = activate ? Wish::Activate : Wish::Start;
    return {toggle ? Wish::Toggle : ofTheRest, files};
}

InstanceRequest requestFor(const Arguments &arguments)
{
    if (arguments.wish == Wish::Toggle)
        return {InstanceRequest::Kind::Toggle, {}, {}};
    return InstanceRequest::toOpen(arguments.files);
}

bool isForRunningCopy(std::string_view argument)
{
    return argument == "--activate" || argument == "--toggle";
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
    if (parser.parse(QCoreApplication::arguments()) && parser.isSet(u"version"_s)) {
        std::printf("Brindle %s\nLicence: MIT\n", qPrintable(Version::text()));
        std::exit(EXIT_SUCCESS);
    }
    parser.process(application);
}

std::optional<int> CommandLine::handOverToRunningCopy(int argc, char **argv)
{
    if (std::none_of(argv + 1, argv + argc, isForRunningCopy))
        return std::nullopt;
    // A copy of the arguments: an application object takes those that it knows out.
    std::vector<char *> argumentsAgain(argv, argv + argc + 1);
    const QCoreApplication application(argc, argumentsAgain.data());
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(QCoreApplication::arguments()))
        return std::nullopt; // perhaps the toolkit's, which the application proper knows
    const Arguments given = read(parser);
    if (given.wish == Wish::Start)
        return std::nullopt;
    const InstanceClient::Answer answer = InstanceClient::handOver(requestFor(given));
    if (answer.text)
        std::fprintf(stderr, "brindle: %s\n", answer.text);
    if (answer.outcome == InstanceClient::Outcome::NobodyRuns)
        return std::nullopt;
    return answer.outcome == InstanceClient::Outcome::Done ? EXIT_SUCCESS : EXIT_FAILURE;
}

CommandLine::Arguments CommandLine::arguments()
{
    QCommandLineParser parser;
    describe(parser);
    parser.process(*QCoreApplication::instance());
    return read(parser);
}
