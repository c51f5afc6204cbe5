// SPDX-License-Identifier: MIT
#include "ui/CreateReportDialog.h"
#include "fakes/OtherLanguage.h"
#include "ui/ViewReport.h"
#include "unit/ui/DialogDesk.h"

using namespace Qt::StringLiterals;

namespace
{
const QString fromKey = u"reportfromdatetime"_s;
const QString toKey = u"reporttodatetime"_s;

QDateTime local(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second));
}

/// The dialog for the range, at a time of the test's choosing.
class RangeDesk
{
public:
    RangeDesk()
    {
        dialog.setClock([this] { return now; });
    }

    void show()
    {
        dialog.restoreShowAndActivate();
        if (!QTest::qWaitForWindowActive(&dialog))
            qFatal("the dialog does not become active");
    }
    void click(const char *button) { child<QPushButton>(button)->click(); }
    void accept() { child<QDialogButtonBox>("buttonBox")->button(QDialogButtonBox::Ok)->click(); }
    void cancel()
    {
        child<QDialogButtonBox>("buttonBox")->button(QDialogButtonBox::Cancel)->click();
    }
    void type(const QDateTime &from, const QDateTime &to)
    {
        child<QDateTimeEdit>("fromDate")->setDateTime(from);
        child<QDateTimeEdit>("toDate")->setDateTime(to);
    }
    void store(const QDateTime &from, const QDateTime &to)
    {
        QSettings settings;
        settings.setValue(fromKey, from);
        settings.setValue(toKey, to);
    }
    QDateTime from() const { return child<QDateTimeEdit>("fromDate")->dateTime(); }
    QDateTime to() const { return child<QDateTimeEdit>("toDate")->dateTime(); }

    template <typename Widget> Widget *child(const char *name) const
    {
        auto *widget = dialog.findChild<Widget *>(QString::fromLatin1(name));
        if (!widget)
            qFatal("no %s", name);
        return widget;
    }
    static QList<ViewReport *> reports()
    {
        QList<ViewReport *> found;
        const auto windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows) {
            if (auto *report = qobject_cast<ViewReport *>(window))
                found.append(report);
        }
        return found;
    }
    static QString reportText()
    {
        const QList<ViewReport *> windows = reports();
        return windows.size() == 1
            ? windows.first()->findChild<QPlainTextEdit *>(u"textEdit"_s)->toPlainText()
            : u"%1 reports"_s.arg(windows.size());
    }

    DialogDesk desk;
    QDateTime now = local(2026, 11, 21, 15, 4, 5); // a Saturday
    CreateReportDialog dialog{&desk.files};
};
} // namespace

class CreateReportDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void firstUseEverStartsADayAgoAndSinceLastIsRefused();
    void nextShowingStartsWithTheLastRangeAndSinceLastContinuesOneSecondLater();
    void sinceLastReportsNothingTwiceAndNothingNever();
    void todayRunsFromMidnightToNow();
    void yesterdayRunsFromMidnightToMidnight();
    void lastWeekIsThePreviousCalendarWeek_data();
    void lastWeekIsThePreviousCalendarWeek();
    void fromEqualToToOpensAReport();
    void toBeforeFromIsToldAndNothingHappens();
    void storedValuesAreLocalAndTheReportReceivesUtc();
    void cancelHidesAndStoresNothing();
    void eachShowingForgetsWhatWasTyped();
    void comingBackFromTheTaskbarKeepsWhatWasTyped();
    void everyOkOpensAFurtherReport();
    void closedReportsAreGone();
    void openReportsEndWithTheDialog();
    void damagedFileIsLoggedAndTheDialogStaysUsable();
    void hidingIsAnnounced();
    void formAndFormatsAreAsGiven();
    void changeOfTheLanguageKeepsTheForm();
    void itsSizeIsFixed();
};

