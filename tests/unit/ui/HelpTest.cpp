// SPDX-License-Identifier: MIT
#include "ui/Help.h"
#include "fakes/OtherLanguage.h"
#include "fakes/RecordingNativeSupport.h"
#include "model/GlobalKeyMap.h"
#include "shared/TextHelpers.h"
#include "unit/ui/DialogDesk.h"

#include <QFormLayout>

using namespace Qt::StringLiterals;

namespace
{
/// A desktop whose names for keys can't be confused with any other text.
class OddSupport : public RecordingNativeSupport
{
public:
    QString renderKeyCombo(KeyCommandMap::KeyCombo *combo) override
    {
        if (!combo)
            throw "bad";
        return u"keys %1/%2"_s.arg(combo->modifiers.toInt()).arg(combo->key);
    }
    QString getModifierSeparator() override { return u"~"_s; }
    QString getShortcutModifierKeySymbol() override { return u"Hyper"_s; }
    QString getActivationHotkeyPrefix() override { return u"Top~"_s; }
};

struct Row {
    const char *description;
    const char *keys;
};

constexpr Row mainWindowRows[] = {
    {"Scroll up", "Ctrl+K"},
    {"Scroll down", "Ctrl+J"},
    {"Scroll left (to parent)", "Ctrl+H"},
    {"Scroll right (to child, creating if necessary)", "Ctrl+L"},
    {"Scroll to top", "Ctrl+["},
    {"Scroll to bottom", "Ctrl+]"},
    {"Mark current entry <em>to-do</em>", "Ctrl+T"},
    {"Mark current entry <em>done</em>", "Ctrl+D"},
    {"Mark current entry <em>won't do</em>", "Ctrl+Shift+D"},
    {"Mark current entry as a <em>category</em>", "Ctrl+O"},
    {"Move current entry up", "Ctrl+Shift+K"},
    {"Move current entry down", "Ctrl+Shift+J"},
    {"Move current entry left", "Ctrl+Shift+H"},
    {"Move current entry right", "Ctrl+Shift+L"},
    {"Move current entry to top", "Ctrl+Shift+["},
    {"Move current entry to bottom", "Ctrl+Shift+]"},
    {"Create a new entry following this one", "Ctrl+N"},
    {"Add current entry to todo list", "Ctrl+="},
    {"Register shortcut key for current entry", "Ctrl+S <em>key</em>"},
    {"Invoke shortcut", "Alt+<em>key</em>"},
};

constexpr Row generalRows[] = {
    {"Show this help", "Ctrl+/"},
    {"Settings", "Ctrl+,"},
    {"Save changes and hide", "Return"},
    {"Hide", "Escape"},
    {"Discard changes", "Ctrl+Shift+Del"},
    {"Edit to-do list", "Ctrl+E"},
    {"Find", "Ctrl+F"},
    {"Create report", "Ctrl+R"},
    {"Quit", "Ctrl+Q"},
};

const char *const guideTokens[]
    = {"GoToPrevious", "GoToNext", "GoToParent", "GoToChild", "GoToFirst", "GoToLast",
       "MarkCurrentTodo", "MarkCurrentDone", "MarkCurrentWontDo", "MarkCurrentCategory",
       "MoveCurrentUp", "MoveCurrentDown", "MoveCurrentLeft", "MoveCurrentRight",
       "MoveCurrentToTop", "MoveCurrentToBottom", "NewSibling", "AddEntryToTodoListAndShow",
       "RegisterShortcut", "ShowSettingsDialog", "SaveChangesAndHide", "DiscardChanges",
       "ActivateTodoListWindow", "ShowFindWindow", "ShowCreateReportDialog", "Exit",
       // values
       "appname", "appversion", "copyrightnotice", "datafileextension", "defaultactivationperiod",
       "activationhotkeyprefix", "todocolor", "donecolor", "wontdocolor", "shortcutmodifier",
       "keycomboseparator"};

class HelpDesk
{
public:
    void show()
    {
        help.restoreShowAndActivate();
        if (!QTest::qWaitForWindowActive(&help))
            qFatal("the help does not become active");
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(help.windowHandle(), static_cast<Qt::Key>(key), modifiers);
    }
    template <typename Widget> Widget *child(const char *name) const
    {
        auto *widget = help.findChild<Widget *>(QString::fromLatin1(name));
        if (!widget)
            qFatal("no %s", name);
        return widget;
    }
    /// The rows of a group as "description | keys".
    QStringList rows(const char *group) const
    {
        QStringList texts;
        const auto *form = qobject_cast<QFormLayout *>(child<QGroupBox>(group)->layout());
        const auto text = [form](int row, QFormLayout::ItemRole role) {
            const auto *label = qobject_cast<QLabel *>(form->itemAt(row, role)->widget());
            return label ? label->text() : QString();
        };
        for (int row = 0; form && row < form->rowCount(); ++row)
            texts.append(text(row, QFormLayout::LabelRole) + u" | "_s
                         + text(row, QFormLayout::FieldRole));
        return texts;
    }
    QTextBrowser *guide() const { return child<QTextBrowser>("userGuide"); }

