// SPDX-License-Identifier: MIT
#include "model/KeyCommandMap.h"
#include "model/GlobalKeyMap.h"

#include <QTest>
#include <set>

using namespace Qt::StringLiterals;

namespace
{
constexpr int ctrl = 0x04000000;
constexpr int ctrlShift = 0x06000000;
constexpr int keypad = 0x20000000;

/// One row of the table of bindings, written in numbers.
struct Row {
    int modifiers;
    int key;
    bool preferred;
    const char *name;
    int command;
};

const Row table[] = {
    {ctrl, 0x52, true, "ShowCreateReportDialog", 25},
    {ctrl, 0x2c, true, "ShowSettingsDialog", 26},
    {ctrl, 0x51, true, "Exit", 28},
    {ctrl, 0x45, true, "ActivateTodoListWindow", 23},
    {ctrl, 0x46, true, "ShowFindWindow", 24},
    {ctrl, 0x2f, true, "ShowHelp", 27},
    {ctrlShift, 0x2f, false, "ShowHelp", 27},
    {ctrlShift, 0x01000007, true, "DiscardChanges", 16},
    {ctrlShift, 0x01000003, false, "DiscardChanges", 16},
    {ctrl, 0x48, true, "GoToParent", 1},
    {ctrl, 0x5b, true, "GoToFirst", 2},
    {ctrl, 0x4b, true, "GoToPrevious", 3},
    {ctrl, 0x4a, true, "GoToNext", 4},
    {ctrl, 0x5d, true, "GoToLast", 5},
    {ctrl, 0x4c, true, "GoToChild", 6},
    {ctrl, 0x4e, true, "NewSibling", 13},
    {ctrl, 0x44, true, "MarkCurrentDone", 17},
    {ctrl, 0x54, true, "MarkCurrentTodo", 18},
    {ctrlShift, 0x44, true, "MarkCurrentWontDo", 19},
    {ctrl, 0x4f, true, "MarkCurrentCategory", 20},
    {ctrlShift, 0x48, true, "MoveCurrentLeft", 7},
    {ctrlShift, 0x5b, true, "MoveCurrentToTop", 8},
    {ctrlShift, 0x4b, true, "MoveCurrentUp", 9},
    {ctrlShift, 0x4a, true, "MoveCurrentDown", 10},
    {ctrlShift, 0x5d, true, "MoveCurrentToBottom", 11},
    {ctrlShift, 0x4c, true, "MoveCurrentRight", 12},
    {ctrl, 0x53, true, "RegisterShortcut", 21},
    {ctrl, 0x3d, true, "AddEntryToTodoListAndShow", 22},
    {ctrlShift, 0x3d, false, "AddEntryToTodoListAndShow", 22},
    {0, 0x01000004, true, "SaveChangesAndHide", 15},
    {0, 0x01000005, false, "SaveChangesAndHide", 15},
    {0, 0x01000000, true, "Hide", 14},
    {ctrl, 0x57, false, "Hide", 14},
    {ctrl, 0x2e, false, "", 29},
};

Qt::KeyboardModifiers flags(int modifiers)
{
    return Qt::KeyboardModifiers::fromInt(modifiers);
}
} // namespace

/// The table of key combinations and the names of commands.
class KeyCommandMapTest : public QObject
{
    Q_OBJECT

private slots:
    void binding_data();
    void binding();
    void thirtyFourCombinationsAreBoundAndNoOther();
    void letterWithAndWithoutShiftIsAnotherCommand();
    void enterAndReturnMeanTheSame();
    void laterBindingOfACombinationReplacesTheEarlier();
    void laterPreferredCombinationReplacesTheEarlier();
    void unknownNamesHaveNoCombination_data();
    void unknownNamesHaveNoCombination();
    void preferredCombinationIsTheOneWithoutShift();
    void commandsWithoutACombinationToShow();
    void registeringDropsTheKeypadFlag();
    void combinationsAreOrderedByModifiersThenKeyAsSignedNumbers();
    void processWideMapAnswersTheSame();
};

