// SPDX-License-Identifier: MIT
#include "BenchFiles.h"
#include "PlainStore.h"
#include "model/ReportBuilder.h"
#include "model/TodoListModel.h"
#include "store/FileManager.h"
#include "ui/FindWindow.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QMimeData>
#include <benchmark/benchmark.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace
{
/// A query as it grows letter by letter; every state of it is searched for.
const QString typedQuery = u"entry 7"_s;

/// From a key press in the query line to the painted list of results.
void measureFindWindow(benchmark::State &state)
{
    FileManager files;
    files.openFile(BenchFiles::fileFor(u"find"_s, static_cast<int>(state.range(0))), 0);
    FindWindow window(&files, nullptr);
    window.activateAndSelectQuery();
    auto *query = window.findChild<QLineEdit *>();
    qsizetype length = 0;
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        length = length % typedQuery.size() + 1;
        query->setText(typedQuery.left(length));
        QCoreApplication::processEvents();
    }
    files.unloadFile(0, true);
}

void measurePlainSearch(benchmark::State &state)
{
    PlainStore store(BenchFiles::fileFor(u"find"_s, static_cast<int>(state.range(0))));
    qsizetype length = 0;
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        length = length % typedQuery.size() + 1;
        std::string text = typedQuery.left(length).toStdString();
        if (text.back() >= 'a' && text.back() <= 'z')
            text += '*';
        benchmark::DoNotOptimize(store.entrySearch(text));
    }
}

/// A report of as many done entries.
void measureReport(benchmark::State &state)
{
    const int doneCount = static_cast<int>(state.range(0));
    FileManager files;
    files.openFile(BenchFiles::fileFor(u"report"_s, doneCount + 1), 0);
    const QDateTime start(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    for (int i = 0; i < doneCount; ++i)
        files.getFile(0)->updateEntryState(i + 2, EntryState::Done, start.addSecs(i));
    const ReportBuilder builder(&files);
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        benchmark::DoNotOptimize(builder.build(start, start.addDays(2)));
    }
    files.unloadFile(0, true);
}

/// A to-do list of as many rows.
class LongList
{
public:
    explicit LongList(int rows)
    {
        files.openFile(BenchFiles::fileFor(u"todo"_s, 2 * rows), 0);
        model = std::make_unique<TodoListModel>(&files);
        for (int id = 2; model->rowCount() < rows; ++id)
            model->addTodo(EntryAddress{0, id});
        nextId = 2 * rows;
    }
    ~LongList() { files.unloadFile(0, true); }
    Q_DISABLE_COPY_MOVE(LongList)

    FileManager files;
    std::unique_ptr<TodoListModel> model;
    long long nextId = 0;
};

void measureTodoAddAndDelete(benchmark::State &state)
{
    LongList list(static_cast<int>(state.range(0)));
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        list.model->addTodo(EntryAddress{0, list.nextId});
        list.model->deleteItem(list.model->index(0));
    }
}

void measureTodoDrag(benchmark::State &state)
{
    LongList list(static_cast<int>(state.range(0)));
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        const int last = list.model->rowCount() - 1;
        const std::unique_ptr<QMimeData> drag(list.model->mimeData({list.model->index(last)}));
        list.model->dropMimeData(drag.get(), Qt::MoveAction, 0, 0, QModelIndex());
    }
}
} // namespace

void registerWindowBenchmarks()
{
    const auto add = [](const char *name, void (*measure)(benchmark::State &)) {
        return benchmark::RegisterBenchmark(name, measure)->Unit(benchmark::kMicrosecond);
    };
    add("find as you type/window", measureFindWindow)->Arg(1000)->Arg(10000)->Arg(100000);
    add("find as you type/plain", measurePlainSearch)->Arg(1000)->Arg(10000)->Arg(100000);
    add("report/alone", measureReport)->RangeMultiplier(10)->Range(100, 100000);
    add("to-do list add and delete/alone", measureTodoAddAndDelete)->Arg(100)->Arg(10000);
    add("to-do list drag/alone", measureTodoDrag)->Arg(100)->Arg(10000);
}
