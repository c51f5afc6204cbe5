// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QTest>
#include <climits>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
using States = DiskStore::StateSet;

QStringList searchResults(DiskStore &store, const QString &text)
{
    const std::unique_ptr<DiskStore::EntryInfoList> list(store.entrySearch(text));
    QStringList result;
    for (const DiskStore::EntryInfo &info : *list)
        result << u"%1 %2 %3"_s.arg(QString::number(info.id), QString::number(info.sequence),
                                    info.body);
    return result;
}
} // namespace

/// The questions and changes that a store understands, apart from the numbering of siblings.
class DiskStoreQueriesTest : public QObject
{
    Q_OBJECT

private slots:
    void entryInfoFillsEveryOutput();
    void entryInfoSkipsOutputsThatAreNull();
    void entryInfoOfAMissingEntryIsFalse();
    void entryWithoutItsTextRowIsNotFound();
    void entryWithoutAKeyHasANullKeyText();
    void hasChildrenCountsChildrenWithAnyNumber();
    void entryIdOfAFreePlaceIsNone();
    void neighboursAreFoundByLimits();
    void neighboursWithAStateAreFoundByLimits();
    void allowedChildStates_data();
    void allowedChildStates();
    void allowedChildStatesAreReadOnce();
    void childrenAreComparedWithTheNewState();
    void bodyIsReplacedAndFoundByItsNewWords();
    void bodyOfTheRootAnnouncesItself();
    void emptyAndUnusualTextsComeBackAsTheyWere();
    void stateIsWrittenWithTheDateAsGiven();
    void shortcutKeyIsRegisteredAndFound();
    void shortcutKeyHeldByAnotherEntryMoves();
    void shortcutKeyIsTakenAway();
    void registeringAShortcutForNoEntryIsAnError();
    void shortcutKeyOfALargeIdIsFoundWhole();
    void relocatingUnderAnEntryOfALargeIdKeepsTheParent();
    void todosComeInTheirOrder();
    void todoNumbersMustDiffer();
    void clearedTodoLeavesTheList();
    void searchAddsAnAsteriskToALastLowerCaseLetter();
    void searchSendsOtherTextsUnchanged();
    void searchForNothingGivesNothing();
    void searchWithAnUnbalancedQuoteGivesOneErrorRecord();
    void searchGivesAtMostTwentyResults();
    void searchMarksMatchesAndOmissions();
    void searchErrorLeavesTheStoreUsable();
    void rootExcerptIsCutToTwentyCharacters();
    void writtenTextIsBoundNotConcatenated();
};

void DiskStoreQueriesTest::entryInfoFillsEveryOutput()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QDateTime done(QDate(2020, 2, 29), QTime(23, 59, 58), Qt::UTC);
    const long long parent = addEntry(store, rootId, u"parent"_s, 0, EntryState::Category);
    const long long id = store.insertEntry(parent, u"text"_s, 7, EntryState::Done, done);
    addEntry(store, id, u"child"_s, 0, EntryState::WontDo);
    store.registerShortcut(id, 0x41, u"A"_s);
    QString body;
    int sequence = 0;
    EntryState state = EntryState::None;
    long long parentId = 0;
    bool hasChildren = false;
    QDateTime doneDate;
    QString keyText;
    QVERIFY(store.getEntryInfo(id, &body, &sequence, &state, &parentId, &hasChildren, &doneDate,
                               &keyText));
    QCOMPARE(body, u"text"_s);
    QCOMPARE(sequence, 7);
    QCOMPARE(state, EntryState::Done);
    QCOMPARE(parentId, parent);
    QVERIFY(hasChildren);
    QCOMPARE(doneDate, done);
    QCOMPARE(doneDate.timeSpec(), Qt::UTC);
    QCOMPARE(keyText, u"A"_s);
}