void KeyCommandMapTest::binding_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < int(std::size(table)); ++i)
        QTest::addRow("%d %x+%x %s", i + 1, unsigned(table[i].modifiers), unsigned(table[i].key),
                      table[i].name)
            << i;
}

void KeyCommandMapTest::binding()
{
    QFETCH(int, row);
    const Row &expected = table[row];
    const KeyCommandMap map;
    const auto command = static_cast<Command>(expected.command);
    QCOMPARE(map.getCommand(flags(expected.modifiers), expected.key), command);
    // On the numeric keypad the same key means the same.
    QCOMPARE(map.getCommand(flags(expected.modifiers | keypad), expected.key), command);

    const KeyCommandMap::KeyCombo *const shown = map.getPreferredKeyCombo(command);
    const bool isShown
        = shown && shown->modifiers == flags(expected.modifiers) && shown->key == expected.key;
    QCOMPARE(isShown, expected.preferred);
    const QString name = QString::fromLatin1(expected.name);
    if (!name.isEmpty())
        QCOMPARE(map.getPreferredKeyComboByName(name), shown);
}

void KeyCommandMapTest::thirtyFourCombinationsAreBoundAndNoOther()
{
    const KeyCommandMap map;
    int bound = 0;
    const int shift = 0x02000000;
    const int alt = 0x08000000;
    const int meta = 0x10000000;
    for (int bits = 0; bits < 16; ++bits) {
        const int modifiers = (bits & 1 ? shift : 0) | (bits & 2 ? ctrl : 0) | (bits & 4 ? alt : 0)
            | (bits & 8 ? meta : 0);
        for (const int start : {0, 0x01000000})
            for (int key = start; key < start + 0x200; ++key)
                bound += map.getCommand(flags(modifiers), key) == Command::NoCommand ? 0 : 1;
    }
    QCOMPARE(bound, 34);
}

void KeyCommandMapTest::letterWithAndWithoutShiftIsAnotherCommand()
{
    const KeyCommandMap map;
    QCOMPARE(map.getCommand(Qt::ControlModifier, Qt::Key_D), Command::MarkCurrentDone);
    QCOMPARE(map.getCommand(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_D),
             Command::MarkCurrentWontDo);
    QCOMPARE(map.getCommand(Qt::ShiftModifier, Qt::Key_D), Command::NoCommand);
    QCOMPARE(map.getCommand(Qt::NoModifier, Qt::Key_D), Command::NoCommand);
}

void KeyCommandMapTest::enterAndReturnMeanTheSame()
{
    const KeyCommandMap map;
    QCOMPARE(map.getCommand(Qt::NoModifier, Qt::Key_Return), Command::SaveChangesAndHide);
    QCOMPARE(map.getCommand(Qt::NoModifier, Qt::Key_Enter), Command::SaveChangesAndHide);
    QCOMPARE(map.getCommand(Qt::KeypadModifier, Qt::Key_Enter), Command::SaveChangesAndHide);
    QCOMPARE(map.getCommand(Qt::ShiftModifier, Qt::Key_Return), Command::NoCommand);
}

void KeyCommandMapTest::laterBindingOfACombinationReplacesTheEarlier()
{
    KeyCommandMap map;
    map.registerCommand(Qt::ControlModifier, Qt::Key_R, false, Command::GoToLast);
    QCOMPARE(map.getCommand(Qt::ControlModifier, Qt::Key_R), Command::GoToLast);
    // What is shown for the two commands is another table.
    QCOMPARE(map.getPreferredKeyComboByName(u"ShowCreateReportDialog"_s)->key, int(Qt::Key_R));
    QCOMPARE(map.getPreferredKeyComboByName(u"GoToLast"_s)->key, int(Qt::Key_BracketRight));
}

