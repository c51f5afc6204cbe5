// SPDX-License-Identifier: MIT
#include "ui/RefusalFlash.h"
#include "unit/ui/UiDesk.h"

using namespace Qt::StringLiterals;

/// What the main window shows, and how it follows the application to the front and back.
class HierarchyWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void startsAsLaidOut();
    void gridHoldsEveryPartAtItsPlace();
    void rowsAndPanelsKeepTheirDistances();
    void styleSheetIsExact();
    void buttonsTakeNoKeyboardAndAreNeverDefault();
    void imagesAreCompiledIn();

    void withoutFilesTitleIsBrindleAndOnlyTheButtonsShow();
    void titleNamesTheFile();
    void pageFollowsThePositionNotTheText();
    void entryWithoutParentHidesTheWholeParentRow();
    void entryWithParentShowsTheParentRow();
    void neighboursAndStatesAreShown();
    void stateBarsHaveTheirColours();
    void refreshWithTheSameTextKeepsTheCursor();
    void refreshWithAnotherTextPutsTheCursorAtTheEnd();
    void arrowTellsWhetherThereAreChildren();
    void validDoneDateIsShownSmall();
    void withoutDoneDateItsRowIsHidden();
    void filePanelShowsOnlyAtAFilesRoot();
    void entryTextsAreNeverMarkup();
    void longTextsNeverWidenTheWindow();
    void assistiveToolsReadWhatIsShown();

    void activationShowsAndDeactivationHides();
    void activationAsksForTheFront();
    void editedTextSurvivesHidingAndShowing();
    void activateDoesNothingInTheBackground();
    void activateGivesTheEditorTheKeyboard();
    void minimisedWindowComesBackOnActivation();
    void openBoxComesForwardWithTheWindow();
    void closingDeactivatesInsteadAndGivesTheFrontBack();
    void rejectingDeactivatesInstead();

    void closeButtonClosesTheFile();
    void theParentsRowHoldsItsPartsSideBySide();
    void theKeyboardComesBackToThePageAfterACancelledDialog_data();
    void theKeyboardComesBackToThePageAfterACancelledDialog();
    void aRefusedCommandTooGivesTheEditorTheKeyboard();
    void closeButtonIsRefusedWhenTheTextIs();
    void slotsAtTheWrongPlaceLogAndLeaveTheWindowUsable_data();
    void slotsAtTheWrongPlaceLogAndLeaveTheWindowUsable();
    void refusalFlashesWithoutTakingAnything();
};