void DiskStoreQueriesTest::entryInfoSkipsOutputsThatAreNull()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    int sequence = -5;
    QVERIFY(
        store.getEntryInfo(rootId, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    QVERIFY(store.getEntryInfo(rootId, nullptr, &sequence, nullptr, nullptr, nullptr, nullptr,
                               nullptr));
    QCOMPARE(sequence, 0);
}

void DiskStoreQueriesTest::entryInfoOfAMissingEntryIsFalse()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QString body = u"untouched"_s;
    QVERIFY(!store.getEntryInfo(99, &body, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    QVERIFY(!store.getEntryInfo(-1, &body, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    QCOMPARE(body, u"untouched"_s);
}

void DiskStoreQueriesTest::entryWithoutItsTextRowIsNotFound()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(change(path,
                    {u"INSERT INTO entry (id, parentid, body, sequence, state) VALUES (5, 1, 'x', "
                     "0, 0)"_s}),
             QString());
    DiskStore store(path);
    QCOMPARE(store.getEntryId(rootId, 0), 5LL);
    QVERIFY(!store.getEntryInfo(5, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
}

void DiskStoreQueriesTest::entryWithoutAKeyHasANullKeyText()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"a"_s, 0);
    QString keyText = u"x"_s;
    QDateTime done = QDateTime::currentDateTime();
    QVERIFY(store.getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, nullptr, &done, &keyText));
    QVERIFY(keyText.isNull());
    QVERIFY(done.isNull());
}

void DiskStoreQueriesTest::hasChildrenCountsChildrenWithAnyNumber()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"a"_s, 0);
    bool hasChildren = true;
    QVERIFY(
        store.getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, &hasChildren, nullptr, nullptr));
    QVERIFY(!hasChildren);
    addEntry(store, id, u"far"_s, 2147483000);
    QVERIFY(
        store.getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, &hasChildren, nullptr, nullptr));
    QVERIFY(hasChildren);
}

void DiskStoreQueriesTest::entryIdOfAFreePlaceIsNone()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"a"_s, 3);
    QCOMPARE(store.getEntryId(rootId, 3), id);
    QCOMPARE(store.getEntryId(rootId, 2), -1LL);
    QCOMPARE(store.getEntryId(id, 3), -1LL);
    QCOMPARE(store.getEntryId(-1, 0), rootId);
}

void DiskStoreQueriesTest::neighboursAreFoundByLimits()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    for (const int sequence : {2, 5, 9})
        addEntry(store, rootId, u"x"_s, sequence);
    QCOMPARE(store.getMinEntrySequence(rootId, 0), 2);
    QCOMPARE(store.getMinEntrySequence(rootId, 2), 2);
    QCOMPARE(store.getMinEntrySequence(rootId, 3), 5);
    QCOMPARE(store.getMinEntrySequence(rootId, 10), -1);
    QCOMPARE(store.getMinEntrySequence(rootId, INT_MIN), 2);
    QCOMPARE(store.getMaxEntrySequence(rootId, INT_MAX), 9);
    QCOMPARE(store.getMaxEntrySequence(rootId, 9), 9);
    QCOMPARE(store.getMaxEntrySequence(rootId, 8), 5);
    QCOMPARE(store.getMaxEntrySequence(rootId, 1), -1);
    QCOMPARE(store.getMinEntrySequence(4711, INT_MIN), -1);
    QCOMPARE(store.getMaxEntrySequence(4711, INT_MAX), -1);
}

void DiskStoreQueriesTest::neighboursWithAStateAreFoundByLimits()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"a"_s, 1, EntryState::Todo);
    addEntry(store, rootId, u"b"_s, 2, EntryState::Done);
    addEntry(store, rootId, u"c"_s, 3, EntryState::Todo);
    addEntry(store, rootId, u"d"_s, 4, EntryState::Category);
    QCOMPARE(store.getMinEntrySequenceWithState(rootId, EntryState::Todo, 0), 1);
    QCOMPARE(store.getMinEntrySequenceWithState(rootId, EntryState::Todo, 2), 3);
    QCOMPARE(store.getMinEntrySequenceWithState(rootId, EntryState::Todo, 4), -1);
    QCOMPARE(store.getMinEntrySequenceWithState(rootId, EntryState::WontDo, 0), -1);
    QCOMPARE(store.getMaxEntrySequenceWithState(rootId, EntryState::Todo, INT_MAX), 3);
    QCOMPARE(store.getMaxEntrySequenceWithState(rootId, EntryState::Todo, 2), 1);
    QCOMPARE(store.getMaxEntrySequenceWithState(rootId, EntryState::Done, 1), -1);
    QCOMPARE(store.getMaxEntrySequenceWithState(rootId, EntryState::Category, 4), 4);
}