    TestSettings settings;
    RecordingNativeSupport native;
    Help help{&native};
};

QString guideSource()
{
    QFile file(u":/help/main.html"_s);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
} // namespace

class HelpTest : public QObject
{
    Q_OBJECT

private slots:
    void labelHoldingExitShowsItsKeyAndAppnameBecomesBrindle();
    void valuesAreReplaced_data();
    void valuesAreReplaced();
    void commandNamesBecomeTheirPreferredKeysAsTheDesktopWritesThem();
    void everyOccurrenceIsReplaced();
    void keysThatAreBracketsEndTheReplacing();
    void nameThatMeansNothingLosesItsBrackets_data();
    void nameThatMeansNothingLosesItsBrackets();
    void bracketsAroundOtherThanOneWordStay();
    void doubleBracesOfAllowedSignsBecomeSmallGreyPrint_data();
    void doubleBracesOfAllowedSignsBecomeSmallGreyPrint();
    void doubleBracesWithAnotherSignKeepTheirOuterBracesAndEmphasiseTheRest();
    void bracedWordIsEmphasisedAndEmptyBracesAreAnEmptyEmphasis_data();
    void bracedWordIsEmphasisedAndEmptyBracesAreAnEmptyEmphasis();
    void onlyDirectChildLabelsAreReplaced();
    void everyBindingOfTheMainWindowGroup();
    void everyBindingOfTheGeneralGroup();
    void keysAreWrittenAsTheDesktopWritesThem();
    void statusIndicatorsShowTheColoursOfTheMainWindow();
    void titleTabsAndVersionLine();
    void guideUsesEveryTokenAndAllAreReplaced();
    void guideHasAllSectionsInTheirOrder();
    void guideIsReadAsUtf8();
    void guideShowsIconAndMainWindow();
    void guideNamesTheKeysThatAreBound();
    void escapeHidesIt();
    void controlWHidesIt();
    void otherKeysDoNothing_data();
    void otherKeysDoNothing();
    void keysWorkWhileTheGuideHasTheKeyboard();
    void itsSizeIsFixed();
    void changeOfTheLanguageShowsNoTokens();
};

void HelpTest::labelHoldingExitShowsItsKeyAndAppnameBecomesBrindle()
{
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"[Exit]"_s), u"Ctrl+Q"_s);
    QCOMPARE(desk.help.doStringReplacement(u"[appname]"_s), u"Brindle"_s);
}