// Far from UTC, so that a confusion of the two shows.
void CreateReportDialogTest::initTestCase()
{
    qputenv("TZ", "Asia/Tokyo");
    tzset();
}

void CreateReportDialogTest::firstUseEverStartsADayAgoAndSinceLastIsRefused()
{
    RangeDesk desk;
    const auto *refusals = new RefusalWatch(&desk.dialog);
    desk.show();
    QCOMPARE(desk.from(), local(2026, 11, 20, 15, 4, 5));
    QCOMPARE(desk.to(), local(2026, 11, 21, 15, 4, 5));
    desk.click("latestBtn");
    QCOMPARE(refusals->count(), 1);
    QCOMPARE(desk.from(), local(2026, 11, 20, 15, 4, 5));
    QCOMPARE(desk.to(), local(2026, 11, 21, 15, 4, 5));
    QVERIFY(!QSettings().contains(fromKey));
}

void CreateReportDialogTest::nextShowingStartsWithTheLastRangeAndSinceLastContinuesOneSecondLater()
{
    RangeDesk desk;
    const QDateTime a = local(2026, 11, 1, 8, 0, 7);
    const QDateTime b = local(2026, 11, 20, 23, 59, 59);
    desk.show();
    desk.type(a, b);
    desk.accept();
    QVERIFY(!desk.dialog.isVisible());
    desk.now = local(2026, 11, 22, 10, 11, 12);
    desk.show();
    QCOMPARE(desk.from(), a);
    QCOMPARE(desk.to(), b);
    desk.click("latestBtn");
    QCOMPARE(desk.from(), local(2026, 11, 21, 0, 0, 0));
    QCOMPARE(desk.to(), desk.now);
}

void CreateReportDialogTest::sinceLastReportsNothingTwiceAndNothingNever()
{
    RangeDesk desk;
    const qint64 root = desk.desk.addFile(u"a.bdl"_s);
    const QDateTime start = local(2026, 11, 20, 12, 0, 0);
    for (int i = 0; i < 10; ++i)
        desk.desk.addDone(root, u"<%1>"_s.arg(i), i, start.addSecs(i));
    desk.store(start.addSecs(-100), start.addSecs(-1));
    QString all;
    for (const int until : {3, 4, 9}) {
        desk.now = start.addSecs(until);
        desk.show();
        desk.click("latestBtn");
        desk.accept();
        all += desk.reportText();
        desk.reports().first()->close();
        QTRY_VERIFY(desk.reports().isEmpty());
    }
    for (int i = 0; i < 10; ++i)
        QCOMPARE(all.count(u"<%1>"_s.arg(i)), 1);
}

void CreateReportDialogTest::todayRunsFromMidnightToNow()
{
    RangeDesk desk;
    desk.show();
    desk.click("todayBtn");
    QCOMPARE(desk.from(), local(2026, 11, 21));
    QCOMPARE(desk.to(), desk.now);
}

void CreateReportDialogTest::yesterdayRunsFromMidnightToMidnight()
{
    RangeDesk desk;
    desk.now = local(2026, 3, 1, 9, 0, 0);
    desk.show();
    desk.click("yesterdayBtn");
    QCOMPARE(desk.from(), local(2026, 2, 28));
    QCOMPARE(desk.to(), local(2026, 3, 1));
}

void CreateReportDialogTest::lastWeekIsThePreviousCalendarWeek_data()
{
    QTest::addColumn<int>("day");
    const char *names[]
        = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
    for (int i = 0; i < 7; ++i)
        QTest::newRow(names[i]) << 16 + i; // the 16th of November 2026 is a Monday
}

void CreateReportDialogTest::lastWeekIsThePreviousCalendarWeek()
{
    QFETCH(int, day);
    RangeDesk desk;
    desk.now = local(2026, 11, day, 13, 14, 15);
    desk.show();
    desk.click("lastWeekBtn");
    QCOMPARE(desk.from(), local(2026, 11, 9));
    QCOMPARE(desk.to(), local(2026, 11, 16));
}