void HierarchyWindowTest::startsAsLaidOut()
{
    const UiDesk desk;
    const HierarchyWindow &window = *desk.window;
    QCOMPARE(window.objectName(), u"HierarchyWindow"_s);
    QCOMPARE(window.getWindowName(), u"HierarchyWindow"_s);
    QCOMPARE(window.size(), QSize(500, 200));
    QCOMPARE(window.minimumHeight(), 35);
    QVERIFY(!window.isModal());
    QVERIFY(!window.isSizeGripEnabled());
    QVERIFY(!window.isVisible());
    QVERIFY(!window.isRegisteringShortcut());
    QVERIFY(!window.parent());
    for (const char *bar :
         {"parentStateBar", "precedingStateBar", "currentStateBar", "followingStateBar"}) {
        QCOMPARE(desk.child<QWidget>(bar)->minimumWidth(), 5);
        QCOMPARE(desk.child<QWidget>(bar)->maximumWidth(), 5);
    }
    QCOMPARE(desk.editor()->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(desk.child<QLabel>("doneDateLabel")->contentsMargins(), QMargins(0, 0, 7, 0));
}

void HierarchyWindowTest::gridHoldsEveryPartAtItsPlace()
{
    const UiDesk desk;
    auto *stack = desk.window->findChild<QStackedWidget *>();
    auto *grid = stack->parentWidget()->findChild<QGridLayout *>();
    QVERIFY(grid);
    const auto place = [grid](QWidget *widget) {
        int row = -1;
        int column = -1;
        int rows = -1;
        int columns = -1;
        grid->getItemPosition(grid->indexOf(widget), &row, &column, &rows, &columns);
        return QList<int>{row, column, rows};
    };
    QCOMPARE(place(desk.child<QWidget>("precedingStateBar")), (QList<int>{0, 0, 1}));
    QCOMPARE(place(desk.child<QWidget>("precedingLabel")), (QList<int>{0, 1, 1}));
    QCOMPARE(place(desk.child<QWidget>("currentStateBar")), (QList<int>{1, 0, 2}));
    QCOMPARE(place(stack), (QList<int>{1, 1, 2}));
    QCOMPARE(place(desk.child<QWidget>("hasChildrenLabel")), (QList<int>{2, 2, 1}));
    QCOMPARE(place(desk.child<QWidget>("doneDateLabel")), (QList<int>{3, 1, 1}));
    QCOMPARE(place(desk.child<QWidget>("closeButton")->parentWidget()), (QList<int>{4, 1, 1}));
    QCOMPARE(place(desk.child<QWidget>("followingStateBar")), (QList<int>{5, 0, 1}));
    QCOMPARE(place(desk.child<QWidget>("followingLabel")), (QList<int>{5, 1, 1}));
    QCOMPARE(grid->rowStretch(1), 1);
    QCOMPARE(grid->spacing(), 3);
    QCOMPARE(grid->contentsMargins(), QMargins(2, 2, 2, 2));
    QCOMPARE(stack->widget(0), desk.editor());
    QCOMPARE(stack->widget(1)->layout()->contentsMargins(), QMargins(25, 25, 25, 25));
}

void HierarchyWindowTest::rowsAndPanelsKeepTheirDistances()
{
    const UiDesk desk;
    const QMargins narrow(2, 2, 2, 2);
    const QLayout *window = desk.window->layout();
    QCOMPARE(window->spacing(), 0);
    QCOMPARE(window->contentsMargins(), narrow);
    const QLayout *parentRow = window->itemAt(0)->layout();
    QVERIFY(parentRow);
    QCOMPARE(parentRow->spacing(), 3);
    QCOMPARE(parentRow->contentsMargins(), narrow);
    QCOMPARE(parentRow->count(), 4);
    QCOMPARE(parentRow->itemAt(3)->sizeHint().width(), 13);

    const QLayout *indented = window->itemAt(1)->widget()->layout();
    QCOMPARE(qobject_cast<const QBoxLayout *>(window)->stretch(1), 1);
    QCOMPARE(indented->contentsMargins(), narrow);
    QCOMPARE(indented->itemAt(0)->sizeHint().width(), 20);

    auto *grid = desk.window->findChild<QGridLayout *>();
    const QLayout *keyColumn = grid->itemAtPosition(1, 2)->layout();
    QVERIFY(keyColumn);
    QCOMPARE(keyColumn->spacing(), 0);
    QCOMPARE(keyColumn->contentsMargins(), QMargins());
    QCOMPARE(keyColumn->itemAt(1)->sizeHint(), QSize(5, 10));
    QCOMPARE(keyColumn->itemAt(1)->expandingDirections(), Qt::Vertical);

    const QLayout *filePanel = desk.child<QWidget>("closeButton")->parentWidget()->layout();
    QCOMPARE(filePanel->spacing(), 10);
    QCOMPARE(filePanel->contentsMargins(), QMargins(0, 0, 0, 10));

    auto *panel = qobject_cast<QFrame *>(desk.window->findChild<QStackedWidget *>()->widget(1));
    QVERIFY(panel);
    QCOMPARE(panel->frameStyle(), QFrame::StyledPanel | QFrame::Raised);
    QCOMPARE(panel->lineWidth(), 1);
}

void HierarchyWindowTest::styleSheetIsExact()
{
    const UiDesk desk;
    QCOMPARE(desk.window->styleSheet(),
             u"*[donedate=\"true\"] {font-size:10px} *[shortcutkey=\"true\"] {color: #0000CC} "
             "*[regshortcutkey=\"true\"] {border: 2px solid #BB6600;} *[iconstate=\"todo\"] "
             "{background-color: #4466FF} *[iconstate=\"done\"] {background-color: #888888} "
             "*[iconstate=\"wontdo\"] {background-color: #FFCC44} "_s);
}

void HierarchyWindowTest::buttonsTakeNoKeyboardAndAreNeverDefault()
{
    const UiDesk desk;
    for (const char *name : {"openButton", "createButton", "closeButton"}) {
        const auto *button = desk.child<QPushButton>(name);
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
        QVERIFY(!button->isDefault());
        QVERIFY(!button->autoDefault());
    }
}

void HierarchyWindowTest::imagesAreCompiledIn()
{
    const QPixmap arrow(u":/images/haschildrenarrow.png"_s);
    const QPixmap hidden(u":/images/haschildrenarrow_hidden.png"_s);
    QVERIFY(!arrow.isNull());
    QCOMPARE(hidden.size(), arrow.size());
    QVERIFY(hidden.toImage() != arrow.toImage());
    QCOMPARE(QPixmap(u":/images/brindle_splash.png"_s).size(), QSize(480, 300));
    QVERIFY(!QPixmap(u":/images/brindle.png"_s).isNull());
}

void HierarchyWindowTest::withoutFilesTitleIsBrindleAndOnlyTheButtonsShow()
{
    UiDesk desk;
    desk.show();
    QCOMPARE(desk.window->windowTitle(), u"Brindle"_s);
    QVERIFY(desk.child<QWidget>("openButton")->isVisible());
    QVERIFY(desk.child<QWidget>("createButton")->isVisible());
    QVERIFY(!desk.child<QWidget>("closeButton")->isVisible());
    QVERIFY(!desk.editor()->isVisible());
    desk.type(u"lost?"_s);
    QCOMPARE(desk.editor()->toPlainText(), QString());
}

void HierarchyWindowTest::titleNamesTheFile()
{
    UiDesk desk;
    desk.show();
    desk.addFile(u"holidays.bdl"_s);
    QCOMPARE(desk.window->windowTitle(), u"Brindle (holidays.bdl)"_s);
    QVERIFY(desk.editor()->isVisible());
    QVERIFY(desk.editor()->hasFocus());
    QVERIFY(!desk.child<QWidget>("openButton")->isVisible());
}

void HierarchyWindowTest::pageFollowsThePositionNotTheText()
{
    UiDesk desk;
    desk.show();
    const qint64 root = desk.addFile(u"a.bdl"_s);
    // A root text that other programs emptied leaves nothing for the title.
    desk.files.getFile(0)->updateEntryBody(root, u" "_s, true);
    desk.goTo(root);
    QVERIFY(desk.editor()->isVisible());
    desk.press(Qt::Key_N, Qt::ControlModifier);
    QVERIFY(desk.child<QWidget>("openButton")->isVisible());
    QCOMPARE(desk.window->windowTitle(), u"Brindle"_s);
}

void HierarchyWindowTest::entryWithoutParentHidesTheWholeParentRow()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    for (const char *name : {"parentStateBar", "parentLabel", "parentShortcutKeyLabel"})
        QVERIFY(!desk.child<QWidget>(name)->isVisible());
}

