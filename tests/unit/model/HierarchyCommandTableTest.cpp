// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace
{

enum class Place { Panel, Root, Stored, New };

/// What a command does where it is given. The world is always the same: two files, the first with
/// "a" (children "a1", "a2"), "b" and "c"; the places are the panel between the files, the first
/// file's root, "b", and a new entry without text after "b".
struct Expectation {
    Command command;
    const char *name;
    const char *where; ///< Null when the command is refused.
    int announcements = 0;
    bool writes = false;
};

const char *const refused = nullptr;

const Expectation atPanel[] = {
    {Command::GoToParent, "GoToParent", refused},
    {Command::GoToFirst, "GoToFirst", "top: - <one.bdl> two.bdl"},
    {Command::GoToPrevious, "GoToPrevious", "top: - <one.bdl> two.bdl"},
    {Command::GoToNext, "GoToNext", "top: one.bdl <two.bdl> -"},
    {Command::GoToLast, "GoToLast", "top: one.bdl <two.bdl> -"},
    {Command::GoToChild, "GoToChild", refused},
    {Command::MoveCurrentLeft, "MoveCurrentLeft", refused},
    {Command::MoveCurrentToTop, "MoveCurrentToTop", "panel: - <> one.bdl"},
    {Command::MoveCurrentUp, "MoveCurrentUp", "panel: - <> one.bdl"},
    {Command::MoveCurrentDown, "MoveCurrentDown", "panel: two.bdl <> -"},
    {Command::MoveCurrentToBottom, "MoveCurrentToBottom", "panel: two.bdl <> -"},
    {Command::MoveCurrentRight, "MoveCurrentRight", refused},
    {Command::NewSibling, "NewSibling", refused},
    {Command::SaveChangesAndHide, "SaveChangesAndHide", "panel: one.bdl <> two.bdl", 1},
    {Command::MarkCurrentDone, "MarkCurrentDone", refused},
    {Command::MarkCurrentTodo, "MarkCurrentTodo", refused},
    {Command::MarkCurrentWontDo, "MarkCurrentWontDo", refused},
    {Command::MarkCurrentCategory, "MarkCurrentCategory", refused},
    {Command::AddEntryToTodoListAndShow, "AddEntryToTodoListAndShow", refused},
    {Command::CommitEdit, "CommitEdit", "panel: one.bdl <> two.bdl"},
};

const Expectation atRoot[] = {
    {Command::GoToParent, "GoToParent", refused},
    {Command::GoToFirst, "GoToFirst", "top: - <one.bdl> two.bdl"},
    {Command::GoToPrevious, "GoToPrevious", "panel: - <> one.bdl"},
    {Command::GoToNext, "GoToNext", "top: one.bdl <two.bdl> -"},
    {Command::GoToLast, "GoToLast", "top: one.bdl <two.bdl> -"},
    {Command::GoToChild, "GoToChild", "one.bdl: - <a> b"},
    {Command::MoveCurrentLeft, "MoveCurrentLeft", refused},
    {Command::MoveCurrentToTop, "MoveCurrentToTop", refused},
    {Command::MoveCurrentUp, "MoveCurrentUp", refused},
    {Command::MoveCurrentDown, "MoveCurrentDown", "top: two.bdl <one.bdl> -"},
    {Command::MoveCurrentToBottom, "MoveCurrentToBottom", "top: two.bdl <one.bdl> -"},
    {Command::MoveCurrentRight, "MoveCurrentRight", refused},
    {Command::NewSibling, "NewSibling", "panel: one.bdl <> two.bdl"},
    {Command::SaveChangesAndHide, "SaveChangesAndHide", "top: - <one.bdl> two.bdl", 1},
    {Command::MarkCurrentDone, "MarkCurrentDone", refused},
    {Command::MarkCurrentTodo, "MarkCurrentTodo", "top: - <one.bdl> two.bdl", 1, true},
    {Command::MarkCurrentWontDo, "MarkCurrentWontDo", "top: - <one.bdl> two.bdl", 1, true},
    {Command::MarkCurrentCategory, "MarkCurrentCategory", refused},
    {Command::AddEntryToTodoListAndShow, "AddEntryToTodoListAndShow", refused},
    {Command::CommitEdit, "CommitEdit", "top: - <one.bdl> two.bdl"},
};

const Expectation atStored[] = {
    {Command::GoToParent, "GoToParent", "top: - <one.bdl> two.bdl"},
    {Command::GoToFirst, "GoToFirst", "one.bdl: - <a> b"},
    {Command::GoToPrevious, "GoToPrevious", "one.bdl: - <a> b"},
    {Command::GoToNext, "GoToNext", "one.bdl: b <c> -"},
    {Command::GoToLast, "GoToLast", "one.bdl: b <c> -"},
    {Command::GoToChild, "GoToChild", "b: - <> -"},
    {Command::MoveCurrentLeft, "MoveCurrentLeft", refused},
    {Command::MoveCurrentToTop, "MoveCurrentToTop", "one.bdl: - <b> a", 0, true},
    {Command::MoveCurrentUp, "MoveCurrentUp", "one.bdl: - <b> a", 0, true},
    {Command::MoveCurrentDown, "MoveCurrentDown", "one.bdl: c <b> -", 0, true},
    {Command::MoveCurrentToBottom, "MoveCurrentToBottom", "one.bdl: c <b> -", 0, true},
    {Command::MoveCurrentRight, "MoveCurrentRight", "a: a2 <b> -", 0, true},
    {Command::NewSibling, "NewSibling", "one.bdl: b <> c"},
    {Command::SaveChangesAndHide, "SaveChangesAndHide", "one.bdl: a <b> c", 1},
    {Command::MarkCurrentDone, "MarkCurrentDone", "one.bdl: b <c> -", 1, true},
    {Command::MarkCurrentTodo, "MarkCurrentTodo", refused},
    {Command::MarkCurrentWontDo, "MarkCurrentWontDo", "one.bdl: a <b> c", 1, true},
    {Command::MarkCurrentCategory, "MarkCurrentCategory", "one.bdl: a <b> c", 1, true},
    {Command::AddEntryToTodoListAndShow, "AddEntryToTodoListAndShow", "one.bdl: a <b> c", 1},
    {Command::CommitEdit, "CommitEdit", "one.bdl: a <b> c"},
};

const Expectation atNew[] = {
    {Command::GoToParent, "GoToParent", "top: - <one.bdl> two.bdl"},
    {Command::GoToFirst, "GoToFirst", "one.bdl: - <a> b"},
    {Command::GoToPrevious, "GoToPrevious", "one.bdl: a <b> c"},
    {Command::GoToNext, "GoToNext", "one.bdl: b <c> -"},
    {Command::GoToLast, "GoToLast", "one.bdl: b <c> -"},
    {Command::GoToChild, "GoToChild", refused},
    {Command::MoveCurrentLeft, "MoveCurrentLeft", refused},
    {Command::MoveCurrentToTop, "MoveCurrentToTop", "one.bdl: - <> a"},
    {Command::MoveCurrentUp, "MoveCurrentUp", "one.bdl: a <> b"},
    {Command::MoveCurrentDown, "MoveCurrentDown", "one.bdl: c <> -"},
    {Command::MoveCurrentToBottom, "MoveCurrentToBottom", "one.bdl: c <> -"},
    {Command::MoveCurrentRight, "MoveCurrentRight", "b: - <> -"},
    {Command::NewSibling, "NewSibling", refused},
    {Command::SaveChangesAndHide, "SaveChangesAndHide", "one.bdl: b <> c", 1},
    {Command::MarkCurrentDone, "MarkCurrentDone", "one.bdl: b <> c"},
    {Command::MarkCurrentTodo, "MarkCurrentTodo", refused},
    {Command::MarkCurrentWontDo, "MarkCurrentWontDo", "one.bdl: b <> c"},
    {Command::MarkCurrentCategory, "MarkCurrentCategory", "one.bdl: b <> c"},
    {Command::AddEntryToTodoListAndShow, "AddEntryToTodoListAndShow", refused},
    {Command::CommitEdit, "CommitEdit", "one.bdl: b <> c"},
};

template <std::size_t size>
void addRows(Place place, const char *placeName, const Expectation (&expectations)[size])
{
    for (const Expectation &e : expectations) {
        QTest::addRow("%s at %s", e.name, placeName)
            << static_cast<int>(place) << static_cast<int>(e.command)
            << QString::fromLatin1(e.where) << (e.where != refused) << e.announcements << e.writes;
    }
}

} // namespace

