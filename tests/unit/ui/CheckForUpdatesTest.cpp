// SPDX-License-Identifier: MIT
#include "ui/CheckForUpdates.h"

#include "HttpServer.h"
#include "fakes/TestSettings.h"
#include "ui/UpdateTextBrowser.h"
#include "ui/UpdatesAvailable.h"

#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

const QString lastCheck = u"lastcheckforupdates"_s;
const QString dontCheck = u"dontcheckforupdates"_s;
constexpr int shortLimitMs = 400;
constexpr int answeredSoonMs = 5000;

class MainWindow : public AbstractWindow
{
public:
    QString getWindowName() const override { return u"MainWindow"_s; }
    void activate() override { ++activations; }
    int activations = 0;
};

/// A program beside a server of the maker's, with the time in the test's hand.
struct Desk {
    TestSettings settings;
    HttpServer server;
    MainWindow window;
    QDateTime now = QDateTime(QDate(2026, 3, 10), QTime(9, 0));
    int timeLimitMs = CheckForUpdates::transferTimeoutMs;
    std::unique_ptr<CheckForUpdates> check;

    Desk() { window.show(); }

    void start()
    {
        CheckForUpdates::Source source{server.host(), [this] { return now; }, timeLimitMs};
        check = std::make_unique<CheckForUpdates>(&window, source);
    }

    /// Starts, and waits until the connection has ended and all of it has been handled.
    bool startAndFinish()
    {
        start();
        return finished(1);
    }

    bool finished(int connections)
    {
        if (!QTest::qWaitFor([&] { return server.connectionsEnded >= connections; },
                             answeredSoonMs))
            return false;
        QTest::qWait(100);
        return true;
    }

    QTimer *tick() const
    {
        const auto timers = check->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        return timers.size() == 1 ? timers.first() : nullptr;
    }

    /// Lets the two hours pass.
    bool passTick() const
    {
        const int interval = tick()->interval();
        QSignalSpy ticks(tick(), &QTimer::timeout);
        tick()->start(1);
        const bool passed = ticks.wait(1000);
        tick()->start(interval);
        return passed;
    }

    QList<UpdatesAvailable *> dialogs() const { return window.findChildren<UpdatesAvailable *>(); }
    UpdatesAvailable *dialog() const { return dialogs().isEmpty() ? nullptr : dialogs().last(); }
    QTextBrowser *browser() const { return dialog()->findChild<QTextBrowser *>(u"textBrowser"_s); }
    QString text() const { return dialog() ? browser()->toPlainText() : u"(no dialog)"_s; }

    QPushButton *button(const QString &label) const
    {
        const QList<QPushButton *> buttons = dialog()->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text().remove(u'&') == label)
                return button;
        }
        return nullptr;
    }

    bool nothingHappened() const
    {
        return dialogs().isEmpty() && !QSettings().contains(lastCheck)
            && !QSettings().contains(dontCheck);
    }
};

/// Takes the place of the system's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser()
    {
        for (const QString &scheme : schemes())
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~Browser() override
    {
        for (const QString &scheme : schemes())
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened << url; }

private:
    static QStringList schemes()
    {
        return {u"http"_s, u"https"_s, u"file"_s, u"ftp"_s, u"mailto"_s, u"brindle"_s};
    }
};

/// Clicks the link with that target by mouse; false when there is none.
bool clickLink(QTextBrowser *browser, const QString &target)
{
    for (int y = 0; y < browser->viewport()->height(); y += 4) {
        for (int x = 0; x < browser->viewport()->width(); x += 4) {
            if (browser->anchorAt(QPoint(x, y)) == target) {
                QTest::mouseClick(browser->viewport(), Qt::LeftButton, {}, QPoint(x, y));
                return true;
            }
        }
    }
    return false;
}

/// A picture full of a colour that nothing else has.
QByteArray redPicture()
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(QColor(255, 0, 0));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

