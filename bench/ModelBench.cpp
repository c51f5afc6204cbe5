// SPDX-License-Identifier: MIT
#include "BenchFiles.h"
#include "model/HierarchyModel.h"
#include "store/FileManager.h"

#include <benchmark/benchmark.h>
#include <ctime>

using namespace Qt::StringLiterals;

namespace
{
/// Seconds that this thread has worked; what else the machine does has no part in it.
double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Times \a command alone; before each one the model goes to another entry that has a next sibling.
void measureCommand(benchmark::State &state, Command command)
{
    const int entryCount = static_cast<int>(state.range(0));
    FileManager files;
    files.openFile(BenchFiles::fileFor(u"model"_s, entryCount), 0);
    HierarchyModel model(&files);
    long long i = 0;
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        long long id = BenchFiles::spreadId(i++, entryCount);
        while (BenchFiles::sequenceOf(id) == BenchFiles::childrenPerEntry - 1 || id == entryCount)
            id = BenchFiles::spreadId(i++, entryCount);
        model.goToEntry(EntryAddress{0, id});
        const double start = processorTime();
        model.handleCommand(command);
        state.SetIterationTime(processorTime() - start);
        // The file stays as it was: a new entry that got no text vanishes with the next jump.
        files.getFile(0)->updateEntryState(id, EntryState::Todo, {});
    }
    files.unloadFile(0, true);
}

void registerCommand(const char *name, Command command)
{
    benchmark::RegisterBenchmark(
        name, [command](benchmark::State &state) { measureCommand(state, command); })
        ->Arg(1000)
        ->Arg(100000)
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime();
}
} // namespace

void registerModelBenchmarks()
{
    registerCommand("handleCommand(GoToNext)/model", Command::GoToNext);
    registerCommand("handleCommand(MarkCurrentDone)/model", Command::MarkCurrentDone);
    registerCommand("handleCommand(NewSibling)/model", Command::NewSibling);
}