void HelpTest::valuesAreReplaced_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("appname") << u"appname"_s << u"Brindle"_s;
    QTest::newRow("datafileextension") << u"datafileextension"_s << u"bdl"_s;
    QTest::newRow("todocolor") << u"todocolor"_s << u"#4466FF"_s;
    QTest::newRow("donecolor") << u"donecolor"_s << u"#888888"_s;
    QTest::newRow("wontdocolor") << u"wontdocolor"_s << u"#FFCC44"_s;
    QTest::newRow("activationhotkeyprefix") << u"activationhotkeyprefix"_s << u"Top~"_s;
    QTest::newRow("defaultactivationperiod") << u"defaultactivationperiod"_s << u"30"_s;
    QTest::newRow("appversion") << u"appversion"_s << u"0.3"_s;
    QTest::newRow("shortcutmodifier") << u"shortcutmodifier"_s << u"Hyper"_s;
    QTest::newRow("keycomboseparator") << u"keycomboseparator"_s << u"~"_s;
    QTest::newRow("copyrightnotice") << u"copyrightnotice"_s << Global::getCopyrightString(true);
    QTest::newRow("case counts") << u"AppName"_s << u"AppName"_s;
}

void HelpTest::valuesAreReplaced()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    const TestSettings settings;
    OddSupport native;
    const Help help(&native);
    QCOMPARE(help.doStringReplacement(u"a ["_s + name + u"] b"_s), u"a "_s + value + u" b"_s);
}

void HelpTest::commandNamesBecomeTheirPreferredKeysAsTheDesktopWritesThem()
{
    const TestSettings settings;
    OddSupport native;
    const Help help(&native);
    QCOMPARE(help.doStringReplacement(u"[ShowHelp]"_s),
             u"keys %1/%2"_s.arg(Qt::ControlModifier).arg(Qt::Key_Slash));
    QCOMPARE(help.doStringReplacement(u"[Hide]"_s), u"keys 0/%1"_s.arg(Qt::Key_Escape));
}

void HelpTest::everyOccurrenceIsReplaced()
{
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"[Exit], [appname], [Exit][Exit]"_s),
             u"Ctrl+Q, Brindle, Ctrl+QCtrl+Q"_s);
}

void HelpTest::keysThatAreBracketsEndTheReplacing()
{
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"[GoToFirst] and [GoToLast]; [GoToLast][GoToFirst]"_s),
             u"Ctrl+[ and Ctrl+]; Ctrl+]Ctrl+["_s);
}

void HelpTest::nameThatMeansNothingLosesItsBrackets_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown") << u"NoSuchThing"_s;
    QTest::newRow("a binding without a name") << u"CommitEdit"_s;
    QTest::newRow("a name without a binding") << u"NoCommand"_s;
    QTest::newRow("letters beyond ASCII") << u"Größe_9"_s;
    QTest::newRow("another script") << u"помощь"_s;
    QTest::newRow("combining mark") << u"re\u0301sume\u0301"_s;
    QTest::newRow("digits") << u"42"_s;
}

void HelpTest::nameThatMeansNothingLosesItsBrackets()
{
    QFETCH(QString, name);
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"see ["_s + name + u"] and [Exit]"_s),
             u"see "_s + name + u" and Ctrl+Q"_s);
}

void HelpTest::bracketsAroundOtherThanOneWordStay()
{
    const HelpDesk desk;
    const QString text = u"[] [two words] [Exit! [a-b] ]Exit["_s;
    QCOMPARE(desk.help.doStringReplacement(text), text);
}

void HelpTest::doubleBracesOfAllowedSignsBecomeSmallGreyPrint_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("letters and digits") << u"abc XYZ 019"_s;
    QTest::newRow("all signs") << u"a-b, c! d. e: f? _g_"_s;
    QTest::newRow("letters beyond ASCII") << u"Über großen Äpfeln"_s;
    QTest::newRow("a word alone") << u"word"_s;
}

void HelpTest::doubleBracesOfAllowedSignsBecomeSmallGreyPrint()
{
    QFETCH(QString, text);
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"x {{"_s + text + u"}} y"_s),
             u"x <span style='font-size: 9px; color: #777777;'>"_s + text + u"</span> y"_s);
}