bool showsRed(QWidget *widget)
{
    const QImage image = widget->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(255, 0, 0))
                return true;
        }
    }
    return false;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

class CheckForUpdatesTest : public QObject
{
    Q_OBJECT

private slots:
    // What is asked.
    void aFirstStartWithEmptySettingsChecksAtOnce();
    void theRequestTellsTheVersionAndNothingElse();
    void noCookieIsSentBack();

    // What is answered.
    void okAnnouncesTheBody();
    void okWithAnEmptyBodyStillShowsTheDialogEmpty();
    void notFoundRecordsTheTimeAndShowsNothingForThreeDays();
    void otherAnswersAreIgnored_data();
    void otherAnswersAreIgnored();
    void aRedirectIsNotFollowed();
    void aBodyEndsAtItsFirstZeroByte();
    void aBodyOfAMebibyteIsShownAsPlainText();
    void aPageMadeToFreezeTheLayoutIsShownAsPlainText();
    void aBodyWithoutEndIsGivenUpAfterAMebibyte();
    void aServerThatStallsIsGivenUp_data();
    void aServerThatStallsIsGivenUp();
    void withoutAServerNothingHappens();
    void theTimeLimitIsThirtySeconds();

    // When.
    void aCheckIsDueAfterThreeCalendarDays_data();
    void aCheckIsDueAfterThreeCalendarDays();
    void aDateThatIsInvalidOrInTheFutureCountsAsNone_data();
    void aDateThatIsInvalidOrInTheFutureCountsAsNone();
    void everyTwoHoursItIsLookedWhetherACheckIsDue();
    void aFailedCheckIsRepeatedAtTheNextTick();

    // The dialog.
    void itsTitleButtonsAndModality();
    void updateLaterAndEscapeCloseAndChangeNothing_data();
    void updateLaterAndEscapeCloseAndChangeNothing();
    void stopCheckingForUpdatesHoldsAcrossRestartsUntilSwitchedOnAgain();
    void stopCheckingReactsToThePressAlready();
    void ofTwoAnnouncementsInARowTheSecondClosesTheFirst();
    void hidingTheDialogActivatesTheMainWindow();
    void nothingThatThePageRefersToIsLoaded_data();
    void nothingThatThePageRefersToIsLoaded();
    void aPictureInsideThePageIsNotUnpacked();
    void linksOpenHttpAndHttpsOnly_data();
    void linksOpenHttpAndHttpsOnly();
};

void CheckForUpdatesTest::aFirstStartWithEmptySettingsChecksAtOnce()
{
    Desk desk;
    desk.server.answer("404 Not Found", "");
    QVERIFY(desk.startAndFinish());
    QCOMPARE(desk.server.requests.size(), 1);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::theRequestTellsTheVersionAndNothingElse()
{
    // With the language that the toolkit would name anyway this would prove nothing.
    QVERIFY2(QLocale::system().language() == QLocale::German, "run with LANG=de_DE.UTF-8");
    Desk desk;
    desk.server.answer("404 Not Found", "");
    QVERIFY(desk.startAndFinish());
    QByteArrayList lines = desk.server.requests.value(0).trimmed().split('\n');
    for (QByteArray &line : lines)
        line = line.trimmed();
    QCOMPARE(lines.takeFirst(), QByteArray("GET /updates/0.3.html HTTP/1.1"));
    std::sort(lines.begin(), lines.end());
    QCOMPARE(lines.join('\n'),
             QByteArray("Accept-Encoding: identity\nAccept-Language: en,*\n"
                        "Connection: Keep-Alive\nHost: "
                        + desk.server.host().toLatin1() + "\nUser-Agent: AD"));
}

void CheckForUpdatesTest::noCookieIsSentBack()
{
    Desk desk;
    desk.server.answerWithHeaders("404 Not Found", "Set-Cookie: who=you; Max-Age=9999999\r\n", "");
    QVERIFY(desk.startAndFinish());
    desk.check->checkForUpdates();
    QVERIFY(desk.finished(2));
    const QByteArray request = desk.server.requests.value(1);
    QVERIFY2(!request.isEmpty() && !request.toLower().contains("cookie"), request.constData());
}

void CheckForUpdatesTest::okAnnouncesTheBody()
{
    Desk desk;
    desk.server.answer("200 OK", "<h1>Brindle 0.4</h1><p>is <b>out</b></p>");
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.dialog() && desk.dialog()->isVisible());
    QCOMPARE(desk.text(), u"Brindle 0.4\nis out"_s);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::okWithAnEmptyBodyStillShowsTheDialogEmpty()
{
    Desk desk;
    desk.server.answer("200 OK", "");
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.dialog() && desk.dialog()->isVisible());
    QCOMPARE(desk.text(), QString());
}