void HierarchyWindowTest::entryWithParentShowsTheParentRow()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.files.getFile(0)->registerShortcut(root, Qt::Key_R, u"R"_s);
    const qint64 child = desk.addEntry(root, u"child"_s, 0);
    desk.show();
    desk.goTo(child);
    for (const char *name : {"parentStateBar", "parentLabel", "parentShortcutKeyLabel"})
        QVERIFY(desk.child<QWidget>(name)->isVisible());
    QCOMPARE(desk.label("parentLabel"), u"a.bdl"_s);
    QCOMPARE(desk.label("parentShortcutKeyLabel"), u"R"_s);
}

void HierarchyWindowTest::neighboursAndStatesAreShown()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.addEntry(root, u"before"_s, 0, EntryState::WontDo);
    const qint64 current = desk.addEntry(root, u"now"_s, 1, EntryState::Todo);
    desk.addEntry(root, u"after"_s, 2, EntryState::Category);
    desk.show();
    desk.goTo(current);
    QCOMPARE(desk.label("precedingLabel"), u"before"_s);
    QCOMPARE(desk.label("followingLabel"), u"after"_s);
    const auto bar = [&](const char *name) { return desk.child<QWidget>(name); };
    QCOMPARE(bar("precedingStateBar")->property("iconstate").toString(), u"wontdo"_s);
    QCOMPARE(bar("precedingStateBar")->toolTip(), u"won't do"_s);
    QCOMPARE(bar("currentStateBar")->property("iconstate").toString(), u"todo"_s);
    QCOMPARE(bar("currentStateBar")->toolTip(), u"to-do"_s);
    QCOMPARE(bar("followingStateBar")->property("iconstate").toString(), u"category"_s);
    QCOMPARE(bar("followingStateBar")->toolTip(), u"category"_s);
    desk.goTo(root);
    QCOMPARE(bar("precedingStateBar")->property("iconstate").toString(), u"none"_s);
    QCOMPARE(bar("precedingStateBar")->toolTip(), QString());
    QCOMPARE(desk.label("precedingLabel"), QString());
}

