// SPDX-License-Identifier: MIT
// The bindings on real layouts: compiled by xkbcommon from the system's keyboard data, as an X
// server does, so that no server is needed.
#include "model/GlobalKeyMap.h"
#include "platform/KeyOrder.h"
#include "platform/XkbKeymapReader.h"

#include <QtTest>
#include <xkbcommon/xkbcommon.h>

using namespace Qt::StringLiterals;

namespace
{

constexpr Qt::KeyboardModifiers plain = Qt::NoModifier;
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers altGr = Qt::GroupSwitchModifier;

struct Row {
    Qt::KeyboardModifiers modifiers;
    int key;
    Command command;
};

/// What the key map promises; written down here once more, so that the map can't hide its own gaps.
const std::vector<Row> bindings{
    {ctrl, Qt::Key_R, Command::ShowCreateReportDialog},
    {ctrl, Qt::Key_Comma, Command::ShowSettingsDialog},
    {ctrl, Qt::Key_Q, Command::Exit},
    {ctrl, Qt::Key_E, Command::ActivateTodoListWindow},
    {ctrl, Qt::Key_F, Command::ShowFindWindow},
    {ctrl, Qt::Key_Slash, Command::ShowHelp},
    {ctrlShift, Qt::Key_Slash, Command::ShowHelp},
    {ctrlShift, Qt::Key_Delete, Command::DiscardChanges},
    {ctrlShift, Qt::Key_Backspace, Command::DiscardChanges},
    {ctrl, Qt::Key_H, Command::GoToParent},
    {ctrl, Qt::Key_BracketLeft, Command::GoToFirst},
    {ctrl, Qt::Key_K, Command::GoToPrevious},
    {ctrl, Qt::Key_J, Command::GoToNext},
    {ctrl, Qt::Key_BracketRight, Command::GoToLast},
    {ctrl, Qt::Key_L, Command::GoToChild},
    {ctrl, Qt::Key_N, Command::NewSibling},
    {ctrl, Qt::Key_D, Command::MarkCurrentDone},
    {ctrl, Qt::Key_T, Command::MarkCurrentTodo},
    {ctrlShift, Qt::Key_D, Command::MarkCurrentWontDo},
    {ctrl, Qt::Key_O, Command::MarkCurrentCategory},
    {ctrlShift, Qt::Key_H, Command::MoveCurrentLeft},
    {ctrlShift, Qt::Key_BracketLeft, Command::MoveCurrentToTop},
    {ctrlShift, Qt::Key_K, Command::MoveCurrentUp},
    {ctrlShift, Qt::Key_J, Command::MoveCurrentDown},
    {ctrlShift, Qt::Key_BracketRight, Command::MoveCurrentToBottom},
    {ctrlShift, Qt::Key_L, Command::MoveCurrentRight},
    {ctrl, Qt::Key_S, Command::RegisterShortcut},
    {ctrl, Qt::Key_Equal, Command::AddEntryToTodoListAndShow},
    {ctrlShift, Qt::Key_Equal, Command::AddEntryToTodoListAndShow},
    {plain, Qt::Key_Return, Command::SaveChangesAndHide},
    {plain, Qt::Key_Enter, Command::SaveChangesAndHide},
    {plain, Qt::Key_Escape, Command::Hide},
    {ctrl, Qt::Key_W, Command::Hide},
    {ctrl, Qt::Key_Period, Command::CommitEdit},
};

struct Context {
    std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context{
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref};
};

xkb_keymap *compile(const QString &layouts)
{
    const Context context;
    const QByteArray names = layouts.toLatin1();
    xkb_rule_names rules{};
    rules.rules = "evdev";
    rules.model = "pc105";
    rules.layout = names.constData();
    return xkb_keymap_new_from_names(context.context.get(), &rules, XKB_KEYMAP_COMPILE_NO_FLAGS);
}

/// A keyboard with the given layouts, one of them active.
class Keyboard
{
public:
    Keyboard(const QString &layouts, int active)
        : m_keymap(compile(layouts))
        , m_reader(xkb_keymap_ref(m_keymap))
        , m_active(active)
    {
    }
    ~Keyboard() { xkb_keymap_unref(m_keymap); }
    Q_DISABLE_COPY_MOVE(Keyboard)

    quint32 code(const char *place) const { return xkb_keymap_key_by_name(m_keymap, place); }