void DiskStoreQueriesTest::allowedChildStates_data()
{
    using enum EntryState;
    QTest::addColumn<EntryState>("parent");
    QTest::addColumn<States>("allowed");
    QTest::newRow("no parent") << None << States{Todo, WontDo, Done, Category};
    QTest::newRow("to-do") << Todo << States{Todo, WontDo, Done};
    QTest::newRow("won't do") << WontDo << States{Todo, WontDo, Done};
    QTest::newRow("done") << Done << States{WontDo, Done};
    QTest::newRow("category") << Category << States{Todo, WontDo, Done, Category};
}

void DiskStoreQueriesTest::allowedChildStates()
{
    QFETCH(EntryState, parent);
    QFETCH(States, allowed);
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QCOMPARE(*store.getAllowedChildStates(parent), allowed);
}

void DiskStoreQueriesTest::allowedChildStatesAreReadOnce()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const DiskStore::StateSet *const first = store.getAllowedChildStates(EntryState::Done);
    rowsInside(store, u"DELETE FROM statecombo"_s);
    QCOMPARE(store.getAllowedChildStates(EntryState::Done), first);
    QCOMPARE(first->size(), 2);
    // Data of the file, not of the program: what was not asked before is read now.
    QVERIFY(store.getAllowedChildStates(EntryState::Todo)->isEmpty());
}

void DiskStoreQueriesTest::childrenAreComparedWithTheNewState()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"a"_s, 0, EntryState::Category);
    for (const EntryState state :
         {EntryState::Todo, EntryState::WontDo, EntryState::Done, EntryState::Category})
        QVERIFY(store.areChildrenCompatibleWithNewState(id, state));
    addEntry(store, id, u"done"_s, 0, EntryState::Done);
    QVERIFY(store.areChildrenCompatibleWithNewState(id, EntryState::Done));
    const long long open = addEntry(store, id, u"open"_s, 1, EntryState::Todo);
    QVERIFY(!store.areChildrenCompatibleWithNewState(id, EntryState::Done));
    QVERIFY(store.areChildrenCompatibleWithNewState(id, EntryState::WontDo));
    store.updateEntryState(open, EntryState::Category, {});
    QVERIFY(!store.areChildrenCompatibleWithNewState(id, EntryState::Todo));
    QVERIFY(!store.areChildrenCompatibleWithNewState(id, EntryState::WontDo));
    QVERIFY(store.areChildrenCompatibleWithNewState(id, EntryState::Category));
}

void DiskStoreQueriesTest::bodyIsReplacedAndFoundByItsNewWords()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"before"_s, 0);
    int roots = 0;
    QObject::connect(&store, &DiskStore::rootBodyChanged, &store, [&roots] { ++roots; });
    store.updateEntryBody(id, u"after"_s, false);
    QCOMPARE(roots, 0);
    QCOMPARE(searchResults(store, u"before"_s), QStringList());
    QCOMPARE(searchResults(store, u"after"_s), QStringList{u"%1 -1 {after}"_s.arg(id)});
    // The older column for texts stays empty.
    QCOMPARE(rowsInside(store, u"SELECT body FROM entry WHERE id=%1"_s.arg(id)),
             QStringList{QString(u""_s)});
}

void DiskStoreQueriesTest::bodyOfTheRootAnnouncesItself()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QString bodyAtSignal;
    QObject::connect(&store, &DiskStore::rootBodyChanged, &store,
                     [&] { bodyAtSignal = store.getRootExcerpt(); });
    store.updateEntryBody(rootId, u"New name"_s, true);
    QCOMPARE(bodyAtSignal, u"New name"_s);
}

