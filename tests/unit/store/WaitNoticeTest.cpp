// SPDX-License-Identifier: MIT
#include "store/WaitNotice.h"
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
const QStringList readLock = {u"BEGIN"_s, u"SELECT * FROM entry"_s};
const QString texts = u"SELECT content FROM entrybody ORDER BY docid"_s;

/// A window of the program, painted when the notice is on the screen.
class PaintedWindow : public QWidget
{
public:
    int paintedBesideANotice = 0;

protected:
    void paintEvent(QPaintEvent *) override
    {
        if (WaitNotice::isShown())
            ++paintedBesideANotice;
    }
};

/// Notes every notice as it comes on the screen.
class NoticeWatch : public QObject
{
public:
    NoticeWatch() { qApp->installEventFilter(this); }

    QStringList seen;
    std::function<void()> onShown;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->objectName() == u"WaitNotice"_s) {
            const auto *label = qobject_cast<QLabel *>(watched);
            seen << (label ? label->text() : u"not a label"_s);
            if (onShown)
                onShown();
        }
        return false;
    }
};
} // namespace

/// What the user sees when another program holds a file, and what must not happen meanwhile.
class WaitNoticeTest : public QObject
{
    Q_OBJECT

private slots:
    void shortWaitShowsNothing();
    void longWaitTellsWhichFileIsWaitedForAndEndsWithIt();
    void windowsArePaintedDuringAWaitAndTimersWait();
    void errorOfAnotherFileWaitsForTheEndOfTheWait();
    void openingTellsToo();
};

void WaitNoticeTest::shortWaitShowsNothing()
{
    const NoticeWatch watch;
    {
        WaitNotice wait(u"a.bdl"_s);
        wait.pause();
        wait.pause();
        QVERIFY(!WaitNotice::isShown());
    }
    QCOMPARE(watch.seen, QStringList());
}

void WaitNoticeTest::longWaitTellsWhichFileIsWaitedForAndEndsWithIt()
{
    const TestSettings settings;
    const QStringList paths = makeFiles(settings, {u"<b>a.bdl"_s});
    FileManager files;
    files.openFile(paths.first(), 0);
    files.getFile(0)->updateEntryBody(1, u"typed"_s, true);
    const NoticeWatch watch;
    const OtherProcess reader(paths.first(), readLock, 2);
    QVERIFY(reader.isHolding());
    QVERIFY(files.commitAndRestartTransactions());
    QCOMPARE(watch.seen, QStringList{u"Waiting for another program to finish with “<b>a.bdl”…"_s});
    QVERIFY(!WaitNotice::isShown());
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(rows(paths.first(), texts), QStringList{u"typed"_s});
}

void WaitNoticeTest::windowsArePaintedDuringAWaitAndTimersWait()
{
    PaintedWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    bool timerRan = false;
    QTimer::singleShot(1, &window, [&timerRan] { timerRan = true; });
    {
        NoticeWatch watch;
        watch.onShown = [&window] { window.update(); };
        WaitNotice wait(u"a.bdl"_s);
        for (int i = 0; i < 200 && window.paintedBesideANotice == 0; ++i)
            wait.pause();
        QVERIFY(window.paintedBesideANotice > 0);
        const QWidget *notice = QApplication::activeModalWidget();
        QVERIFY(notice);
        QCOMPARE(notice->windowModality(), Qt::ApplicationModal);
        QCOMPARE(notice->windowTitle(), u"Please wait"_s);
    }
    QVERIFY(!timerRan);
    QTRY_VERIFY(timerRan);
}

void WaitNoticeTest::errorOfAnotherFileWaitsForTheEndOfTheWait()
{
    const TestSettings settings;
    const QStringList paths = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
    FileManager files;
    files.openFile(paths[0], 0);
    files.openFile(paths[1], 1);
    files.getFile(1)->updateEntryBody(1, u"typed"_s, true);
    QSqlDatabase::database(paths[0], false).rollback(); // so that its commit fails
    NoticeWatch watch;
    BoxAnswers boxes({QMessageBox::Ok});
    const OtherProcess reader(paths[1], readLock, 2);
    QVERIFY(reader.isHolding());
    QVERIFY(!files.commitAndRestartTransactions());
    QCOMPARE(watch.seen.size(), 1);
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s}));
    QTRY_COMPARE(names(files), QStringList{u"b.bdl"_s});
    QTRY_COMPARE(
        boxes.texts(),
        QStringList{u"There was an error accessing file a.bdl. This file has been closed."_s});
    QCOMPARE(rows(paths[1], texts), QStringList{u"typed"_s});
}

void WaitNoticeTest::openingTellsToo()
{
    const TestSettings settings;
    const QStringList paths = makeFiles(settings, {u"a.bdl"_s});
    FileManager files;
    const NoticeWatch watch;
    const OtherProcess other(paths.first(), {u"BEGIN EXCLUSIVE"_s}, 2);
    QVERIFY(other.isHolding());
    files.openFile(paths.first(), 0);
    QCOMPARE(watch.seen, QStringList{u"Waiting for another program to finish with “a.bdl”…"_s});
    QCOMPARE(names(files), QStringList{u"a.bdl"_s});
}

QTEST_MAIN(WaitNoticeTest)
#include "WaitNoticeTest.moc"
