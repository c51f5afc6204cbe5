// SPDX-License-Identifier: MIT
#include "ui/ViewReport.h"
#include "fakes/OtherLanguage.h"
#include "model/ReportBuilder.h"
#include "unit/ui/DialogDesk.h"

using namespace Qt::StringLiterals;

namespace
{
const QDateTime from(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
const QDateTime to(QDate(2026, 1, 2), QTime(0, 0), Qt::UTC);
const QDateTime between(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC);

/// A report that is on the screen and has the keyboard.
struct ShownReport {
    explicit ShownReport(DialogDesk &desk)
        : window(&desk.files, from, to)
    {
        window.show();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the report does not become active");
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }
    QPlainTextEdit *editor() { return window.findChild<QPlainTextEdit *>(u"textEdit"_s); }

    ViewReport window;
};
} // namespace

class ViewReportTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheReportOfTheRangeInAMonospacedFont();
    void laterChangesDoNotShow();
    void textsAreShownAsTyped();
    void nothingCanBeTyped();
    void escapeClosesIt();
    void controlWClosesIt();
    void otherKeysDoNotCloseIt_data();
    void otherKeysDoNotCloseIt();
    void changeOfTheLanguageKeepsTextAndTitle();
    void damagedFileThrowsInTheConstructor();
};

void ViewReportTest::showsTheReportOfTheRangeInAMonospacedFont()
{
    DialogDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.addDone(root, u"inside"_s, 0, between);
    desk.addDone(root, u"outside"_s, 1, to.addSecs(1));
    ShownReport report(desk);
    QCOMPARE(report.window.windowTitle(), u"Report"_s);
    QCOMPARE(report.window.styleSheet(), u"* {font-family:courier} "_s);
    const QString text = report.editor()->toPlainText();
    QCOMPARE(text, ReportBuilder(&desk.files).build(from, to));
    QVERIFY(text.contains(u" |   inside\n"_s));
    QVERIFY(!text.contains(u"outside"_s));
    QCOMPARE(report.editor()->lineWrapMode(), QPlainTextEdit::NoWrap);
    const QFontMetrics metrics(report.editor()->font());
    QCOMPARE(metrics.horizontalAdvance(u"iiii"_s), metrics.horizontalAdvance(u"MMMM"_s));
}

void ViewReportTest::laterChangesDoNotShow()
{
    DialogDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    ShownReport report(desk);
    desk.addDone(root, u"later"_s, 0, between);
    report.window.hide();
    report.window.show();
    QVERIFY(!report.editor()->toPlainText().contains(u"later"_s));
}

void ViewReportTest::textsAreShownAsTyped()
{
    DialogDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const QString markup = u"<b>bold</b> &amp; more"_s;
    desk.addDone(root, markup, 0, between);
    ShownReport report(desk);
    QVERIFY(report.editor()->toPlainText().contains(markup));
}

void ViewReportTest::nothingCanBeTyped()
{
    DialogDesk desk;
    desk.addFile(u"a.bdl"_s);
    ShownReport report(desk);
    const QString before = report.editor()->toPlainText();
    report.press(Qt::Key_Backspace);
    report.press(Qt::Key_X);
    report.press(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(report.editor()->toPlainText(), before);
}

void ViewReportTest::escapeClosesIt()
{
    DialogDesk desk;
    ShownReport report(desk);
    report.press(Qt::Key_Escape);
    QVERIFY(!report.window.isVisible());
}

void ViewReportTest::controlWClosesIt()
{
    DialogDesk desk;
    ShownReport report(desk);
    report.press(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!report.window.isVisible());
}

void ViewReportTest::otherKeysDoNotCloseIt_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("W") << int(Qt::Key_W) << 0;
    QTest::newRow("Ctrl+Shift+W") << int(Qt::Key_W) << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Shift+Escape") << int(Qt::Key_Escape) << int(Qt::ShiftModifier);
    QTest::newRow("Return") << int(Qt::Key_Return) << 0;
    QTest::newRow("Down") << int(Qt::Key_Down) << 0;
    QTest::newRow("Ctrl+A") << int(Qt::Key_A) << int(Qt::ControlModifier);
}

void ViewReportTest::otherKeysDoNotCloseIt()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    DialogDesk desk;
    ShownReport report(desk);
    report.press(static_cast<Qt::Key>(key), Qt::KeyboardModifiers::fromInt(modifiers));
    QVERIFY(report.window.isVisible());
}

void ViewReportTest::changeOfTheLanguageKeepsTextAndTitle()
{
    DialogDesk desk;
    desk.addFile(u"a.bdl"_s);
    ShownReport report(desk);
    const QString text = report.editor()->toPlainText();
    const OtherLanguage language;
    QCOMPARE(report.window.windowTitle(), u"~Report"_s);
    QCOMPARE(report.editor()->toPlainText(), text);
}

void ViewReportTest::damagedFileThrowsInTheConstructor()
{
    DialogDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addDone(root, u"x"_s, 0, between);
    desk.damage(entry);
    QByteArray thrown;
    try {
        const ViewReport report(&desk.files, from, to);
    } catch (const char *text) {
        thrown = text;
    }
    QCOMPARE(thrown, QByteArray("bad"));
}

QTEST_MAIN(ViewReportTest)
#include "ViewReportTest.moc"