void CheckForUpdatesTest::notFoundRecordsTheTimeAndShowsNothingForThreeDays()
{
    Desk desk;
    desk.server.answer("404 Not Found", "<p>no such page</p>");
    QVERIFY(desk.startAndFinish());
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
    QVERIFY(desk.dialogs().isEmpty());
    for (int hours = 2; hours < 2 * 24 + 15; hours += 2) {
        desk.now = desk.now.addSecs(2 * 60 * 60);
        desk.check->maybeCheckForUpdates();
    }
    QTest::qWait(100);
    QCOMPARE(desk.server.requests.size(), 1);
    desk.now = desk.now.addSecs(2 * 60 * 60); // past midnight, the third day
    desk.check->maybeCheckForUpdates();
    QVERIFY(desk.finished(2));
    QCOMPARE(desk.server.requests.size(), 2);
}

void CheckForUpdatesTest::otherAnswersAreIgnored_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char *status :
         {"201 Created", "202 Accepted", "204 No Content", "206 Partial Content",
          "301 Moved Permanently", "302 Found", "304 Not Modified", "307 Temporary Redirect",
          "400 Bad Request", "401 Unauthorized", "403 Forbidden",
          "407 Proxy Authentication Required", "410 Gone", "418 I'm a teapot",
          "500 Internal Server Error", "503 Service Unavailable"})
        QTest::newRow(status) << QByteArray(status);
    QTest::newRow("no HTTP at all") << QByteArray("\r\n\r\n");
}

void CheckForUpdatesTest::otherAnswersAreIgnored()
{
    QFETCH(QByteArray, status);
    Desk desk;
    const bool hasBody = !status.startsWith("204") && !status.startsWith("304");
    desk.server.answer(status, hasBody ? "<p>Brindle 0.4 is out</p>" : "");
    QVERIFY(desk.startAndFinish());
    QVERIFY(!desk.server.requests.isEmpty());
    QVERIFY(desk.nothingHappened());
}

void CheckForUpdatesTest::aRedirectIsNotFollowed()
{
    HttpServer elsewhere;
    elsewhere.answer("200 OK", "<p>Brindle 0.4 is out</p>");
    Desk desk;
    for (const char *status : {"301 Moved Permanently", "302 Found", "308 Permanent Redirect"}) {
        desk.server.answerWithHeaders(
            status, "Location: http://" + elsewhere.host().toLatin1() + "/updates/0.3.html\r\n",
            "");
        const int before = desk.server.connectionsEnded;
        desk.start();
        QVERIFY(desk.finished(before + 1));
        QVERIFY(desk.nothingHappened());
    }
    QCOMPARE(desk.server.requests.size(), 3);
    QVERIFY(elsewhere.requests.isEmpty());
}

void CheckForUpdatesTest::aBodyEndsAtItsFirstZeroByte()
{
    Desk desk;
    desk.server.answer("200 OK", QByteArray("<p>before</p>\0<p>after</p>", 26));
    QVERIFY(desk.startAndFinish());
    QCOMPARE(desk.text(), u"before"_s);
}