/// Every command in every kind of position, and what holds for all commands alike.
class HierarchyCommandTableTest : public QObject
{
    Q_OBJECT

private:
    static void setUp(HierarchyDesk &desk);
    static void goTo(HierarchyDesk &desk, Place place);

private slots:
    void everyCommandInEveryPosition_data();
    void everyCommandInEveryPosition();
    void movesOfTheTableRearrangeOnlyWhatTheySay_data();
    void movesOfTheTableRearrangeOnlyWhatTheySay();
    void hideNeverWritesAndNeverRedraws_data();
    void hideNeverWritesAndNeverRedraws();
    void everyOtherCommandWritesTheTextFirst_data();
    void everyOtherCommandWritesTheTextFirst();
    void clearingARootsTextRefusesEveryCommandButHide_data();
    void clearingARootsTextRefusesEveryCommandButHide();
    void commandsOfOthersAreUnhandled_data();
    void commandsOfOthersAreUnhandled();
    void anUnhandledCommandHasWrittenTheText();
    void refusedTextComesBeforeUnhandled();
    void saveAndHidePutsEverythingOnDisk();
    void saveAndHideSavesBeforeItStepsBack();
    void saveAndHideThatCannotSaveStaysInFront();
    void aMoveThatFailsAfterwardsNeverWritesOneEntrysTextIntoAnother();
    void saveAndHideSavesAllFiles();
    void addToTodoListGivesTheAddress();
    void addToTodoListRefusesWhatIsNotToDo_data();
    void addToTodoListRefusesWhatIsNotToDo();
    void afterFourHoursACommandBringsTheReminder();
    void aRefusedCommandBringsNoReminder();
};