void CreateReportDialogTest::fromEqualToToOpensAReport()
{
    RangeDesk desk;
    desk.desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.type(desk.now, desk.now);
    desk.accept();
    QVERIFY(!desk.dialog.isVisible());
    QVERIFY(desk.reportText().endsWith(u" | ...\n"_s));
}

void CreateReportDialogTest::toBeforeFromIsToldAndNothingHappens()
{
    RangeDesk desk;
    desk.show();
    desk.type(desk.now, desk.now.addSecs(-1));
    QString title, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            title = box->windowTitle();
            text = box->text();
            icon = box->icon();
            buttons = box->standardButtons();
            box->button(QMessageBox::Ok)->click();
        }
    });
    answer.start(10);
    desk.accept();
    QCOMPARE(title, u"Date Error"_s);
    QCOMPARE(text, u"The \"from\" date must be before the \"to\" date."_s);
    QCOMPARE(icon, QMessageBox::Information);
    QCOMPARE(buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(desk.dialog.isVisible());
    QVERIFY(desk.reports().isEmpty());
    QVERIFY(!QSettings().contains(toKey));
    QCOMPARE(desk.to(), desk.now.addSecs(-1));
}

void CreateReportDialogTest::storedValuesAreLocalAndTheReportReceivesUtc()
{
    RangeDesk desk;
    const qint64 root = desk.desk.addFile(u"a.bdl"_s);
    // Midnight in Tokyo is three o'clock in the afternoon before, in UTC.
    const QDateTime inside(QDate(2026, 11, 20), QTime(15, 0), Qt::UTC);
    desk.desk.addDone(root, u"before"_s, 0, inside.addSecs(-1));
    desk.desk.addDone(root, u"inside"_s, 1, inside);
    desk.desk.addDone(root, u"after"_s, 2, inside.addSecs(61));
    desk.show();
    desk.type(local(2026, 11, 21), local(2026, 11, 21, 0, 1));
    desk.accept();
    const QSettings settings;
    QCOMPARE(settings.value(fromKey).toDateTime(), local(2026, 11, 21));
    QCOMPARE(settings.value(fromKey).toDateTime().timeSpec(), Qt::LocalTime);
    QCOMPARE(settings.value(toKey).toDateTime(), local(2026, 11, 21, 0, 1));
    const QString text = desk.reportText();
    QVERIFY2(text.contains(u"inside"_s), qPrintable(text));
    QVERIFY(!text.contains(u"before"_s));
    QVERIFY(!text.contains(u"after"_s));
}

void CreateReportDialogTest::cancelHidesAndStoresNothing()
{
    RangeDesk desk;
    desk.show();
    desk.click("todayBtn");
    desk.cancel();
    QVERIFY(!desk.dialog.isVisible());
    QVERIFY(!QSettings().contains(fromKey));
    QVERIFY(!QSettings().contains(toKey));
    QVERIFY(desk.reports().isEmpty());
}

void CreateReportDialogTest::eachShowingForgetsWhatWasTyped()
{
    RangeDesk desk;
    desk.store(local(2026, 1, 1), local(2026, 1, 2));
    desk.show();
    desk.click("todayBtn");
    desk.cancel();
    desk.show();
    QCOMPARE(desk.from(), local(2026, 1, 1));
    QCOMPARE(desk.to(), local(2026, 1, 2));
}

void CreateReportDialogTest::comingBackFromTheTaskbarKeepsWhatWasTyped()
{
    RangeDesk desk;
    desk.show();
    desk.type(local(2026, 5, 5), local(2026, 5, 6));
    QShowEvent fromTaskbar;
    QSpontaneKeyEvent::setSpontaneous(&fromTaskbar);
    QCoreApplication::instance()->notify(&desk.dialog, &fromTaskbar);
    QCOMPARE(desk.from(), local(2026, 5, 5));
    QCOMPARE(desk.to(), local(2026, 5, 6));
}