void CheckForUpdatesTest::aBodyOfAMebibyteIsShownAsPlainText()
{
    Desk desk;
    QByteArray body = "<p>out</p><!--";
    body += QByteArray(CheckForUpdates::largestAnnouncement - body.size() - 3, 'x') + "-->";
    desk.server.answer("200 OK", body);
    QVERIFY(desk.startAndFinish());
    QTRY_VERIFY(desk.text().startsWith(u"<p>out</p><!--x"_s));
}

void CheckForUpdatesTest::aPageMadeToFreezeTheLayoutIsShownAsPlainText()
{
    Desk desk;
    desk.server.answer("200 OK", QByteArray("<table><tr><td>").repeated(3000));
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.dialog() && desk.dialog()->isVisible());
    QVERIFY(desk.text().startsWith(u"<table><tr><td><table>"_s));
}

void CheckForUpdatesTest::aBodyWithoutEndIsGivenUpAfterAMebibyte()
{
    Desk desk;
    desk.server.answer("200 OK", "<p>out</p>", HttpServer::Then::Flood);
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.nothingHappened());
    // What lies in the buffers of two sockets comes on top.
    QVERIFY2(desk.server.bytesSent < 32 * CheckForUpdates::largestAnnouncement,
             qPrintable(QString::number(desk.server.bytesSent)));
}

void CheckForUpdatesTest::aServerThatStallsIsGivenUp_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<HttpServer::Then>("then");
    QTest::newRow("before the answer") << QByteArray() << HttpServer::Then::Stall;
    QTest::newRow("within the body") << QByteArray("200 OK") << HttpServer::Then::Stall;
    QTest::newRow("a byte now and then") << QByteArray("200 OK") << HttpServer::Then::Trickle;
}

void CheckForUpdatesTest::aServerThatStallsIsGivenUp()
{
    QFETCH(QByteArray, status);
    QFETCH(HttpServer::Then, then);
    Desk desk;
    desk.timeLimitMs = shortLimitMs;
    desk.server.answerWithHeaders(status, "Content-Length: 1000\r\n", "<p>out</p>", then);
    QElapsedTimer time;
    time.start();
    QVERIFY(desk.startAndFinish());
    QVERIFY2(time.elapsed() >= shortLimitMs, qPrintable(QString::number(time.elapsed())));
    QVERIFY(desk.nothingHappened());
}

void CheckForUpdatesTest::withoutAServerNothingHappens()
{
    Desk desk;
    desk.start();
    desk.check.reset();
    CheckForUpdates::Source source{desk.server.host(), [&desk] { return desk.now; },
                                   CheckForUpdates::transferTimeoutMs};
    desk.server.close();
    desk.check = std::make_unique<CheckForUpdates>(&desk.window, source);
    QSignalSpy finished(desk.check->findChild<QNetworkAccessManager *>(),
                        &QNetworkAccessManager::finished);
    QVERIFY(finished.wait(answeredSoonMs));
    QVERIFY(desk.nothingHappened());
}

void CheckForUpdatesTest::theTimeLimitIsThirtySeconds()
{
    QCOMPARE(CheckForUpdates::Source().timeLimitMs, 30'000);
}

void CheckForUpdatesTest::aCheckIsDueAfterThreeCalendarDays_data()
{
    QTest::addColumn<QDateTime>("last");
    QTest::addColumn<bool>("due");
    // Now is the 10th, 9:00.
    QTest::newRow("today") << QDateTime(QDate(2026, 3, 10), QTime(8, 0)) << false;
    QTest::newRow("right now") << QDateTime(QDate(2026, 3, 10), QTime(9, 0)) << false;
    QTest::newRow("two days ago") << QDateTime(QDate(2026, 3, 8), QTime(0, 0)) << false;
    QTest::newRow("three days ago, less than 72 hours")
        << QDateTime(QDate(2026, 3, 7), QTime(23, 59, 59)) << true;
    QTest::newRow("three days ago") << QDateTime(QDate(2026, 3, 7), QTime(9, 0)) << true;
    QTest::newRow("years ago") << QDateTime(QDate(2009, 1, 1), QTime(9, 0)) << true;
}

void CheckForUpdatesTest::aCheckIsDueAfterThreeCalendarDays()
{
    QFETCH(QDateTime, last);
    QFETCH(bool, due);
    Desk desk;
    desk.server.answer("404 Not Found", "");
    QSettings().setValue(lastCheck, last);
    desk.start();
    if (due)
        QVERIFY(desk.finished(1));
    else
        QTest::qWait(200);
    QCOMPARE(desk.server.requests.size(), due ? 1 : 0);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), due ? desk.now : last);
}