void HierarchyCommandTableTest::setUp(HierarchyDesk &desk)
{
    desk.addFile(u"one.bdl"_s, u"- a\n  - a1\n  - a2\n- b\n- c\n"_s);
    desk.addFile(u"two.bdl"_s, u"- z\n"_s);
    desk.start();
}

void HierarchyCommandTableTest::goTo(HierarchyDesk &desk, Place place)
{
    switch (place) {
    case Place::Panel:
        return desk.goToPanel(1);
    case Place::Root:
        return desk.goToRoot(0);
    case Place::Stored:
        return desk.goTo(u"b"_s);
    case Place::New:
        return desk.goToNewAfter(u"b"_s);
    }
}

void HierarchyCommandTableTest::everyCommandInEveryPosition_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("where");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<int>("announcements");
    QTest::addColumn<bool>("writes");
    addRows(Place::Panel, "the panel", atPanel);
    addRows(Place::Root, "a root", atRoot);
    addRows(Place::Stored, "a stored entry", atStored);
    addRows(Place::New, "a new entry", atNew);
}

void HierarchyCommandTableTest::everyCommandInEveryPosition()
{
    QFETCH(const int, place);
    QFETCH(const int, command);
    QFETCH(const QString, where);
    QFETCH(const bool, accepted);
    QFETCH(const int, announcements);
    QFETCH(const bool, writes);
    HierarchyDesk desk;
    setUp(desk);
    goTo(desk, static_cast<Place>(place));
    const QStringList before = desk.everythingShown();

    desk.run(static_cast<Command>(command));

    QCOMPARE(desk.refusals(), accepted ? 0 : 1);
    QCOMPARE(desk.changed->size(), accepted ? 1 : 0);
    if (accepted)
        QCOMPARE(desk.where(), where);
    else
        QCOMPARE(desk.everythingShown(), before);
    QCOMPARE(desk.announcements(), announcements);
    QCOMPARE(desk.somethingWritten(), writes);
    QCOMPARE(desk.bodyRequests->size(), static_cast<Place>(place) == Place::Panel ? 0 : 1);
}

void HierarchyCommandTableTest::movesOfTheTableRearrangeOnlyWhatTheySay_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("outline");
    const auto row = [](const char *name, Command command, const QString &outline) {
        QTest::newRow(name) << static_cast<int>(command) << outline;
    };
    row("to the top", Command::MoveCurrentToTop, u"- b\n- a\n  - a1\n  - a2\n- c\n"_s);
    row("up", Command::MoveCurrentUp, u"- b\n- a\n  - a1\n  - a2\n- c\n"_s);
    row("down", Command::MoveCurrentDown, u"- a\n  - a1\n  - a2\n- c\n- b\n"_s);
    row("to the bottom", Command::MoveCurrentToBottom, u"- a\n  - a1\n  - a2\n- c\n- b\n"_s);
    row("right", Command::MoveCurrentRight, u"- a\n  - a1\n  - a2\n  - b\n- c\n"_s);
    row("left, refused", Command::MoveCurrentLeft, u"- a\n  - a1\n  - a2\n- b\n- c\n"_s);
}