void HierarchyWindowTest::stateBarsHaveTheirColours()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"entry"_s, 0);
    desk.show();
    desk.goTo(entry);
    auto *bar = desk.child<QWidget>("currentStateBar");
    const auto colour = [bar] { return bar->grab().toImage().pixelColor(2, 2).name(); };
    QCOMPARE(colour(), u"#4466ff"_s);
    desk.model.handleCommand(Command::MarkCurrentWontDo);
    QCOMPARE(colour(), u"#ffcc44"_s);
    desk.model.handleCommand(Command::MarkCurrentDone);
    QCOMPARE(colour(), u"#888888"_s);
}

void HierarchyWindowTest::refreshWithTheSameTextKeepsTheCursor()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"some text"_s, 0);
    desk.show();
    desk.goTo(entry);
    desk.type(u"!"_s);
    desk.editor()->moveCursor(QTextCursor::Start);
    desk.press(Qt::Key_Right);
    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.model.getBody(), u"some text!"_s);
    QCOMPARE(desk.editor()->textCursor().position(), 1);
}

void HierarchyWindowTest::refreshWithAnotherTextPutsTheCursorAtTheEnd()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"some text"_s, 0);
    desk.show();
    desk.goTo(entry);
    QCOMPARE(desk.editor()->toPlainText(), u"some text"_s);
    QCOMPARE(desk.editor()->textCursor().position(), 9);
}

void HierarchyWindowTest::arrowTellsWhetherThereAreChildren()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"entry"_s, 0);
    desk.show();
    auto *arrow = desk.child<QLabel>("hasChildrenLabel");
    desk.goTo(root);
    QCOMPARE(arrow->pixmap().toImage(), QPixmap(u":/images/haschildrenarrow.png"_s).toImage());
    desk.goTo(entry);
    QCOMPARE(arrow->pixmap().toImage(),
             QPixmap(u":/images/haschildrenarrow_hidden.png"_s).toImage());
}

void HierarchyWindowTest::validDoneDateIsShownSmall()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const QDateTime done(QDate(2026, 3, 4), QTime(5, 6), Qt::UTC);
    const qint64 entry
        = desk.files.getFile(0)->insertEntry(root, u"entry"_s, 0, EntryState::Done, done);
    desk.show();
    desk.goTo(entry);
    auto *label = desk.child<QLabel>("doneDateLabel");
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), QLocale::system().toString(done.toLocalTime(), QLocale::ShortFormat));
    QCOMPARE(label->fontInfo().pixelSize(), 10);
}

void HierarchyWindowTest::withoutDoneDateItsRowIsHidden()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"entry"_s, 0);
    desk.show();
    desk.goTo(entry);
    QVERIFY(!desk.child<QWidget>("doneDateLabel")->isVisible());
}

void HierarchyWindowTest::filePanelShowsOnlyAtAFilesRoot()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"entry"_s, 0);
    desk.show();
    desk.goTo(root);
    QVERIFY(desk.child<QWidget>("closeButton")->isVisible());
    QCOMPARE(desk.label("fileLabel"), u"File:  <b>a.bdl</b>"_s);
    QCOMPARE(desk.child<QLabel>("fileLabel")->toolTip(), desk.settings.filePath(u"a.bdl"_s));
    desk.goTo(entry);
    QVERIFY(!desk.child<QWidget>("closeButton")->isVisible());
}