    /// What the toolkit makes of the key: the symbol of the active layout at the level held.
    int toolkitKey(quint32 code, Qt::KeyboardModifiers held) const
    {
        const std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> state(xkb_state_new(m_keymap),
                                                                           xkb_state_unref);
        xkb_mod_mask_t modifiers = 0;
        if (held.testFlag(Qt::ShiftModifier))
            modifiers |= bit("Shift");
        if (held.testFlag(Qt::ControlModifier))
            modifiers |= bit("Control");
        if (held.testFlag(Qt::GroupSwitchModifier))
            modifiers |= bit("Mod5");
        xkb_state_update_mask(state.get(), modifiers, 0, 0, 0, 0,
                              static_cast<xkb_layout_index_t>(m_active));
        const xkb_keysym_t symbol = xkb_state_key_get_one_sym(state.get(), code);
        switch (symbol) {
        case XKB_KEY_Return:
            return Qt::Key_Return;
        case XKB_KEY_KP_Enter:
            return Qt::Key_Enter;
        case XKB_KEY_Escape:
            return Qt::Key_Escape;
        case XKB_KEY_Delete:
            return Qt::Key_Delete;
        case XKB_KEY_BackSpace:
            return Qt::Key_Backspace;
        default:
            return XkbKeymapReader::qtKey(symbol);
        }
    }

    /// The command of a press of the key at \a code with \a held.
    Command press(quint32 code, Qt::KeyboardModifiers held) const
    {
        const Qt::KeyboardModifiers counted = held & ~altGr;
        for (const int key :
             KeyOrder::keys(toolkitKey(code, held), held.testFlag(Qt::GroupSwitchModifier),
                            m_reader.physicalKey(code, m_active))) {
            const Command command = Global::getCommand(counted, key);
            if (command != Command::NoCommand)
                return command;
        }
        return Command::NoCommand;
    }

    /// The keys that a press can mean.
    QList<int> keys(quint32 code, Qt::KeyboardModifiers held) const
    {
        return KeyOrder::keys(toolkitKey(code, held), held.testFlag(Qt::GroupSwitchModifier),
                              m_reader.physicalKey(code, m_active));
    }

private:
    xkb_mod_mask_t bit(const char *modifier) const
    {
        return 1U << xkb_keymap_mod_get_index(m_keymap, modifier);
    }

    xkb_keymap *m_keymap;
    XkbKeymapReader m_reader;
    int m_active;
};

void addLayouts()
{
    QTest::addColumn<QString>("layouts");
    QTest::addColumn<int>("active");
    QTest::newRow("us") << u"us"_s << 0;
    QTest::newRow("de") << u"de"_s << 0;
    QTest::newRow("fr") << u"fr"_s << 0;
    QTest::newRow("ru") << u"ru"_s << 0;
    QTest::newRow("us,ru with us active") << u"us,ru"_s << 0;
    QTest::newRow("us,ru with ru active") << u"us,ru"_s << 1;
    QTest::newRow("fr,ru with ru active") << u"fr,ru"_s << 1;
    QTest::newRow("us,fr with us active") << u"us,fr"_s << 0;
    QTest::newRow("us,fr with fr active") << u"us,fr"_s << 1;
    QTest::newRow("gr") << u"gr"_s << 0;
}

} // namespace

class LayoutBindingsTest : public QObject
{
    Q_OBJECT

private slots:
    void allBindingsAreReachable_data() { addLayouts(); }
    void allBindingsAreReachable();
    void aLatinLetterMeansItselfAlone_data();
    void aLatinLetterMeansItselfAlone();
    void pressesMeanTheseCommands_data();
    void pressesMeanTheseCommands();
    void scriptsAreToldApart_data();
    void scriptsAreToldApart();
    void groupIsKnownByWhatTheToolkitMadeOfThePress();
};

void LayoutBindingsTest::allBindingsAreReachable()
{
    QFETCH(QString, layouts);
    QFETCH(int, active);
    const Keyboard keyboard(layouts, active);
    QCOMPARE(bindings.size(), std::size_t(34));
    for (const Row &row : bindings) {
        bool reached = false;
        for (quint32 code = 9; code <= 119 && !reached; ++code) {
            for (const Qt::KeyboardModifiers held : {row.modifiers, row.modifiers | altGr}) {
                reached = reached
                    || (keyboard.keys(code, held).contains(row.key)
                        && keyboard.press(code, held) == row.command);
            }
        }
        QVERIFY2(reached, qPrintable(QString::number(row.key, 16)));
    }
}

void LayoutBindingsTest::aLatinLetterMeansItselfAlone_data()
{
    QTest::addColumn<QString>("layouts");
    QTest::addColumn<int>("active");
    for (const char *layout : {"us", "de", "fr", "be", "es", "pl", "tr", "us(dvorak)"})
        QTest::newRow(layout) << QString::fromLatin1(layout) << 0;
    QTest::newRow("us,fr") << u"us,fr"_s << 0;
    QTest::newRow("fr,us") << u"fr,us"_s << 0;
    QTest::newRow("us,us(dvorak)") << u"us,us(dvorak)"_s << 1;
}