void HelpTest::doubleBracesWithAnotherSignKeepTheirOuterBracesAndEmphasiseTheRest()
{
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(u"{{won't do}}"_s), u"{<em>won't do</em>}"_s);
    QCOMPARE(desk.help.doStringReplacement(u"{{a;b}}"_s), u"{{a;b}}"_s);
}

void HelpTest::bracedWordIsEmphasisedAndEmptyBracesAreAnEmptyEmphasis_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("word") << u"{to-do}"_s << u"<em>to-do</em>"_s;
    QTest::newRow("apostrophe") << u"{won't do}"_s << u"<em>won't do</em>"_s;
    QTest::newRow("letters beyond ASCII")
        << u"{erledigt für heute}"_s << u"<em>erledigt für heute</em>"_s;
    QTest::newRow("empty") << u"a{}b"_s << u"a<em></em>b"_s;
    QTest::newRow("several") << u"{a} {b}"_s << u"<em>a</em> <em>b</em>"_s;
    QTest::newRow("other signs") << u"{a: b;}"_s << u"{a: b;}"_s;
    QTest::newRow("a token inside") << u"{[appname]}"_s << u"<em>Brindle</em>"_s;
}

void HelpTest::bracedWordIsEmphasisedAndEmptyBracesAreAnEmptyEmphasis()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const HelpDesk desk;
    QCOMPARE(desk.help.doStringReplacement(text), expected);
}

void HelpTest::onlyDirectChildLabelsAreReplaced()
{
    const HelpDesk desk;
    QWidget container;
    QWidget inner(&container);
    QLabel direct(u"[Exit]"_s, &container);
    QLabel nested(u"[Exit]"_s, &inner);
    QPushButton button(u"[Exit]"_s, &container);
    desk.help.doStringReplacementsOnChildLabels(&container);
    QCOMPARE(direct.text(), u"Ctrl+Q"_s);
    QCOMPARE(nested.text(), u"[Exit]"_s);
    QCOMPARE(button.text(), u"[Exit]"_s);
}

void HelpTest::everyBindingOfTheMainWindowGroup()
{
    const HelpDesk desk;
    QStringList expected;
    for (const Row &row : mainWindowRows)
        expected.append(QLatin1String(row.description) + u" | "_s + QLatin1String(row.keys));
    QCOMPARE(desk.rows("mainWindowGroup"), expected);
    QCOMPARE(desk.child<QGroupBox>("mainWindowGroup")->title(), u"Main Window"_s);
}

void HelpTest::everyBindingOfTheGeneralGroup()
{
    const HelpDesk desk;
    QStringList expected;
    for (const Row &row : generalRows)
        expected.append(QLatin1String(row.description) + u" | "_s + QLatin1String(row.keys));
    QCOMPARE(desk.rows("generalGroup"), expected);
    QCOMPARE(desk.child<QGroupBox>("generalGroup")->title(), u"General"_s);
}

void HelpTest::keysAreWrittenAsTheDesktopWritesThem()
{
    const TestSettings settings;
    OddSupport native;
    const Help help(&native);
    const auto text = [&help](const char *label) {
        return help.findChild<QLabel *>(QString::fromLatin1(label))->text();
    };
    QCOMPARE(text("mainWindowKey1"),
             native.renderKeyCombo(Global::getPreferredKeyComboByName(u"GoToPrevious"_s)));
    QCOMPARE(text("mainWindowKey20"), u"Hyper~<em>key</em>"_s);
    QCOMPARE(text("generalKey5"),
             native.renderKeyCombo(Global::getPreferredKeyComboByName(u"DiscardChanges"_s)));
}