void DiskStoreQueriesTest::emptyAndUnusualTextsComeBackAsTheyWere()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"x"_s, 0);
    for (const QString &text :
         {u""_s, QString(), u"  blanks  "_s, u"two\nlines\n"_s, u"tab\tquote'\"%;--"_s,
          u"NBSP\u00A0 and \u2028 and \U0001F600"_s, QString(20000, u'x')}) {
        store.updateEntryBody(id, text, false);
        QString body = u"none"_s;
        QVERIFY(
            store.getEntryInfo(id, &body, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
        QCOMPARE(body, text.isNull() ? u""_s : text);
        QCOMPARE(
            rowsInside(store, u"SELECT content IS NULL FROM entrybody WHERE docid=%1"_s.arg(id)),
            QStringList{u"0"_s});
    }
    const long long second = addEntry(store, rootId, QString(), 1);
    QVERIFY(
        store.getEntryInfo(second, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
}

void DiskStoreQueriesTest::stateIsWrittenWithTheDateAsGiven()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QDateTime done(QDate(2021, 3, 4), QTime(5, 6, 7), Qt::UTC);
    const long long id = addEntry(store, rootId, u"x"_s, 0);
    const QString sql = u"SELECT state, donedate FROM entry WHERE id=%1"_s.arg(id);
    store.updateEntryState(id, EntryState::Done, {});
    QCOMPARE(rowsInside(store, sql), QStringList{u"2|NULL"_s});
    store.updateEntryState(id, EntryState::Todo, done);
    QCOMPARE(rowsInside(store, sql), QStringList{u"0|2021-03-04T05:06:07"_s});
    store.updateEntryState(id, EntryState::Category, {});
    QCOMPARE(rowsInside(store, sql), QStringList{u"3|NULL"_s});
}

void DiskStoreQueriesTest::shortcutKeyIsRegisteredAndFound()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"x"_s, 0);
    QCOMPARE(store.getEntryIdByShortcutKey(0x58), -1LL);
    store.registerShortcut(id, 0x58, u"X"_s);
    QCOMPARE(store.getEntryIdByShortcutKey(0x58), id);
    QCOMPARE(store.getEntryIdByShortcutKey(0x59), -1LL);
    // An entry has one key: the next replaces it.
    store.registerShortcut(id, 0x59, u"Y"_s);
    QCOMPARE(store.getEntryIdByShortcutKey(0x58), -1LL);
    QCOMPARE(store.getEntryIdByShortcutKey(0x59), id);
    // The same key once more is no clash with itself.
    store.registerShortcut(id, 0x59, u"Y"_s);
    QCOMPARE(store.getEntryIdByShortcutKey(0x59), id);
}

void DiskStoreQueriesTest::shortcutKeyHeldByAnotherEntryMoves()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    const long long b = addEntry(store, rootId, u"b"_s, 1);
    store.registerShortcut(a, 0x58, u"X"_s);
    store.registerShortcut(b, 0x58, u"X again"_s);
    QCOMPARE(store.getEntryIdByShortcutKey(0x58), b);
    QCOMPARE(rowsInside(store, u"SELECT hotkey, hotkeytext FROM entry WHERE id>1 ORDER BY id"_s),
             (QStringList{u"NULL|NULL"_s, u"88|X again"_s}));
}

void DiskStoreQueriesTest::shortcutKeyIsTakenAway()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    store.registerShortcut(a, 0x58, u"X"_s);
    store.unregisterShortcut(-1);
    QCOMPARE(store.getEntryIdByShortcutKey(0x58), a);
    store.unregisterShortcut(a);
    QCOMPARE(rowsInside(store, u"SELECT hotkey, hotkeytext FROM entry WHERE id=%1"_s.arg(a)),
             QStringList{u"NULL|NULL"_s});
}

void DiskStoreQueriesTest::registeringAShortcutForNoEntryIsAnError()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const auto e = fileError([&store] { store.registerShortcut(-1, 0x58, u"X"_s); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error: illegal argument to registerShortcut."_s);
    QCOMPARE(e->details, store.dbFilePath());
}

void DiskStoreQueriesTest::shortcutKeyOfALargeIdIsFoundWhole()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(change(path,
                    {u"INSERT INTO entry (id, parentid, body, sequence, state, hotkey, hotkeytext) "
                     "VALUES (4294967301, 1, '', 0, 0, 88, 'X')"_s,
                     u"INSERT INTO entrybody (docid, content) VALUES (4294967301, 'large')"_s}),
             QString());
    DiskStore store(path);
    QCOMPARE(store.getEntryIdByShortcutKey(88), 4294967301LL);
    const long long other = addEntry(store, rootId, u"other"_s, 1);
    QVERIFY(!fileError([&] { store.registerShortcut(other, 88, u"X"_s); }));
    QCOMPARE(store.getEntryIdByShortcutKey(88), other);
}