void LayoutBindingsTest::aLatinLetterMeansItselfAlone()
{
    QFETCH(QString, layouts);
    QFETCH(int, active);
    const Keyboard keyboard(layouts, active);
    int letters = 0;
    for (quint32 code = 10; code <= 61; ++code) {
        const int key = keyboard.toolkitKey(code, ctrl);
        if (key < Qt::Key_A || key > Qt::Key_Z)
            continue;
        ++letters;
        for (const int candidate : keyboard.keys(code, ctrl)) {
            const bool boundElsewhere
                = candidate != key && Global::getCommand(ctrl, candidate) != Command::NoCommand;
            QVERIFY2(!boundElsewhere, qPrintable(QString(QChar(key))));
        }
    }
    QVERIFY(letters >= 26); // Turkish has two that are an I in capitals
}

void LayoutBindingsTest::pressesMeanTheseCommands_data()
{
    QTest::addColumn<QString>("layouts");
    QTest::addColumn<int>("active");
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<Qt::KeyboardModifiers>("held");
    QTest::addColumn<Command>("command");
    const auto row = [](const char *name, const char *layouts, int active, const char *place,
                        Qt::KeyboardModifiers held, Command command) {
        QTest::newRow(name) << QString::fromLatin1(layouts) << active << QByteArray(place) << held
                            << command;
    };
    row("us Ctrl+Shift+[", "us", 0, "AD11", ctrlShift, Command::MoveCurrentToTop);
    row("us Ctrl+Shift+]", "us", 0, "AD12", ctrlShift, Command::MoveCurrentToBottom);
    row("us Ctrl+Shift+=", "us", 0, "AE12", ctrlShift, Command::AddEntryToTodoListAndShow);
    row("us Ctrl+Shift+/", "us", 0, "AB10", ctrlShift, Command::ShowHelp);
    row("us Ctrl+;", "us", 0, "AC10", ctrl, Command::NoCommand);
    row("us Ctrl+Shift+.", "us", 0, "AB09", ctrlShift, Command::NoCommand);

    row("de Ctrl+AltGr+8", "de", 0, "AE08", ctrl | altGr, Command::GoToFirst);
    row("de Ctrl+Shift+AltGr+8", "de", 0, "AE08", ctrlShift | altGr, Command::MoveCurrentToTop);
    row("de Ctrl+AltGr+9", "de", 0, "AE09", ctrl | altGr, Command::GoToLast);
    row("de Ctrl+Shift+AltGr+9", "de", 0, "AE09", ctrlShift | altGr, Command::MoveCurrentToBottom);
    row("de Ctrl+7, the slash's key", "de", 0, "AE07", ctrl, Command::ShowHelp);
    row("de Ctrl+Shift+7 (slash)", "de", 0, "AE07", ctrlShift, Command::ShowHelp);
    row("de Ctrl+0, the equal sign's key", "de", 0, "AE10", ctrl,
        Command::AddEntryToTodoListAndShow);
    row("de Ctrl+Shift+0 (=)", "de", 0, "AE10", ctrlShift, Command::AddEntryToTodoListAndShow);
    row("de Ctrl+AltGr+Q is the at sign", "de", 0, "AD01", ctrl | altGr, Command::NoCommand);
    row("de Ctrl+AltGr+E is the euro sign", "de", 0, "AD03", ctrl | altGr, Command::NoCommand);
    row("de Ctrl+Y", "de", 0, "AB01", ctrl, Command::NoCommand);
    row("de Ctrl+ue at the bracket's US place", "de", 0, "AD11", ctrl, Command::GoToFirst);

    row("fr Ctrl+A is not the US Q", "fr", 0, "AD01", ctrl, Command::NoCommand);
    row("fr Ctrl+Z is not the US W", "fr", 0, "AD02", ctrl, Command::NoCommand);
    row("fr Ctrl+Q", "fr", 0, "AC01", ctrl, Command::Exit);
    row("fr Ctrl+W", "fr", 0, "AB01", ctrl, Command::Hide);
    row("fr Ctrl+,", "fr", 0, "AB07", ctrl, Command::ShowSettingsDialog);
    row("fr Ctrl+AltGr+5", "fr", 0, "AE05", ctrl | altGr, Command::GoToFirst);
    row("fr Ctrl+Shift+AltGr+5", "fr", 0, "AE05", ctrlShift | altGr, Command::MoveCurrentToTop);
    row("fr Ctrl+:, the slash's key", "fr", 0, "AB09", ctrl, Command::ShowHelp);
    row("fr Ctrl+Shift+: (slash)", "fr", 0, "AB09", ctrlShift, Command::ShowHelp);
    row("fr Ctrl+;, the period's key", "fr", 0, "AB08", ctrl, Command::CommitEdit);
    row("fr Ctrl+=", "fr", 0, "AE12", ctrl, Command::AddEntryToTodoListAndShow);
    row("fr Ctrl+Shift+=", "fr", 0, "AE12", ctrlShift, Command::AddEntryToTodoListAndShow);

    for (const auto &[layouts, active] : {std::pair("ru", 0), std::pair("us,ru", 1)}) {
        const auto russian = [&](const char *what, const char *place, Qt::KeyboardModifiers held,
                                 Command command) {
            row(qPrintable(QString::fromLatin1(layouts) + u' ' + QString::fromLatin1(what)),
                layouts, active, place, held, command);
        };
        russian("Ctrl+slash is not Ctrl+period", "AB10", ctrl, Command::ShowHelp);
        russian("Ctrl+Shift+slash", "AB10", ctrlShift, Command::ShowHelp);
        russian("Ctrl+period", "AB09", ctrl, Command::CommitEdit);
        russian("Ctrl+comma", "AB08", ctrl, Command::ShowSettingsDialog);
        russian("Ctrl+K", "AC08", ctrl, Command::GoToPrevious);
        russian("Ctrl+Shift+K", "AC08", ctrlShift, Command::MoveCurrentUp);
        russian("Ctrl+[", "AD11", ctrl, Command::GoToFirst);
        russian("Ctrl+Shift+[", "AD11", ctrlShift, Command::MoveCurrentToTop);
        russian("Ctrl+Q", "AD01", ctrl, Command::Exit);
        russian("Return", "RTRN", plain, Command::SaveChangesAndHide);
    }
    row("us,fr Ctrl+A with us active", "us,fr", 0, "AC01", ctrl, Command::NoCommand);
    row("us,fr Ctrl+A with fr active", "us,fr", 1, "AD01", ctrl, Command::NoCommand);
    row("dvorak Ctrl+Z", "us(dvorak)", 0, "AB10", ctrl, Command::NoCommand);
    row("dvorak Ctrl+V", "us(dvorak)", 0, "AB09", ctrl, Command::NoCommand);
    row("dvorak Ctrl+apostrophe", "us(dvorak)", 0, "AD01", ctrl, Command::NoCommand);
}

