// SPDX-License-Identifier: MIT
#include "BenchFiles.h"
#include "PlainStore.h"
#include "store/DiskStore.h"

#include <benchmark/benchmark.h>
#include <climits>

using namespace Qt::StringLiterals;
using BenchFiles::spreadId;
using BenchFiles::spreadParent;

namespace
{
/// The program's store, in the terms that both sides are measured in.
class Ours
{
public:
    explicit Ours(int entryCount)
        : m_store(BenchFiles::fileFor(u"store"_s, entryCount))
    {
    }

    auto id(long long parent, int sequence) { return m_store.getEntryId(parent, sequence); }
    bool info(long long id)
    {
        return m_store.getEntryInfo(id, &m_body, &m_number, &m_state, &m_parent, &m_flag, &m_date,
                                    &m_keyText);
    }
    int min(long long parent, int limit) { return m_store.getMinEntrySequence(parent, limit); }
    int max(long long parent, int limit) { return m_store.getMaxEntrySequence(parent, limit); }
    int minTodo(long long parent, int limit)
    {
        return m_store.getMinEntrySequenceWithState(parent, EntryState::Todo, limit);
    }
    int maxTodo(long long parent, int limit)
    {
        return m_store.getMaxEntrySequenceWithState(parent, EntryState::Todo, limit);
    }
    auto states() { return m_store.getAllowedChildStates(EntryState::Todo)->size(); }
    bool compatible(long long id)
    {
        return m_store.areChildrenCompatibleWithNewState(id, EntryState::Done);
    }
    auto doneDates()
    {
        return std::unique_ptr<QList<long long>>(m_store.getEntryIdsByDoneDate(m_done, m_done))
            ->size();
    }
    auto byKey(int key) { return m_store.getEntryIdByShortcutKey(key); }
    auto todos()
    {
        return std::unique_ptr<DiskStore::EntryInfoList>(m_store.getAllTodosInList())->size();
    }
    auto search()
    {
        return std::unique_ptr<DiskStore::EntryInfoList>(m_store.entrySearch(m_query))->size();
    }
    auto rootExcerpt() { return m_store.getRootExcerpt().size(); }
    auto insert(long long parent, int sequence)
    {
        return m_store.insertEntry(parent, m_text, sequence, EntryState::Todo, {});
    }
    void relocate(long long id, int sequence) { m_store.relocateEntry(id, sequence, -2); }
    void place(long long id, int sequence, long long parent)
    {
        m_store.relocateEntryWithoutDeconfliction(id, sequence, static_cast<int>(parent));
    }
    void shift(long long parent, int sequence) { m_store.shiftEntrySequences(parent, sequence); }
    bool remove(long long id) { return m_store.deleteEntry(id); }
    void body(long long id) { m_store.updateEntryBody(id, m_text, false); }
    void state(long long id) { m_store.updateEntryState(id, EntryState::Done, m_done); }
    void key(long long id, int key) { m_store.registerShortcut(id, key, m_keyName); }
    void noKey(long long id) { m_store.unregisterShortcut(id); }
    void todo(long long id, int sequence) { m_store.updateTodoListSequence(id, sequence); }
    void noTodo(long long id) { m_store.clearTodoListSequence(id); }

private:
    DiskStore m_store;
    const QString m_text = u"a new text of the usual length of a line"_s;
    const QString m_query = u"window no12"_s;
    const QString m_keyName = u"X"_s;
    const QDateTime m_done = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    QString m_body;
    QString m_keyText;
    QDateTime m_date;
    EntryState m_state = EntryState::None;
    long long m_parent = -1;
    int m_number = -1;
    bool m_flag = false;
};

/// The same through SQLite's C interface.
class Plain
{
public:
    explicit Plain(int entryCount)
        : m_store(BenchFiles::fileFor(u"plain"_s, entryCount))
    {
    }

