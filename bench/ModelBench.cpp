// SPDX-License-Identifier: MIT
#include "BenchFiles.h"
#include "model/HierarchyModel.h"
#include "store/FileManager.h"

#include <benchmark/benchmark.h>
#include <chrono>

using namespace Qt::StringLiterals;

namespace
{
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
        const auto start = std::chrono::steady_clock::now();
        model.handleCommand(command);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
        // A new entry that got no text vanishes with the next jump.
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