void LayoutBindingsTest::pressesMeanTheseCommands()
{
    QFETCH(QString, layouts);
    QFETCH(int, active);
    QFETCH(QByteArray, place);
    QFETCH(Qt::KeyboardModifiers, held);
    QFETCH(Command, command);
    const Keyboard keyboard(layouts, active);
    QCOMPARE(keyboard.press(keyboard.code(place.constData()), held), command);
}

void LayoutBindingsTest::scriptsAreToldApart_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<bool>("latin");
    for (const char *layout : {"us", "de", "fr", "cz", "tr", "pl", "us(dvorak)", "fr(bepo)"})
        QTest::newRow(layout) << QString::fromLatin1(layout) << true;
    for (const char *layout : {"ru", "gr", "ua", "il", "ara", "ge", "th"})
        QTest::newRow(layout) << QString::fromLatin1(layout) << false;
}

void LayoutBindingsTest::scriptsAreToldApart()
{
    QFETCH(QString, layout);
    QFETCH(bool, latin);
    const XkbKeymapReader reader(compile(layout));
    const PhysicalKey key = reader.physicalKey(38, 0);
    QCOMPARE(key.groups.size(), 1);
    QCOMPARE(key.groups[0].latin, latin);
}

void LayoutBindingsTest::groupIsKnownByWhatTheToolkitMadeOfThePress()
{
    constexpr quint32 usK = 45;
    constexpr quint32 usSlash = 61;
    constexpr int cyrillicEl = 0x41b;
    const XkbKeymapReader reader(compile(u"us,ru"_s));
    QCOMPARE(reader.groupOf(usK, Qt::Key_K), 0);
    QCOMPARE(reader.groupOf(usK, cyrillicEl), 1);
    QCOMPARE(reader.groupOf(usSlash, Qt::Key_Question), 0);
    QCOMPARE(reader.groupOf(usSlash, Qt::Key_Period), 1);
    QCOMPARE(reader.groupOf(usSlash, Qt::Key_F1), 0);
}

QTEST_GUILESS_MAIN(LayoutBindingsTest)
#include "LayoutBindingsTest.moc"