void DiskStoreQueriesTest::relocatingUnderAnEntryOfALargeIdKeepsTheParent()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(change(path,
                    {u"INSERT INTO entry (id, parentid, body, sequence, state) VALUES (4294967301, "
                     "1, '', 0, 0)"_s,
                     u"INSERT INTO entrybody (docid, content) VALUES (4294967301, 'large')"_s}),
             QString());
    DiskStore store(path);
    const long long large = 4294967301LL;
    const long long a = addEntry(store, large, u"a"_s, 0);
    addEntry(store, large, u"b"_s, 1);
    // The parent's id would not fit the argument.
    QVERIFY(!fileError([&] { store.relocateEntry(a, 1, DiskStore::keepParent); }));
    QCOMPARE(childTexts(store, large), (QStringList{u"a@1"_s, u"b@2"_s}));
}

void DiskStoreQueriesTest::todosComeInTheirOrder()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    const long long b = addEntry(store, rootId, u"b"_s, 1);
    const long long c = addEntry(store, rootId, u"c"_s, 2);
    std::unique_ptr<DiskStore::EntryInfoList> todos(store.getAllTodosInList());
    QVERIFY(todos->isEmpty());
    store.updateTodoListSequence(c, 0);
    store.updateTodoListSequence(a, 5);
    store.updateTodoListSequence(b, 3);
    todos.reset(store.getAllTodosInList());
    QStringList seen;
    for (const DiskStore::EntryInfo &info : *todos)
        seen << u"%1@%2"_s.arg(info.body).arg(info.sequence);
    QCOMPARE(seen, (QStringList{u"c@0"_s, u"b@3"_s, u"a@5"_s}));
    QCOMPARE(todos->at(2).id, a);
}

void DiskStoreQueriesTest::todoNumbersMustDiffer()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    const long long b = addEntry(store, rootId, u"b"_s, 1);
    store.updateTodoListSequence(a, 0);
    const auto e = fileError([&] { store.updateTodoListSequence(b, 0); });
    QVERIFY(e);
    QCOMPARE(detail(*e, u"operation"_s), u"executing query"_s);
}

void DiskStoreQueriesTest::clearedTodoLeavesTheList()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    store.updateTodoListSequence(a, 0);
    store.clearTodoListSequence(a);
    const std::unique_ptr<DiskStore::EntryInfoList> todos(store.getAllTodosInList());
    QVERIFY(todos->isEmpty());
    QCOMPARE(rowsInside(store, u"SELECT todolistseq FROM entry WHERE id=%1"_s.arg(a)),
             QStringList{u"NULL"_s});
}

void DiskStoreQueriesTest::searchAddsAnAsteriskToALastLowerCaseLetter()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"a word here"_s, 0);
    addEntry(store, rootId, u"wor"_s, 1);
    addEntry(store, rootId, u"nothing"_s, 2);
    QCOMPARE(searchResults(store, u"wor"_s),
             (QStringList{u"2 -1 a {word} here"_s, u"3 -1 {wor}"_s}));
    QCOMPARE(searchResults(store, u"a wor"_s), QStringList{u"2 -1 {a} {word} here"_s});
    // Any lower-case letter of Unicode; such letters are beyond the tokenizer's own folding.
    addEntry(store, rootId, u"größer"_s, 3);
    QCOMPARE(searchResults(store, u"größ"_s), QStringList{u"5 -1 {größer}"_s});
    QCOMPARE(searchResults(store, u"grö"_s), QStringList{u"5 -1 {größer}"_s});
    // The last character decides: "Wor" ends in a lower-case letter too.
    QCOMPARE(searchResults(store, u"Wor"_s),
             (QStringList{u"2 -1 a {word} here"_s, u"3 -1 {wor}"_s}));
}