void HelpTest::statusIndicatorsShowTheColoursOfTheMainWindow()
{
    HelpDesk desk;
    desk.show();
    const QStringList expected{u" | <em>to-do</em>"_s, u" | <em>done</em>"_s,
                               u" | <em>won't do</em>"_s, u"(none) | <em>category</em>"_s};
    QCOMPARE(desk.rows("statusGroup"), expected);
    QCOMPARE(desk.child<QGroupBox>("statusGroup")->title(), u"Status Indicators"_s);
    QCOMPARE(desk.help.styleSheet(),
             u"*[iconstate=\"todo\"] {background-color: #4466FF} *[iconstate=\"done\"] "
             "{background-color: #888888} *[iconstate=\"wontdo\"] {background-color: #FFCC44} "_s);
    const auto colour = [&desk](const char *swatch) {
        const QImage image = desk.child<QWidget>(swatch)->grab().toImage();
        return image.pixelColor(image.width() / 2, image.height() / 2).name();
    };
    QCOMPARE(colour("todoSwatch"), u"#4466ff"_s);
    QCOMPARE(colour("doneSwatch"), u"#888888"_s);
    QCOMPARE(colour("wontDoSwatch"), u"#ffcc44"_s);
}

void HelpTest::titleTabsAndVersionLine()
{
    const HelpDesk desk;
    QCOMPARE(desk.help.windowTitle(), u"Brindle Help"_s);
    QCOMPARE(desk.help.getWindowName(), u"HelpWindow"_s);
    const auto *tabs = desk.child<QTabWidget>("tabWidget");
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), u"Quick Reference"_s);
    QCOMPARE(tabs->tabText(1), u"User Guide"_s);
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(desk.child<QLabel>("versionLabel")->text(),
             u"<span style='font-size: 9px; color: #777777;'>Brindle, v0.3</span>"_s);
}

void HelpTest::guideUsesEveryTokenAndAllAreReplaced()
{
    const HelpDesk desk;
    const QString source = guideSource();
    for (const char *token : guideTokens)
        QVERIFY2(source.contains(u'[' + QLatin1String(token) + u']'), token);
    for (const char *word : {"to-do", "done", "won't do", "category", "key", "only"})
        QVERIFY2(source.contains(u'{' + QLatin1String(word) + u'}'), word);
    // Of names written without a slip nothing is left, neither brackets nor braces.
    const QString shown = desk.guide()->toPlainText();
    for (const char *token : guideTokens)
        QVERIFY2(!shown.contains(QLatin1String(token)), token);
    QVERIFY(!shown.contains(u'{'));
    static const QRegularExpression token(u"\\[\\w+\\]"_s);
    QVERIFY(!shown.contains(token));
    static const QRegularExpression commandName(u"\\b(GoTo|Mark|Move|Show)[A-Z]\\w+"_s);
    QVERIFY2(!shown.contains(commandName), qPrintable(commandName.match(shown).captured()));
}

void HelpTest::guideHasAllSectionsInTheirOrder()
{
    const HelpDesk desk;
    QStringList headings;
    const QTextDocument *document = desk.guide()->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 2)
            headings.append(block.text().trimmed());
    }
    const QStringList expected{
        u"Introduction"_s,          u"The Main Window"_s, u"Activation and Deactivation"_s,
        u"Searching for Entries"_s, u"To-do Lists"_s,     u"Reports"_s,
        u"Shortcut Keys"_s};
    QCOMPARE(headings, expected);
    const QString text = desk.guide()->toPlainText();
    QVERIFY(text.contains(u"Brindle, v0.3"_s));
    QVERIFY(text.contains(Global::getCopyrightString(false)));
    QVERIFY(text.contains(u"MIT licence"_s));
    QVERIFY(text.contains(u"brindle --toggle"_s));
    QVERIFY(!text.contains(u'{') && !text.contains(u'}'));
}

void HelpTest::guideIsReadAsUtf8()
{
    const HelpDesk desk;
    QVERIFY(desk.guide()->toPlainText().contains(u"“Create file”"_s));
}

void HelpTest::guideShowsIconAndMainWindow()
{
    const HelpDesk desk;
    QStringList images;
    const QTextDocument *document = desk.guide()->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextImageFormat format = it.fragment().charFormat().toImageFormat();
            if (format.isValid())
                images.append(format.name());
        }
    }
    QCOMPARE(images, (QStringList{u"qrc:/help/iconmedium.png"_s, u"qrc:/help/mainwindow.png"_s}));
    for (const QString &image : images) {
        const QVariant loaded = document->resource(QTextDocument::ImageResource, QUrl(image));
        QVERIFY2(loaded.isValid(), qPrintable(image));
    }
    QVERIFY(QImage(u":/help/mainwindow.png"_s).width() > 400);
}