void HierarchyWindowTest::entryTextsAreNeverMarkup()
{
    UiDesk desk;
    const QString markup = u"<b>bold</b> & <img src=x>"_s;
    const qint64 root = desk.addFile(u"a&lt;<b>.bdl"_s);
    desk.addEntry(root, markup, 0);
    const qint64 current = desk.addEntry(root, markup, 1);
    desk.addEntry(root, markup, 2);
    const qint64 child = desk.addEntry(current, u"child"_s, 0);
    desk.files.getFile(0)->registerShortcut(current, Qt::Key_B, u"<b>B</b>"_s);
    desk.show();
    desk.goTo(current);
    for (const char *name : {"precedingLabel", "followingLabel", "parentLabel", "shortcutKeyLabel",
                             "parentShortcutKeyLabel", "doneDateLabel"})
        QCOMPARE(desk.child<QLabel>(name)->textFormat(), Qt::PlainText);
    QCOMPARE(desk.label("precedingLabel"), markup);
    desk.goTo(child);
    QCOMPARE(desk.label("parentLabel"), markup);

    desk.goTo(root);
    QCOMPARE(desk.label("fileLabel"), u"File:  <b>a&amp;lt;&lt;b&gt;.bdl</b>"_s);
    QTextDocument toolTip;
    toolTip.setHtml(desk.child<QLabel>("fileLabel")->toolTip());
    QCOMPARE(toolTip.toPlainText(), desk.settings.filePath(u"a&lt;<b>.bdl"_s));
}

void HierarchyWindowTest::longTextsNeverWidenTheWindow()
{
    UiDesk desk;
    const qint64 root = desk.addFile(QString(120, u'f') + u".bdl"_s);
    const QString longText(300, u'W');
    const qint64 parent = desk.addEntry(root, longText, 0);
    desk.addEntry(parent, longText, 0);
    const qint64 current = desk.addEntry(parent, u"now"_s, 1);
    desk.addEntry(parent, longText, 2);
    desk.show();
    const int narrow = desk.window->minimumSizeHint().width();
    desk.goTo(current);
    QTest::qWait(50);
    QCOMPARE(desk.window->width(), 500);
    QCOMPARE(desk.window->minimumSizeHint().width(), narrow);
    desk.goTo(root);
    QTest::qWait(50);
    QCOMPARE(desk.window->width(), 500);
    QVERIFY(narrow < 400);
}

void HierarchyWindowTest::assistiveToolsReadWhatIsShown()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.addEntry(root, u"before"_s, 0, EntryState::Done);
    const qint64 current = desk.addEntry(root, u"now"_s, 1);
    desk.show();
    desk.goTo(current);
    const auto read = [&](const char *name, QAccessible::Text which) {
        return QAccessible::queryAccessibleInterface(desk.child<QWidget>(name))->text(which);
    };
    QCOMPARE(read("entryEdit", QAccessible::Name), u"Entry text"_s);
    QCOMPARE(read("precedingLabel", QAccessible::Name), u"before"_s);
    QCOMPARE(read("precedingLabel", QAccessible::Description), u"Preceding entry"_s);
    QCOMPARE(read("precedingStateBar", QAccessible::Name), u"State: done"_s);
    QCOMPARE(read("precedingStateBar", QAccessible::Description), u"Preceding entry"_s);
    QCOMPARE(read("currentStateBar", QAccessible::Name), u"State: to-do"_s);
    QCOMPARE(read("followingStateBar", QAccessible::Name), u"State: none"_s);
    QCOMPARE(read("hasChildrenLabel", QAccessible::Name), u"No children"_s);
    desk.goTo(root);
    QCOMPARE(read("fileLabel", QAccessible::Name), u"File: a.bdl"_s);
    QCOMPARE(read("closeButton", QAccessible::Name), u"Close"_s);
    QCOMPARE(read("hasChildrenLabel", QAccessible::Name), u"Has children"_s);
}