    auto id(long long parent, int sequence) { return m_store.getEntryId(parent, sequence); }
    bool info(long long id) { return m_store.getEntryInfo(id, &m_info); }
    int min(long long parent, int limit) { return m_store.getMinEntrySequence(parent, limit); }
    int max(long long parent, int limit) { return m_store.getMaxEntrySequence(parent, limit); }
    int minTodo(long long parent, int limit)
    {
        return m_store.getMinEntrySequenceWithState(parent, 0, limit);
    }
    int maxTodo(long long parent, int limit)
    {
        return m_store.getMaxEntrySequenceWithState(parent, 0, limit);
    }
    auto states() { return m_store.getAllowedChildStates(0).size(); }
    bool compatible(long long id) { return m_store.areChildrenCompatibleWithNewState(id, 2); }
    auto doneDates() { return m_store.getEntryIdsByDoneDate(m_done, m_done).size(); }
    auto byKey(int key) { return m_store.getEntryIdByShortcutKey(key); }
    auto todos() { return m_store.getAllTodosInList().size(); }
    auto search() { return m_store.entrySearch(m_query).size(); }
    auto rootExcerpt() { return m_store.getRootExcerpt().size(); }
    auto insert(long long parent, int sequence)
    {
        return m_store.insertEntry(parent, m_text, sequence, 0);
    }
    void relocate(long long id, int sequence) { m_store.relocateEntry(id, sequence); }
    void place(long long id, int sequence, long long parent)
    {
        m_store.relocateEntryWithoutDeconfliction(id, sequence, parent);
    }
    void shift(long long parent, int sequence) { m_store.shiftEntrySequences(parent, sequence); }
    bool remove(long long id) { return m_store.deleteEntry(id); }
    void body(long long id) { m_store.updateEntryBody(id, m_text); }
    void state(long long id) { m_store.updateEntryState(id, 2, m_done); }
    void key(long long id, int key) { m_store.registerShortcut(id, key, m_keyName); }
    void noKey(long long id) { m_store.unregisterShortcut(id); }
    void todo(long long id, int sequence) { m_store.updateTodoListSequence(id, sequence); }
    void noTodo(long long id) { m_store.clearTodoListSequence(id); }

private:
    PlainStore m_store;
    const std::string m_text = "a new text of the usual length of a line";
    const std::string m_query = "window no12";
    const std::string m_keyName = "X";
    const std::string m_done = "2026-01-02T03:04:05";
    PlainStore::Info m_info;
};

/// Runs \a operation, given a store, the run's number and the number of entries, again and again.
template <typename Store, typename Operation>
void measure(benchmark::State &state, Operation operation)
{
    const int entryCount = static_cast<int>(state.range(0));
    Store store(entryCount);
    long long i = 0;
    for (auto step : state) {
        benchmark::DoNotOptimize(step);
        operation(store, i++, entryCount);
    }
}

template <typename Store, typename Operation>
void registerOne(const char *side, const char *name, Operation operation, int iterations)
{
    const std::string full = std::string(name) + '/' + side;
    auto *const one = benchmark::RegisterBenchmark(
        full.c_str(), [operation](benchmark::State &state) { measure<Store>(state, operation); });
    one->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
    if (iterations > 0)
        one->Iterations(iterations);
}

/// A change that uses up its places runs a fixed number of times, so that both sides do the same.
template <typename Operation>
void registerPair(const char *name, Operation operation, int iterations = 0)
{
    registerOne<Ours>("store", name, operation, iterations);
    registerOne<Plain>("plain", name, operation, iterations);
}

#define READING(call)                                                                              \
    [](auto &store, [[maybe_unused]] long long i, [[maybe_unused]] int n) {                        \
        benchmark::DoNotOptimize(store.call);                                                      \
    }
#define CHANGE(call) [](auto &store, long long i, [[maybe_unused]] int n) { store.call; }

constexpr int someChanges = 20000;
} // namespace

void registerReadingBenchmarks()
{
    registerPair("getEntryId", READING(id(spreadParent(i, n), static_cast<int>(i % 10))));
    registerPair("getEntryInfo", READING(info(spreadId(i, n))));
    registerPair("getMinEntrySequence", READING(min(spreadParent(i, n), 4)));
    registerPair("getMaxEntrySequence", READING(max(spreadParent(i, n), 4)));
    registerPair("getMinEntrySequenceWithState", READING(minTodo(spreadParent(i, n), 4)));
    registerPair("getMaxEntrySequenceWithState", READING(maxTodo(spreadParent(i, n), 4)));
    registerPair("getAllowedChildStates", READING(states()));
    registerPair("areChildrenCompatibleWithNewState", READING(compatible(spreadParent(i, n))));
    registerPair("getEntryIdsByDoneDate", READING(doneDates()));
    registerPair("getEntryIdByShortcutKey", READING(byKey(65)));
    registerPair("getAllTodosInList", READING(todos()));
    registerPair("entrySearch", READING(search()));
    registerPair("getRootExcerpt", READING(rootExcerpt()));
}

void registerChangingBenchmarks()
{
    registerPair("insertEntry", CHANGE(insert(spreadParent(i, n), 20 + static_cast<int>(i))),
                 someChanges);
    registerPair("deleteEntry", CHANGE(remove(n - i)), 900);
    // Each entry one up, over the sibling before it.
    registerPair("relocateEntry",
                 CHANGE(relocate(spreadId(i, n), BenchFiles::sequenceOf(spreadId(i, n)) - 1)), 900);
    registerPair("relocateEntryWithoutDeconfliction",
                 CHANGE(place(spreadId(i, n), static_cast<int>(i % 1000),
                              BenchFiles::parentOf(spreadId(i, n)))));
    registerPair("shiftEntrySequences",
                 CHANGE(shift(spreadParent(i / 50, n), static_cast<int>(i % 50))),
                 someChanges / 10);
    registerPair("updateEntryBody", CHANGE(body(spreadId(i, n))), someChanges);
    registerPair("updateEntryState", CHANGE(state(spreadId(i, n))));
    registerPair("registerShortcut", CHANGE(key(spreadId(i, n), static_cast<int>(i % 500))));
    registerPair("unregisterShortcut", CHANGE(noKey(spreadId(i, n))));
    registerPair("updateTodoListSequence", CHANGE(todo(spreadId(i, n), 100 + static_cast<int>(i))));
    registerPair("clearTodoListSequence", CHANGE(noTodo(spreadId(i, n))));
}