void CheckForUpdatesTest::aDateThatIsInvalidOrInTheFutureCountsAsNone_data()
{
    QTest::addColumn<QVariant>("last");
    QTest::newRow("rubbish") << QVariant(u"rubbish"_s);
    QTest::newRow("empty") << QVariant(QString());
    QTest::newRow("a number") << QVariant(12);
    QTest::newRow("an invalid date") << QVariant(QDateTime());
    QTest::newRow("a second ahead") << QVariant(QDateTime(QDate(2026, 3, 10), QTime(9, 0, 1)));
    QTest::newRow("years ahead") << QVariant(QDateTime(QDate(2099, 1, 1), QTime(0, 0)));
}

void CheckForUpdatesTest::aDateThatIsInvalidOrInTheFutureCountsAsNone()
{
    QFETCH(QVariant, last);
    Desk desk;
    desk.server.answer("404 Not Found", "");
    QSettings().setValue(lastCheck, last);
    QVERIFY(desk.startAndFinish());
    QCOMPARE(desk.server.requests.size(), 1);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::everyTwoHoursItIsLookedWhetherACheckIsDue()
{
    Desk desk;
    desk.server.answer("404 Not Found", "");
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.tick() && desk.tick()->isActive() && !desk.tick()->isSingleShot());
    QCOMPARE(desk.tick()->interval(), 2 * 60 * 60 * 1000);
    QVERIFY(desk.passTick());
    QTest::qWait(100);
    QCOMPARE(desk.server.requests.size(), 1);
    desk.now = desk.now.addDays(3);
    QVERIFY(desk.passTick());
    QVERIFY(desk.finished(2));
    QCOMPARE(desk.server.requests.size(), 2);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::aFailedCheckIsRepeatedAtTheNextTick()
{
    Desk desk;
    desk.server.answer("500 Internal Server Error", "");
    const QDateTime before = desk.now.addDays(-4);
    QSettings().setValue(lastCheck, before);
    QVERIFY(desk.startAndFinish());
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), before);
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.passTick());
    QTRY_COMPARE(desk.text(), u"out"_s);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::itsTitleButtonsAndModality()
{
    Desk desk;
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.startAndFinish());
    QCOMPARE(desk.dialog()->windowTitle(), u"Updates Available"_s);
    QCOMPARE(desk.dialog()->getWindowName(), u"UpdatesAvailable"_s);
    QCOMPARE(desk.dialog()->windowModality(), Qt::ApplicationModal);
    QCOMPARE(desk.dialog()->parentWidget(), &desk.window);
    const auto *box = desk.dialog()->findChild<QDialogButtonBox *>(u"buttonBox"_s);
    QCOMPARE(box->buttons().size(), 2);
    QPushButton *later = desk.button(u"Update later"_s);
    QPushButton *stop = desk.button(u"Stop checking for updates"_s);
    QCOMPARE(box->buttonRole(later), QDialogButtonBox::RejectRole);
    QCOMPARE(box->buttonRole(stop), QDialogButtonBox::DestructiveRole);
    for (const QPushButton *button : {later, stop})
        QVERIFY(!button->isDefault() && !button->autoDefault());
}