void HelpTest::guideNamesTheKeysThatAreBound()
{
    const HelpDesk desk;
    const QString text = desk.guide()->toPlainText();
    QVERIFY(text.contains(u"Ctrl+Alt+Space"_s));
    QVERIFY(text.contains(u"Alt+key"_s));
    QVERIFY(text.contains(u"Ctrl+Shift+Del takes back"_s));
    QVERIFY(text.contains(u"hidden for 30 minutes"_s));
}

void HelpTest::escapeHidesIt()
{
    HelpDesk desk;
    const QSignalSpy hidings(&desk.help, &AbstractWindow::hiding);
    desk.show();
    desk.press(Qt::Key_Escape);
    QVERIFY(!desk.help.isVisible());
    QCOMPARE(hidings.count(), 1);
    desk.show();
    QVERIFY(desk.help.isVisible());
}

void HelpTest::controlWHidesIt()
{
    HelpDesk desk;
    const QSignalSpy hidings(&desk.help, &AbstractWindow::hiding);
    desk.show();
    desk.press(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!desk.help.isVisible());
    QCOMPARE(hidings.count(), 1);
}

void HelpTest::otherKeysDoNothing_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << 0;
    QTest::newRow("Enter") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    QTest::newRow("W") << int(Qt::Key_W) << 0;
    QTest::newRow("Shift+Escape") << int(Qt::Key_Escape) << int(Qt::ShiftModifier);
    QTest::newRow("Ctrl+Shift+W") << int(Qt::Key_W) << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Ctrl+K") << int(Qt::Key_K) << int(Qt::ControlModifier);
    QTest::newRow("Space") << int(Qt::Key_Space) << 0;
}

void HelpTest::otherKeysDoNothing()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    HelpDesk desk;
    desk.show();
    desk.press(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QVERIFY(desk.help.isVisible());
    QCOMPARE(desk.child<QTabWidget>("tabWidget")->currentIndex(), 0);
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers::fromInt(modifiers));
    event.ignore();
    QCoreApplication::sendEvent(&desk.help, &event);
    QVERIFY(event.isAccepted());
}

void HelpTest::keysWorkWhileTheGuideHasTheKeyboard()
{
    for (const bool byEscape : {true, false}) {
        HelpDesk desk;
        desk.show();
        desk.child<QTabWidget>("tabWidget")->setCurrentIndex(1);
        desk.guide()->setFocus();
        QVERIFY(desk.guide()->hasFocus());
        desk.press(Qt::Key_PageDown);
        QVERIFY(desk.guide()->verticalScrollBar()->value() > 0);
        if (byEscape)
            desk.press(Qt::Key_Escape);
        else
            desk.press(Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!desk.help.isVisible());
    }
}

void HelpTest::itsSizeIsFixed()
{
    HelpDesk desk;
    QSettings().setValue(u"HelpWindow/size"_s, QSize(2000, 1500));
    desk.show();
    QCOMPARE(desk.help.size(), desk.help.sizeHint());
    QCOMPARE(desk.help.minimumSize(), desk.help.maximumSize());
    QVERIFY(desk.help.height() < 720); // fits on a small screen
}

void HelpTest::changeOfTheLanguageShowsNoTokens()
{
    HelpDesk desk;
    const OtherLanguage language;
    QCOMPARE(desk.help.windowTitle(), u"~Brindle Help"_s);
    QCOMPARE(desk.child<QLabel>("mainWindowKey1")->text(), u"~Ctrl+K"_s);
    QVERIFY(desk.guide()->toPlainText().contains(u"Ctrl+Alt+Space"_s));
}

QTEST_MAIN(HelpTest)
#include "HelpTest.moc"
