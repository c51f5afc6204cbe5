// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
constexpr int entryCount = 300;

/// A file with so many entries, all done and on the to-do list, that they take several pages.
void makeLargeFile(const QString &path)
{
    DiskStore store(path);
    const QDateTime done(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC);
    for (int i = 0; i < entryCount; ++i) {
        const QString text = u"word "_s + QString(100, QChar(u'a' + i % 20));
        const long long id = store.insertEntry(rootId, text, i, EntryState::Done, done);
        store.updateTodoListSequence(id, i);
    }
    store.commitAndRestartTransaction();
}

void expectWarning(const QString &part)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(part)));
}
} // namespace

Q_DECLARE_METATYPE(std::function<void(DiskStore &)>)

/// Files that turn out to be damaged half-way, and what a store does after an error.
class DiskStoreDamageTest : public QObject
{
    Q_OBJECT

private slots:
    void searchThatFailsAfterItsFirstRowNamesTheQuery();
    void listThatFailsAfterItsFirstRowIsAnError_data();
    void listThatFailsAfterItsFirstRowIsAnError();
    void errorWithAMessageOfItsOwnRefusesFurtherWork_data();
    void errorWithAMessageOfItsOwnRefusesFurtherWork();
    void errorsAreLoggedAsWarnings();
};

void DiskStoreDamageTest::searchThatFailsAfterItsFirstRowNamesTheQuery()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    {
        DiskStore store(path);
        addEntry(store, rootId, u"word one"_s, 0);
        addEntry(store, rootId, u"word two"_s, 1);
        store.commitAndRestartTransaction();
    }
    // The index still leads to a text that is gone.
    QCOMPARE(change(path, {u"DELETE FROM entrybody_content WHERE c0content='word two'"_s}),
             QString());
    DiskStore store(path);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    const auto e = fileError([&] { delete store.entrySearch(u"word"_s); });
    QVERIFY(e);
    QCOMPARE(errors.count(), 1);
    QCOMPARE(detail(*e, u"operation"_s), u"searching; query: 'word*'"_s);
}

void DiskStoreDamageTest::listThatFailsAfterItsFirstRowIsAnError_data()
{
    QTest::addColumn<QString>("damaged");
    QTest::addColumn<std::function<void(DiskStore &)>>("action");
    using Action = std::function<void(DiskStore &)>;
    QTest::newRow("entries done") << u"entry"_s << Action([](DiskStore &store) {
        const QDateTime day(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
        delete store.getEntryIdsByDoneDate(day, day.addDays(1));
    });
    QTest::newRow("to-do list") << u"entrybody_content"_s << Action([](DiskStore &store) {
        delete store.getAllTodosInList();
    });
}

void DiskStoreDamageTest::listThatFailsAfterItsFirstRowIsAnError()
{
    QFETCH(QString, damaged);
    QFETCH(std::function<void(DiskStore &)>, action);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeLargeFile(path);
    QVERIFY(damagePage(path, damaged, 2));
    DiskStore store(path);
    const auto e = fileError([&] { action(store); });
    QVERIFY(e);
    QCOMPARE(detail(*e, u"operation"_s), u"executing query"_s);
}

void DiskStoreDamageTest::errorWithAMessageOfItsOwnRefusesFurtherWork_data()
{
    QTest::addColumn<std::function<void(DiskStore &)>>("action");
    using Action = std::function<void(DiskStore &)>;
    QTest::newRow("entry to relocate not found")
        << Action([](DiskStore &store) { store.relocateEntry(99, 0, 1); });
    QTest::newRow("illegal argument")
        << Action([](DiskStore &store) { store.registerShortcut(-1, 1, u"x"_s); });
}

void DiskStoreDamageTest::errorWithAMessageOfItsOwnRefusesFurtherWork()
{
    QFETCH(std::function<void(DiskStore &)>, action);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    {
        DiskStore store(path);
        store.updateEntryBody(rootId, u"half-made"_s, true);
        QVERIFY(fileError([&] { action(store); }));
        QVERIFY(fileError([&] { store.updateEntryBody(rootId, u"more"_s, true); }));
        QVERIFY(fileError([&] { store.getEntryId(-1, 0); }));
        QVERIFY(fileError([&] { store.commitAndRestartTransaction(); }));
    }
    QCOMPARE(rows(path, u"SELECT content FROM entrybody"_s), QStringList{u"a.bdl"_s});
}

void DiskStoreDamageTest::errorsAreLoggedAsWarnings()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(
        change(path,
               {u"CREATE TRIGGER t BEFORE UPDATE ON entry BEGIN SELECT RAISE(FAIL, 'refused'); "
                "END"_s}),
        QString());
    {
        DiskStore store(path);
        expectWarning(u"refused"_s);
        expectWarning(u"operation: executing query"_s);
        QVERIFY(fileError([&] { store.updateEntryState(rootId, EntryState::Todo, {}); }));
    }
    {
        DiskStore store(path);
        expectWarning(u"illegal argument to registerShortcut"_s);
        QVERIFY(fileError([&] { store.registerShortcut(-1, 1, u"x"_s); }));
    }
    {
        DiskStore store(path);
        QCOMPARE(rowsInside(store, u"ROLLBACK"_s), QStringList());
        expectWarning(u"cannot commit - no transaction is active"_s);
        QVERIFY(fileError([&] { store.commitAndRestartTransaction(); }));
    }
}

QTEST_MAIN(DiskStoreDamageTest)
#include "DiskStoreDamageTest.moc"