void HierarchyCommandTableTest::movesOfTheTableRearrangeOnlyWhatTheySay()
{
    QFETCH(const int, command);
    QFETCH(const QString, outline);
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.outline(), outline);
    QVERIFY(!Outline::hasBadNumbers(desk.rows()));
    QCOMPARE(desk.outline(1), u"- z\n"_s);
}

void HierarchyCommandTableTest::hideNeverWritesAndNeverRedraws_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QString>("text");
    const QString texts[] = {u""_s, u"typed"_s};
    for (const QString &text : texts) {
        const char *kind = text.isEmpty() ? "cleared" : "typed";
        QTest::addRow("%s text at a root", kind) << static_cast<int>(Place::Root) << text;
        QTest::addRow("%s text at a stored entry", kind) << static_cast<int>(Place::Stored) << text;
        QTest::addRow("%s text at a new entry", kind) << static_cast<int>(Place::New) << text;
        QTest::addRow("%s text at the panel", kind) << static_cast<int>(Place::Panel) << text;
    }
}

void HierarchyCommandTableTest::hideNeverWritesAndNeverRedraws()
{
    QFETCH(const int, place);
    QFETCH(const QString, text);
    HierarchyDesk desk;
    setUp(desk);
    goTo(desk, static_cast<Place>(place));
    const QStringList before = desk.everythingShown();
    desk.type(text);

    desk.run(Command::Hide);

    QCOMPARE(desk.deactivations->size(), 1);
    QCOMPARE(desk.announcements(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.bodyRequests->size(), 0);
    QCOMPARE(desk.refusals(), 0);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.editor->text(), text);
    QCOMPARE(desk.everythingShown(), before);
}

void HierarchyCommandTableTest::everyOtherCommandWritesTheTextFirst_data()
{
    QTest::addColumn<int>("command");
    for (const Expectation &e : atStored)
        QTest::newRow(e.name) << static_cast<int>(e.command);
}

void HierarchyCommandTableTest::everyOtherCommandWritesTheTextFirst()
{
    QFETCH(const int, command);
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    const qint64 id = desk.idOf(u"b"_s);
    desk.type(u"  better \n"_s);

    desk.run(static_cast<Command>(command));

    const Outline::Row row = Outline::rowWithText(desk.rows(), u"better"_s);
    QCOMPARE(row.id, id);
    QCOMPARE(desk.bodyChanges->size(), 1);
    QCOMPARE(desk.bodyChanges->at(0).at(0).toInt(), 0);
    QCOMPARE(desk.bodyChanges->at(0).at(1).toLongLong(), id);
    QCOMPARE(desk.deletions->size(), 0);
}

void HierarchyCommandTableTest::clearingARootsTextRefusesEveryCommandButHide_data()
{
    everyOtherCommandWritesTheTextFirst_data();
}

void HierarchyCommandTableTest::clearingARootsTextRefusesEveryCommandButHide()
{
    QFETCH(const int, command);
    HierarchyDesk desk;
    setUp(desk);
    desk.goToRoot(0);
    desk.type(u" "_s);

    desk.run(static_cast<Command>(command));

    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(!desk.somethingWritten());
    QVERIFY(desk.model->atRootOfFile());
    QCOMPARE(desk.editor->text(), u" "_s);
    QCOMPARE(Outline::rowWithText(desk.rows(), u"one.bdl"_s).parentId, -1);
    QCOMPARE(desk.files->getFile(0)->dbFileName(), u"one.bdl"_s);
}

void HierarchyCommandTableTest::commandsOfOthersAreUnhandled_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("NoCommand") << static_cast<int>(Command::NoCommand);
    QTest::newRow("DiscardChanges") << static_cast<int>(Command::DiscardChanges);
    QTest::newRow("RegisterShortcut") << static_cast<int>(Command::RegisterShortcut);
    QTest::newRow("ActivateTodoListWindow") << static_cast<int>(Command::ActivateTodoListWindow);
    QTest::newRow("ShowFindWindow") << static_cast<int>(Command::ShowFindWindow);
    QTest::newRow("ShowCreateReportDialog") << static_cast<int>(Command::ShowCreateReportDialog);
    QTest::newRow("ShowSettingsDialog") << static_cast<int>(Command::ShowSettingsDialog);
    QTest::newRow("ShowHelp") << static_cast<int>(Command::ShowHelp);
    QTest::newRow("Exit") << static_cast<int>(Command::Exit);
    QTest::newRow("30") << 30;
    QTest::newRow("1000000") << 1000000;
}