void DiskStoreQueriesTest::searchSendsOtherTextsUnchanged()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"word"_s, 0);
    addEntry(store, rootId, u"wor"_s, 1);
    addEntry(store, rootId, u"2026 and 20261"_s, 2);
    QCOMPARE(searchResults(store, u"wor "_s), QStringList{u"3 -1 {wor}"_s});
    QCOMPARE(searchResults(store, u"WOR"_s), QStringList{u"3 -1 {wor}"_s});
    QCOMPARE(searchResults(store, u"2026"_s), QStringList{u"4 -1 {2026} and 20261"_s});
    QCOMPARE(searchResults(store, u"2026*"_s), QStringList{u"4 -1 {2026} and {20261}"_s});
    QCOMPARE(searchResults(store, u"\"and 20261\""_s), QStringList{u"4 -1 2026 {and} {20261}"_s});
}

void DiskStoreQueriesTest::searchForNothingGivesNothing()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QCOMPARE(searchResults(store, QString()), QStringList());
    QCOMPARE(searchResults(store, u""_s), QStringList());
    QCOMPARE(searchResults(store, u"notthere"_s), QStringList());
}

void DiskStoreQueriesTest::searchWithAnUnbalancedQuoteGivesOneErrorRecord()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    for (const QString &text : {u"\"wor"_s, u"(a"_s, u"a OR"_s + u" "_s})
        QCOMPARE(searchResults(store, text), QStringList{u"-1 -1 query error"_s});
}

void DiskStoreQueriesTest::searchGivesAtMostTwentyResults()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    for (int i = 0; i < 25; ++i)
        addEntry(store, rootId, u"same"_s, i);
    QCOMPARE(searchResults(store, u"same"_s).size(), 20);
}

void DiskStoreQueriesTest::searchMarksMatchesAndOmissions()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QString text;
    for (int i = 0; i < 60; ++i)
        text += u"filler "_s;
    addEntry(store, rootId, text + u"needle "_s + text, 0);
    const QStringList found = searchResults(store, u"needle"_s);
    QCOMPARE(found.size(), 1);
    QVERIFY(found[0].startsWith(u"2 -1 .."_s));
    QVERIFY(found[0].contains(u"{needle}"_s));
    QVERIFY(found[0].endsWith(u".."_s));
}

void DiskStoreQueriesTest::searchErrorLeavesTheStoreUsable()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    int errors = 0;
    QObject::connect(&store, &DiskStore::errorOccurred, &store, [&errors] { ++errors; });
    addEntry(store, rootId, u"word"_s, 0);
    searchResults(store, u"\"wor"_s);
    QCOMPARE(errors, 0);
    QCOMPARE(searchResults(store, u"word"_s), QStringList{u"2 -1 {word}"_s});
    store.commitAndRestartTransaction();
    QCOMPARE(errors, 0);
}

void DiskStoreQueriesTest::rootExcerptIsCutToTwentyCharacters()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    store.updateEntryBody(rootId, u"12345678901234567890"_s, true);
    QCOMPARE(store.getRootExcerpt(), u"12345678901234567890"_s);
    store.updateEntryBody(rootId, u"123456789\n\n1234567890"_s, true);
    QCOMPARE(store.getRootExcerpt(), u"123456789 1234567890"_s);
    store.updateEntryBody(rootId, u"123456789012345678901"_s, true);
    QCOMPARE(store.getRootExcerpt(), u"12345678901234567890 ..."_s);
}

void DiskStoreQueriesTest::writtenTextIsBoundNotConcatenated()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QString nasty = u"'); DROP TABLE entry; --"_s;
    const long long id = addEntry(store, rootId, nasty, 0);
    store.registerShortcut(id, 1, nasty);
    QString body;
    QString keyText;
    QVERIFY(store.getEntryInfo(id, &body, nullptr, nullptr, nullptr, nullptr, nullptr, &keyText));
    QCOMPARE(body, nasty);
    QCOMPARE(keyText, nasty);
}

QTEST_MAIN(DiskStoreQueriesTest)
#include "DiskStoreQueriesTest.moc"
