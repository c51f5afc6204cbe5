// SPDX-License-Identifier: MIT
// What the toolkit and the X server really deliver for the difficult bindings, layout by layout.
#include "platform/KeyLookup.h"
#include "x11/XTools.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QtTest>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

const QString ctrl = u"37"_s;
const QString shift = u"50"_s;
const QString altGr = u"108"_s;

/// Notes what each press that is no modifier alone means.
class KeyWindow : public QWidget
{
public:
    QList<Command> commands;
    QList<int> firstKeys;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (KeyLookup::isModifierOrLockKey(event->key()))
            return;
        const Qt::KeyboardModifiers held = QGuiApplication::keyboardModifiers();
        commands.append(KeyLookup::command(*event, held));
        firstKeys.append(KeyLookup::candidates(*event, held).constFirst().key);
    }
};

} // namespace

class X11KeyLookupTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void pressesMeanTheseCommands_data();
    void pressesMeanTheseCommands();
    void altLettersOfARussianKeyboardAreThoseOfItsLatinOne();
    void aPressOfALockOrModifierKeyAloneIsRecognised();

private:
    std::unique_ptr<KeyWindow> m_window;
    QString m_layouts;
};

void X11KeyLookupTest::initTestCase()
{
    m_window = std::make_unique<KeyWindow>();
    m_window->resize(300, 200);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void X11KeyLookupTest::cleanupTestCase()
{
    m_window.reset();
    XTools::setLayout(u"us"_s);
}

void X11KeyLookupTest::pressesMeanTheseCommands_data()
{
    QTest::addColumn<QString>("layouts");
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("held");
    QTest::addColumn<Command>("command");
    const auto row = [](const char *name, const char *layouts, int group, int code,
                        const QStringList &held, Command command) {
        QTest::newRow(name) << QString::fromLatin1(layouts) << group << QString::number(code)
                            << held << command;
    };
    const QStringList ctrlShift{ctrl, shift};
    row("us Ctrl+[", "us", 0, 34, {ctrl}, Command::GoToFirst);
    row("us Ctrl+Shift+[", "us", 0, 34, ctrlShift, Command::MoveCurrentToTop);
    row("us Ctrl+Shift+]", "us", 0, 35, ctrlShift, Command::MoveCurrentToBottom);
    row("us Ctrl+Shift+=", "us", 0, 21, ctrlShift, Command::AddEntryToTodoListAndShow);
    row("us Ctrl+Shift+/", "us", 0, 61, ctrlShift, Command::ShowHelp);
    row("us Ctrl+Shift+Backspace", "us", 0, 22, ctrlShift, Command::DiscardChanges);
    row("us Ctrl+Shift+Delete", "us", 0, 119, ctrlShift, Command::DiscardChanges);
    row("us keypad Enter", "us", 0, 104, {}, Command::SaveChangesAndHide);
    row("us Ctrl+Alt+K is nothing", "us", 0, 45, {ctrl, u"64"_s}, Command::NoCommand);

    row("de Ctrl+AltGr+8", "de", 0, 17, {ctrl, altGr}, Command::GoToFirst);
    row("de Ctrl+Shift+AltGr+8", "de", 0, 17, {ctrl, shift, altGr}, Command::MoveCurrentToTop);
    row("de Ctrl+AltGr+9", "de", 0, 18, {ctrl, altGr}, Command::GoToLast);
    row("de Ctrl+Shift+AltGr+9", "de", 0, 18, {ctrl, shift, altGr}, Command::MoveCurrentToBottom);
    row("de Ctrl+Shift+7", "de", 0, 16, ctrlShift, Command::ShowHelp);
    row("de Ctrl+7", "de", 0, 16, {ctrl}, Command::ShowHelp);
    row("de Ctrl+Shift+0", "de", 0, 19, ctrlShift, Command::AddEntryToTodoListAndShow);
    row("de Ctrl+0", "de", 0, 19, {ctrl}, Command::AddEntryToTodoListAndShow);
    row("de Ctrl+AltGr+Q is nothing", "de", 0, 24, {ctrl, altGr}, Command::NoCommand);

    row("fr Ctrl+AltGr+5", "fr", 0, 14, {ctrl, altGr}, Command::GoToFirst);
    row("fr Ctrl+Shift+AltGr+5", "fr", 0, 14, {ctrl, shift, altGr}, Command::MoveCurrentToTop);
    row("fr Ctrl+AltGr+)", "fr", 0, 20, {ctrl, altGr}, Command::GoToLast);
    row("fr Ctrl+Shift+AltGr+)", "fr", 0, 20, {ctrl, shift, altGr}, Command::MoveCurrentToBottom);
    row("fr Ctrl+:", "fr", 0, 60, {ctrl}, Command::ShowHelp);
    row("fr Ctrl+Shift+:", "fr", 0, 60, ctrlShift, Command::ShowHelp);
    row("fr Ctrl+=", "fr", 0, 21, {ctrl}, Command::AddEntryToTodoListAndShow);
    row("fr Ctrl+Shift+=", "fr", 0, 21, ctrlShift, Command::AddEntryToTodoListAndShow);
    row("fr Ctrl+A is nothing", "fr", 0, 24, {ctrl}, Command::NoCommand);
    row("fr Ctrl+Z is nothing", "fr", 0, 25, {ctrl}, Command::NoCommand);
    row("fr Ctrl+Q", "fr", 0, 38, {ctrl}, Command::Exit);

    for (const auto &[layouts, group] : {std::pair("ru", 0), std::pair("us,ru", 1)}) {
        const auto russian
            = [&](const char *what, int code, const QStringList &held, Command command) {
                  row(qPrintable(QString::fromLatin1(layouts) + u' ' + QString::fromLatin1(what)),
                      layouts, group, code, held, command);
              };
        russian("Ctrl+slash", 61, {ctrl}, Command::ShowHelp);
        russian("Ctrl+Shift+slash", 61, ctrlShift, Command::ShowHelp);
        russian("Ctrl+period", 60, {ctrl}, Command::CommitEdit);
        russian("Ctrl+K", 45, {ctrl}, Command::GoToPrevious);
        russian("Ctrl+Shift+K", 45, ctrlShift, Command::MoveCurrentUp);
        russian("Ctrl+[", 34, {ctrl}, Command::GoToFirst);
        russian("Ctrl+Shift+]", 35, ctrlShift, Command::MoveCurrentToBottom);
        russian("Ctrl+Shift+=", 21, ctrlShift, Command::AddEntryToTodoListAndShow);
        QTest::addRow("%s Escape", layouts) << QString::fromLatin1(layouts) << group << u"Escape"_s
                                            << QStringList{} << Command::Hide;
        russian("Return", 36, {}, Command::SaveChangesAndHide);
    }
}

void X11KeyLookupTest::pressesMeanTheseCommands()
{
    QFETCH(QString, layouts);
    QFETCH(int, group);
    QFETCH(QString, key);
    QFETCH(QStringList, held);
    QFETCH(Command, command);
    if (std::exchange(m_layouts, layouts) != layouts)
        QVERIFY(XTools::setLayout(layouts));
    XTools::lockGroup(static_cast<quint8>(group));
    m_window->commands.clear();
    QVERIFY(XTools::press(key, held));
    QTRY_COMPARE(m_window->commands, QList<Command>{command});
}

void X11KeyLookupTest::altLettersOfARussianKeyboardAreThoseOfItsLatinOne()
{
    for (const auto &[layouts, group] : {std::pair("ru", 0), std::pair("us,ru", 1)}) {
        QVERIFY(XTools::setLayout(QString::fromLatin1(layouts)));
        XTools::lockGroup(static_cast<quint8>(group));
        m_window->firstKeys.clear();
        QVERIFY(XTools::press(u"38"_s, {u"64"_s}));
        QTRY_COMPARE(m_window->firstKeys, QList<int>{Qt::Key_A});
    }
}

void X11KeyLookupTest::aPressOfALockOrModifierKeyAloneIsRecognised()
{
    QVERIFY(XTools::setLayout(u"de"_s));
    XTools::lockGroup(0);
    m_window->commands.clear();
    for (const char *key : {"Shift_L", "Control_R", "Alt_L", "ISO_Level3_Shift", "Super_L",
                            "Caps_Lock", "Caps_Lock", "Num_Lock", "Num_Lock", "Scroll_Lock"})
        QVERIFY(XTools::press(QString::fromLatin1(key)));
    QTest::qWait(200);
    QCOMPARE(m_window->commands, QList<Command>{});
    QVERIFY(XTools::press(u"Return"_s));
    QTRY_COMPARE(m_window->commands, QList<Command>{Command::SaveChangesAndHide});
}

QTEST_MAIN(X11KeyLookupTest)
#include "X11KeyLookupTest.moc"