void HierarchyCommandTableTest::commandsOfOthersAreUnhandled()
{
    QFETCH(const int, command);
    const Place places[] = {Place::Panel, Place::Root, Place::Stored, Place::New};
    HierarchyDesk desk;
    setUp(desk);
    for (const Place place : places) {
        goTo(desk, place);
        const QStringList before = desk.everythingShown();
        QCOMPARE(thrownBy([&] { desk.run(static_cast<Command>(command)); }), "unhandled command");
        QCOMPARE(desk.everythingShown(), before);
        QCOMPARE(desk.changed->size(), 0);
        QCOMPARE(desk.announcements(), 0);
        QCOMPARE(desk.refusals(), 0);
    }
}

void HierarchyCommandTableTest::anUnhandledCommandHasWrittenTheText()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(u"better"_s);
    QCOMPARE(thrownBy([&] { desk.run(Command::NoCommand); }), "unhandled command");
    QCOMPARE(desk.outline(), u"- a\n  - a1\n  - a2\n- better\n- c\n"_s);
}

void HierarchyCommandTableTest::refusedTextComesBeforeUnhandled()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a"_s);
    desk.type(QString());
    QCOMPARE(thrownBy([&] { desk.run(Command::NoCommand); }), "nothing");
    QCOMPARE(desk.refusals(), 1);
}

void HierarchyCommandTableTest::saveAndHidePutsEverythingOnDisk()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"c"_s);
    desk.type(u"d"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.outline(), u"- a\n  - a1\n  - a2\n- b\n- c\n- d\n"_s);
    const QString onDiskBefore = Outline::dump(Outline::readFromDisk(desk.filePath(u"one.bdl"_s)));
    QCOMPARE(onDiskBefore, u"- a\n  - a1\n  - a2\n- b\n- c\n"_s);

    desk.type(u"dd"_s);
    desk.run(Command::SaveChangesAndHide);

    QCOMPARE(desk.deactivations->size(), 1);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.where(), u"one.bdl: c <dd> -"_s);
    const QString onDiskAfter = Outline::dump(Outline::readFromDisk(desk.filePath(u"one.bdl"_s)));
    QCOMPARE(onDiskAfter, u"- a\n  - a1\n  - a2\n- b\n- c\n- dd\n"_s);
}

void HierarchyCommandTableTest::saveAndHideSavesBeforeItStepsBack()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    QString onDiskMeanwhile;
    QObject context;
    QObject::connect(desk.model.get(), &HierarchyModel::requestAppDeactivation, &context, [&] {
        onDiskMeanwhile = Outline::dump(Outline::readFromDisk(desk.filePath(u"one.bdl"_s)));
    });
    desk.run(Command::SaveChangesAndHide);
    QCOMPARE(onDiskMeanwhile, u"- a\n  - a1\n  - a2\n- bb\n- c\n"_s);
}

void HierarchyCommandTableTest::saveAndHideThatCannotSaveStaysInFront()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    // Saved now it would be saved into nowhere.
    QVERIFY(QFile::rename(desk.filePath(u"one.bdl"_s), desk.filePath(u"gone.bdl"_s)));
    const BoxReader boxes;
    QVERIFY(thrownBy([&] { desk.run(Command::SaveChangesAndHide); }).startsWith("a file error"));
    QTRY_COMPARE(boxes.texts().size(), 1);
    QCOMPARE(desk.deactivations->size(), 0);
    QTRY_COMPARE(desk.files->getFileCount(), 1);
    desk.run(Command::SaveChangesAndHide);
    QCOMPARE(desk.deactivations->size(), 1);
}

void HierarchyCommandTableTest::aMoveThatFailsAfterwardsNeverWritesOneEntrysTextIntoAnother()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"- a\n- b\n- c\n"_s);
    // An entry without a text, as other programs leave it, can't be shown as a neighbour.
    Outline::runOnDisk(path, {u"DELETE FROM entrybody WHERE content='c'"_s});
    desk.start();
    desk.goTo(u"a"_s);
    QCOMPARE(thrownBy([&] { desk.run(Command::GoToNext); }), "entry not found");
    QCOMPARE(desk.model->getBody(), u"b"_s);
    thrownBy([&] { desk.run(Command::CommitEdit); });
    QCOMPARE(desk.rows().at(2).text, u"b"_s);
}