void CreateReportDialogTest::everyOkOpensAFurtherReport()
{
    RangeDesk desk;
    for (int count = 1; count <= 3; ++count) {
        desk.show();
        desk.accept();
        QCOMPARE(desk.reports().size(), count);
    }
    for (const ViewReport *report : desk.reports()) {
        QVERIFY(report->isVisible());
        QVERIFY(!report->parentWidget());
    }
}

void CreateReportDialogTest::closedReportsAreGone()
{
    RangeDesk desk;
    desk.show();
    desk.accept();
    desk.reports().first()->close();
    QTRY_VERIFY(desk.reports().isEmpty());
    desk.show();
    desk.accept();
    QCOMPARE(desk.reports().size(), 1);
}

void CreateReportDialogTest::openReportsEndWithTheDialog()
{
    {
        RangeDesk desk;
        desk.show();
        desk.accept();
        desk.show();
        desk.accept();
        QCOMPARE(desk.reports().size(), 2);
    }
    QVERIFY(RangeDesk::reports().isEmpty());
}

void CreateReportDialogTest::damagedFileIsLoggedAndTheDialogStaysUsable()
{
    RangeDesk desk;
    const qint64 root = desk.desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.desk.addDone(root, u"x"_s, 0, desk.now.addSecs(-60));
    desk.desk.damage(entry);
    desk.show();
    QTest::ignoreMessage(QtDebugMsg, "exception in createReport: bad"); // fails if it does not come
    desk.accept();
    QVERIFY(desk.reports().isEmpty());
    desk.show();
    desk.type(local(2020, 1, 1), local(2020, 1, 2));
    desk.accept();
    QCOMPARE(desk.reports().size(), 1);
}

void CreateReportDialogTest::hidingIsAnnounced()
{
    RangeDesk desk;
    const QSignalSpy hidings(&desk.dialog, &AbstractWindow::hiding);
    desk.show();
    desk.accept();
    QCOMPARE(hidings.count(), 1);
    desk.show();
    desk.cancel();
    QCOMPARE(hidings.count(), 2);
}

void CreateReportDialogTest::formAndFormatsAreAsGiven()
{
    RangeDesk desk;
    QCOMPARE(desk.dialog.windowTitle(), u"Create Report"_s);
    QCOMPARE(desk.dialog.getWindowName(), u"CreateReport"_s);
    QCOMPARE(desk.child<QPushButton>("latestBtn")->text(), u"&Since last"_s);
    QCOMPARE(desk.child<QPushButton>("todayBtn")->text(), u"&Today"_s);
    QCOMPARE(desk.child<QPushButton>("yesterdayBtn")->text(), u"&Yesterday"_s);
    QCOMPARE(desk.child<QPushButton>("lastWeekBtn")->text(), u"&Last week"_s);
    const QString format = QLocale::system().dateTimeFormat(QLocale::ShortFormat);
    QCOMPARE(desk.child<QDateTimeEdit>("fromDate")->displayFormat(), format);
    QCOMPARE(desk.child<QDateTimeEdit>("toDate")->displayFormat(), format);
}

void CreateReportDialogTest::changeOfTheLanguageKeepsTheForm()
{
    RangeDesk desk;
    desk.show();
    desk.type(local(2026, 5, 5), local(2026, 5, 6));
    const OtherLanguage language;
    QCOMPARE(desk.dialog.windowTitle(), u"~Create Report"_s);
    QCOMPARE(desk.from(), local(2026, 5, 5));
}

void CreateReportDialogTest::itsSizeIsFixed()
{
    RangeDesk desk;
    desk.show();
    QCOMPARE(desk.dialog.size(), desk.dialog.sizeHint());
    QCOMPARE(desk.dialog.minimumSize(), desk.dialog.maximumSize());
}

QTEST_MAIN(CreateReportDialogTest)
#include "CreateReportDialogTest.moc"