void HierarchyWindowTest::activationShowsAndDeactivationHides()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    QVERIFY(!desk.window->isVisible());
    desk.show();
    QVERIFY(desk.editor()->hasFocus());
    desk.activation.deactivateApp(false, false);
    QVERIFY(!desk.window->isVisible());
    desk.window->refresh();
    QVERIFY(!desk.window->isVisible());
}

void HierarchyWindowTest::activationAsksForTheFront()
{
    UiDesk desk;
    desk.show();
    QCOMPARE(desk.native.frontRequests.size(), 1);
    QCOMPARE(desk.native.frontRequests.first(), desk.window->windowHandle());
    desk.window->refresh();
    QCOMPARE(desk.native.frontRequests.size(), 1);
}

void HierarchyWindowTest::editedTextSurvivesHidingAndShowing()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.type(u" typed"_s);
    desk.activation.deactivateApp();
    QCOMPARE(desk.model.getBody(), u"a.bdl typed"_s);
    desk.show();
    QCOMPARE(desk.editor()->toPlainText(), u"a.bdl typed"_s);
}

void HierarchyWindowTest::activateDoesNothingInTheBackground()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.window->activate();
    QVERIFY(!desk.window->isVisible());
    QVERIFY(!desk.editor()->hasFocus());
}

void HierarchyWindowTest::activateGivesTheEditorTheKeyboard()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QLineEdit other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    // The toolkit gives the keyboard back to the part that had it last.
    QLineEdit field(desk.window.get());
    field.show();
    field.setFocus();
    desk.window->activate();
    QVERIFY(QTest::qWaitForWindowActive(desk.window.get()));
    QTRY_VERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowTest::minimisedWindowComesBackOnActivation()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.window->showMinimized();
    desk.activation.deactivateApp();
    desk.show();
    QVERIFY(!desk.window->isMinimized());
}

void HierarchyWindowTest::openBoxComesForwardWithTheWindow()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QMessageBox box;
    box.setModal(true);
    box.show();
    box.showMinimized();
    desk.activation.deactivateApp();
    QVERIFY(box.isVisible());

    desk.activation.activateApp(false);
    QVERIFY(desk.window->isVisible());
    QVERIFY(!box.isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(&box));
}

void HierarchyWindowTest::closingDeactivatesInsteadAndGivesTheFrontBack()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QVERIFY(!desk.window->close());
    QVERIFY(!desk.activation.isAppActive());
    QVERIFY(!desk.window->isVisible());
    QCOMPARE(desk.native.restores, 1);
    // Closed on purpose, it doesn't come back before its time.
    QCOMPARE(desk.activation.activationTimerInterval(), 30 * 60'000);
    desk.show();
    QVERIFY(desk.window->isVisible());
}

void HierarchyWindowTest::rejectingDeactivatesInstead()
{
    UiDesk desk;
    desk.show();
    desk.window->reject();
    QVERIFY(!desk.activation.isAppActive());
    QVERIFY(!desk.window->isVisible());
    QCOMPARE(desk.native.restores, 1);
    QCOMPARE(desk.activation.activationTimerInterval(), 30 * 60'000);
}

void HierarchyWindowTest::closeButtonClosesTheFile()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.files.commitAndRestartTransactions();
    desk.show();
    desk.window->setFocus();
    QTest::mouseClick(desk.child<QPushButton>("closeButton"), Qt::LeftButton);
    QCOMPARE(desk.files.getFileCount(), 0);
    QCOMPARE(desk.window->windowTitle(), u"Brindle"_s);
    QVERIFY(!desk.editor()->isVisible());
    // Out of sight the editor must not take keys.
    QVERIFY(desk.window->findChild<QStackedWidget *>()->currentWidget()->hasFocus());
}

void HierarchyWindowTest::theKeyboardComesBackToThePageAfterACancelledDialog_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("create") << QByteArray("createButton");
    QTest::newRow("open") << QByteArray("openButton");
}