void CheckForUpdatesTest::updateLaterAndEscapeCloseAndChangeNothing_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Update later") << false;
    QTest::newRow("Escape") << true;
}

void CheckForUpdatesTest::updateLaterAndEscapeCloseAndChangeNothing()
{
    QFETCH(bool, byKey);
    Desk desk;
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.startAndFinish());
    if (byKey)
        QTest::keyClick(desk.dialog()->windowHandle(), Qt::Key_Escape);
    else
        QTest::mouseClick(desk.button(u"Update later"_s), Qt::LeftButton);
    QVERIFY(!desk.dialog()->isVisible());
    QVERIFY(!QSettings().contains(dontCheck));
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
}

void CheckForUpdatesTest::stopCheckingForUpdatesHoldsAcrossRestartsUntilSwitchedOnAgain()
{
    Desk desk;
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.startAndFinish());
    QTest::mouseClick(desk.button(u"Stop checking for updates"_s), Qt::LeftButton);
    QVERIFY(!desk.dialog()->isVisible());
    QCOMPARE(QSettings().value(dontCheck).toBool(), true);
    QCOMPARE(QSettings().value(lastCheck).toDateTime(), desk.now);
    desk.now = desk.now.addDays(30);
    desk.check->maybeCheckForUpdates();
    for (int restarts = 0; restarts < 2; ++restarts)
        desk.start();
    QSettings().setValue(dontCheck, false); // its presence is what counts
    QVERIFY(desk.passTick());
    QTest::qWait(100);
    QCOMPARE(desk.server.requests.size(), 1);
    QSettings().remove(dontCheck); // what the settings dialog does
    QVERIFY(desk.passTick());
    QVERIFY(desk.finished(2));
    QCOMPARE(desk.server.requests.size(), 2);
}

void CheckForUpdatesTest::stopCheckingReactsToThePressAlready()
{
    Desk desk;
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.startAndFinish());
    QTest::mousePress(desk.button(u"Stop checking for updates"_s), Qt::LeftButton);
    QVERIFY(!desk.dialog()->isVisible());
    QVERIFY(QSettings().contains(dontCheck));
}

void CheckForUpdatesTest::ofTwoAnnouncementsInARowTheSecondClosesTheFirst()
{
    Desk desk;
    desk.server.answer("200 OK", "first");
    QVERIFY(desk.startAndFinish());
    const QPointer<UpdatesAvailable> first = desk.dialog();
    desk.server.answer("200 OK", "second");
    desk.check->checkForUpdates();
    QVERIFY(desk.finished(2));
    QCOMPARE(desk.dialogs().size(), 2);
    QVERIFY(!first->isVisible());
    QVERIFY(desk.dialog()->isVisible());
    QCOMPARE(desk.text(), u"second"_s);
    QVERIFY(!QSettings().contains(dontCheck));
}

void CheckForUpdatesTest::hidingTheDialogActivatesTheMainWindow()
{
    Desk desk;
    desk.server.answer("200 OK", "out");
    QVERIFY(desk.startAndFinish());
    QCOMPARE(desk.window.activations, 0);
    desk.dialog()->close();
    QCOMPARE(desk.window.activations, 1);
}

void CheckForUpdatesTest::nothingThatThePageRefersToIsLoaded_data()
{
    QTest::addColumn<QString>("page");
    QTest::newRow("file URL") << u"<img src=\"file://%1/red.png\">"_s;
    QTest::newRow("plain path") << u"<img src=\"%1/red.png\">"_s;
    QTest::newRow("sized plain path") << u"<img width=40 height=40 src=\"%1/red.png\">"_s;
    QTest::newRow("relative path") << u"<img src=\"red.png\">"_s;
    QTest::newRow("http") << u"<img src=\"http://%2/red.png\">"_s;
    QTest::newRow("no scheme") << u"<img src=\"//%2/red.png\">"_s;
    QTest::newRow("background") << u"<body background=\"%1/red.png\">text"_s;
    QTest::newRow("background of a table")
        << u"<table width=200><tr><td style=\"background-image:url(%1/red.png)\">x</td></tr></table>"_s;
    QTest::newRow("style sheet, file URL")
        << u"<html><head><link rel=\"stylesheet\" type=\"text/css\" href=\"file://%1/red.css\">"
           u"</head><body><p>text</p></body></html>"_s;
    QTest::newRow("style sheet, plain path")
        << u"<html><head><link rel=\"stylesheet\" type=\"text/css\" href=\"%1/red.css\">"
           u"</head><body><p>text</p></body></html>"_s;
    QTest::newRow("imported style sheet")
        << u"<html><head><style>@import url(%1/red.css);</style></head><body><p>text</p></body></html>"_s;
}