void HierarchyCommandTableTest::saveAndHideSavesAllFiles()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"z"_s, 1);
    desk.type(u"zz"_s);
    desk.run(Command::CommitEdit);
    desk.goTo(u"b"_s, 0);
    desk.type(u"bb"_s);
    desk.run(Command::SaveChangesAndHide);
    QCOMPARE(Outline::dump(Outline::readFromDisk(desk.filePath(u"two.bdl"_s))), u"- zz\n"_s);
    QCOMPARE(Outline::dump(Outline::readFromDisk(desk.filePath(u"one.bdl"_s))),
             u"- a\n  - a1\n  - a2\n- bb\n- c\n"_s);
}

void HierarchyCommandTableTest::addToTodoListGivesTheAddress()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"z"_s, 1);
    desk.run(Command::AddEntryToTodoListAndShow);
    QCOMPARE(desk.todoRequests->size(), 1);
    const auto address = desk.todoRequests->at(0).at(0).value<EntryAddress>();
    QCOMPARE(address.fileIndex, 1);
    QCOMPARE(address.entryId, desk.idOf(u"z"_s, 1));
    QVERIFY(!desk.somethingWritten());

    // A new entry counts as soon as its text was typed: the command writes it first.
    desk.goToNewAfter(u"z"_s, 1);
    desk.type(u"zz"_s);
    desk.run(Command::AddEntryToTodoListAndShow);
    QCOMPARE(desk.todoRequests->size(), 1);
    QCOMPARE(desk.todoRequests->at(0).at(0).value<EntryAddress>().entryId, desk.idOf(u"zz"_s, 1));
}

void HierarchyCommandTableTest::addToTodoListRefusesWhatIsNotToDo_data()
{
    QTest::addColumn<QString>("outline");
    QTest::newRow("done") << u"x entry\n"_s;
    QTest::newRow("won't do") << u"/ entry\n"_s;
    QTest::newRow("category") << u"* entry\n"_s;
}

void HierarchyCommandTableTest::addToTodoListRefusesWhatIsNotToDo()
{
    QFETCH(const QString, outline);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, outline);
    desk.start();
    desk.goTo(u"entry"_s);
    desk.run(Command::AddEntryToTodoListAndShow);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.todoRequests->size(), 0);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyCommandTableTest::afterFourHoursACommandBringsTheReminder()
{
    HierarchyDesk desk;
    setUp(desk);
    QDateTime now(QDate(2026, 3, 4), QTime(8, 0));
    desk.files->setClock([&now] { return now; });
    desk.goTo(u"b"_s);
    desk.type(u"better"_s);
    desk.run(Command::CommitEdit);
    now = now.addSecs(4 * 3600 + 1);
    desk.forget();

    QString whereInTheBox;
    BoxAnswer answer([&](QMessageBox *box) {
        whereInTheBox = desk.where();
        box->button(QMessageBox::Save)->click();
    });
    desk.run(Command::GoToNext);

    QVERIFY(answer.wasShown());
    QVERIFY(answer.text().startsWith(u"You haven't saved your changes for a long time."_s));
    // The window shows the new position before the question comes.
    QCOMPARE(whereInTheBox, u"one.bdl: better <c> -"_s);
    QCOMPARE(desk.changed->size(), 1);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyCommandTableTest::aRefusedCommandBringsNoReminder()
{
    HierarchyDesk desk;
    setUp(desk);
    QDateTime now(QDate(2026, 3, 4), QTime(8, 0));
    desk.files->setClock([&now] { return now; });
    desk.goTo(u"b"_s);
    desk.type(u"better"_s);
    desk.run(Command::CommitEdit);
    now = now.addSecs(4 * 3600 + 1);

    BoxAnswer answer(BoxAnswer::press(QMessageBox::Save));
    desk.run(Command::MoveCurrentLeft);
    desk.run(Command::Hide);
    QTest::qWait(30);
    QVERIFY(!answer.wasShown());
    QVERIFY(desk.somethingWritten());
}

QTEST_MAIN(HierarchyCommandTableTest)
#include "HierarchyCommandTableTest.moc"