void HierarchyWindowTest::theKeyboardComesBackToThePageAfterACancelledDialog()
{
    QFETCH(QByteArray, button);
    UiDesk desk;
    desk.show();
    desk.window->setFocus();
    QTimer cancel;
    connect(&cancel, &QTimer::timeout, this, [] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    cancel.start(20);
    QTest::mouseClick(desk.child<QPushButton>(button.constData()), Qt::LeftButton);
    // As soon as the window has it again.
    QCOMPARE(desk.window->focusWidget(),
             desk.window->findChild<QStackedWidget *>()->currentWidget());
}

void HierarchyWindowTest::aRefusedCommandTooGivesTheEditorTheKeyboard()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.window->setFocus();
    desk.press(Qt::Key_H, Qt::ControlModifier); // a file's entry has no parent
    QCOMPARE(desk.refusals->count(), 1);
    QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowTest::theParentsRowHoldsItsPartsSideBySide()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 parent = desk.addEntry(root, u"parent"_s, 0);
    desk.files.getFile(0)->registerShortcut(parent, Qt::Key_K, u"K"_s);
    desk.show();
    desk.goTo(desk.addEntry(parent, u"child"_s, 0));
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    const QRect bar = desk.child<QWidget>("parentStateBar")->geometry();
    const QRect text = desk.child<QLabel>("parentLabel")->geometry();
    const QRect key = desk.child<QLabel>("parentShortcutKeyLabel")->geometry();
    QVERIFY(bar.right() < text.left());
    QVERIFY(text.right() < key.left());
    QVERIFY(key.right() < desk.window->width());
    QCOMPARE(text.center().y(), key.center().y());
    // The text has what the others leave.
    QVERIFY(text.width() > desk.window->width() / 2);
}

void HierarchyWindowTest::closeButtonIsRefusedWhenTheTextIs()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.editor()->clear();
    QTest::mouseClick(desk.child<QPushButton>("closeButton"), Qt::LeftButton);
    QCOMPARE(desk.files.getFileCount(), 1);
    QCOMPARE(desk.refusals->count(), 1);
    QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowTest::slotsAtTheWrongPlaceLogAndLeaveTheWindowUsable_data()
{
    QTest::addColumn<bool>("atFile");
    QTest::addColumn<QString>("slot");
    QTest::newRow("create at a file") << true << u"createFile"_s;
    QTest::newRow("open at a file") << true << u"loadFile"_s;
    QTest::newRow("close at the panel") << false << u"unloadFile"_s;
}

void HierarchyWindowTest::slotsAtTheWrongPlaceLogAndLeaveTheWindowUsable()
{
    QFETCH(bool, atFile);
    QFETCH(QString, slot);
    UiDesk desk;
    if (atFile)
        desk.addFile(u"a.bdl"_s);
    desk.show();
    const LogLines log;
    QVERIFY(QMetaObject::invokeMethod(desk.window.get(), slot.toLatin1().constData()));
    QCOMPARE(log.count(u"exception in "_s + slot), 1);
    QVERIFY(desk.window->isVisible());
    QCOMPARE(desk.editor()->hasFocus(), atFile);
}

void HierarchyWindowTest::refusalFlashesWithoutTakingAnything()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    const QString sheet = desk.window->styleSheet();
    const QRect editorPlace = desk.editor()->geometry();
    QVERIFY(!desk.flashing());
    Refusal::refuse();
    QVERIFY(desk.flashing());
    auto *flash = desk.child<QWidget>("refusalFlash");
    auto *stack = desk.window->findChild<QStackedWidget *>();
    QCOMPARE(flash->geometry(), QRect(stack->mapTo(desk.window.get(), QPoint()), stack->size()));
    const QImage shown = desk.window->grab().toImage();
    QCOMPARE(shown.pixelColor(flash->geometry().topLeft() + QPoint(1, 1)).name(), u"#bb6600"_s);
    QVERIFY(desk.editor()->hasFocus());
    QCOMPARE(desk.editor()->geometry(), editorPlace);
    QCOMPARE(desk.window->styleSheet(), sheet);
    desk.type(u"!"_s);
    QCOMPARE(desk.editor()->toPlainText(), u"a.bdl!"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!desk.flashing(), 5 * RefusalFlash::durationMs);
}

QTEST_MAIN(HierarchyWindowTest)
#include "HierarchyWindowTest.moc"