void CheckForUpdatesTest::nothingThatThePageRefersToIsLoaded()
{
    QFETCH(QString, page);
    Desk desk;
    const QTemporaryDir folder;
    writeFile(folder.filePath(u"red.png"_s), redPicture());
    writeFile(folder.filePath(u"red.css"_s), "p { background-color: #ff0000 }");
    const QString before = QDir::currentPath();
    const auto back = qScopeGuard([&] { QDir::setCurrent(before); });
    QDir::setCurrent(folder.path());
    page.replace(u"%1"_s, folder.path()).replace(u"%2"_s, desk.server.host());
    desk.server.answer("200 OK", page.toLatin1());
    QVERIFY(desk.startAndFinish());
    QVERIFY(desk.dialog() && desk.dialog()->isVisible());
    QVERIFY(!showsRed(desk.browser()));
    // The browser itself loads nothing either, whatever reaches it.
    UpdateTextBrowser browser;
    browser.setHtml(page);
    QVERIFY(!showsRed(&browser));
    QTest::qWait(100);
    QCOMPARE(desk.server.requests.size(), 1);
}

// Small as it is in the page, it can be huge once it is unpacked.
void CheckForUpdatesTest::aPictureInsideThePageIsNotUnpacked()
{
    Desk desk;
    const QByteArray address = "data:image/png;base64," + redPicture().toBase64();
    desk.server.answer("200 OK", "<img src=\"" + address + "\">");
    QVERIFY(desk.startAndFinish());
    QVERIFY(!showsRed(desk.browser()));
    UpdateTextBrowser browser;
    browser.setHtml(u"<img src=\"%1\"><p>text</p>"_s.arg(QString::fromLatin1(address)));
    QVERIFY(!showsRed(&browser));
}

void CheckForUpdatesTest::linksOpenHttpAndHttpsOnly_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("opens");
    QTest::newRow("http") << u"http://brindle.example/download"_s << true;
    QTest::newRow("https") << u"https://brindle.example/download?a=b"_s << true;
    QTest::newRow("file") << u"file:///etc/passwd"_s << false;
    QTest::newRow("ftp") << u"ftp://brindle.example/"_s << false;
    QTest::newRow("mail") << u"mailto:a@brindle.example"_s << false;
    QTest::newRow("own scheme") << u"brindle:do"_s << false;
    QTest::newRow("path") << u"/etc/passwd"_s << false;
    QTest::newRow("script") << u"javascript:alert(1)"_s << false;
}

void CheckForUpdatesTest::linksOpenHttpAndHttpsOnly()
{
    QFETCH(QString, link);
    QFETCH(bool, opens);
    Desk desk;
    const Browser system;
    desk.server.answer("200 OK", "<p><a href=\"" + link.toLatin1() + "\">link</a> text</p>");
    QVERIFY(desk.startAndFinish());
    QVERIFY(clickLink(desk.browser(), link));
    QCOMPARE(system.opened, opens ? QList<QUrl>{QUrl(link)} : QList<QUrl>());
    QCOMPARE(desk.text(), u"link text"_s); // and the page stays
}

QTEST_MAIN(CheckForUpdatesTest)
#include "CheckForUpdatesTest.moc"