void KeyCommandMapTest::laterPreferredCombinationReplacesTheEarlier()
{
    KeyCommandMap map;
    map.registerCommand(Qt::AltModifier, Qt::Key_F1, true, Command::ShowHelp);
    const KeyCommandMap::KeyCombo *const shown = map.getPreferredKeyCombo(Command::ShowHelp);
    QVERIFY(shown);
    QCOMPARE(shown->key, int(Qt::Key_F1));
    QCOMPARE(shown->modifiers, Qt::KeyboardModifiers(Qt::AltModifier));
    // The former one still works.
    QCOMPARE(map.getCommand(Qt::ControlModifier, Qt::Key_Slash), Command::ShowHelp);
}

void KeyCommandMapTest::unknownNamesHaveNoCombination_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown") << u"Unknown"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("no command") << u"NoCommand"_s;
    QTest::newRow("the command without a name") << u"CommitEdit"_s;
    QTest::newRow("other case") << u"showhelp"_s;
    QTest::newRow("with brackets") << u"[ShowHelp]"_s;
}

void KeyCommandMapTest::unknownNamesHaveNoCombination()
{
    QFETCH(QString, name);
    QVERIFY(!KeyCommandMap().getPreferredKeyComboByName(name));
}

void KeyCommandMapTest::preferredCombinationIsTheOneWithoutShift()
{
    const KeyCommandMap map;
    const KeyCommandMap::KeyCombo *const shown = map.getPreferredKeyComboByName(u"ShowHelp"_s);
    QVERIFY(shown);
    QCOMPARE(shown->modifiers, Qt::KeyboardModifiers(Qt::ControlModifier));
    QCOMPARE(shown->key, int(Qt::Key_Slash));
}

void KeyCommandMapTest::commandsWithoutACombinationToShow()
{
    const KeyCommandMap map;
    for (int i = 0; i <= 29; ++i) {
        const auto command = static_cast<Command>(i);
        const bool none = command == Command::NoCommand || command == Command::CommitEdit;
        QVERIFY2((map.getPreferredKeyCombo(command) == nullptr) == none,
                 qPrintable(QString::number(i)));
    }
}

void KeyCommandMapTest::registeringDropsTheKeypadFlag()
{
    KeyCommandMap map;
    map.registerCommand(Qt::KeypadModifier | Qt::AltModifier, Qt::Key_5, true, Command::GoToFirst);
    QCOMPARE(map.getCommand(Qt::AltModifier, Qt::Key_5), Command::GoToFirst);
    QCOMPARE(map.getCommand(Qt::AltModifier | Qt::KeypadModifier, Qt::Key_5), Command::GoToFirst);
    QCOMPARE(map.getPreferredKeyCombo(Command::GoToFirst)->modifiers,
             Qt::KeyboardModifiers(Qt::AltModifier));
}

void KeyCommandMapTest::combinationsAreOrderedByModifiersThenKeyAsSignedNumbers()
{
    using Combo = KeyCommandMap::KeyCombo;
    const Combo plain{Qt::NoModifier, 0x01000004};
    const Combo shifted{Qt::ShiftModifier, 0x41};
    const Combo control{Qt::ControlModifier, 0x41};
    const Combo controlLater{Qt::ControlModifier, 0x42};
    const Combo negativeKey{Qt::ControlModifier, -1};
    QVERIFY(plain < shifted);
    QVERIFY(shifted < control);
    QVERIFY(control < controlLater);
    QVERIFY(negativeKey < control);
    QVERIFY(!(control < control));
    QVERIFY(!(controlLater < control));
}

void KeyCommandMapTest::processWideMapAnswersTheSame()
{
    for (const Row &row : table)
        QCOMPARE(Global::getCommand(flags(row.modifiers), row.key),
                 static_cast<Command>(row.command));
    QCOMPARE(Global::getCommand(Qt::NoModifier, Qt::Key_A), Command::NoCommand);
    QVERIFY(!Global::getPreferredKeyComboByName(u"NoCommand"_s));
    const KeyCommandMap::KeyCombo *const shown = Global::getPreferredKeyComboByName(u"Hide"_s);
    QVERIFY(shown);
    QCOMPARE(shown->key, int(Qt::Key_Escape));
}

QTEST_APPLESS_MAIN(KeyCommandMapTest)
#include "KeyCommandMapTest.moc"
