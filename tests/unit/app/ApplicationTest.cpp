// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QPushButton>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{
/// Receives events by running what the test gave it.
class Handler : public QObject
{
public:
    explicit Handler(std::function<bool()> action)
        : m_action(std::move(action))
    {
    }
    bool event(QEvent *) override { return m_action(); }

private:
    std::function<bool()> m_action;
};
} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void aFileErrorInASlotRunByTheEventLoopDoesNotEndTheProgram();
    void notifyGivesFalseForAFileErrorAndElseTheHandlersAnswer();
    void otherExceptionsPass();
};

void ApplicationTest::aFileErrorInASlotRunByTheEventLoopDoesNotEndTheProgram()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"one.bdl"_s));
    QSignalSpy errors(&store, &DiskStore::errorOccurred);
    const auto fail = [&store] { store.throwFileExceptionAndEmit(u"testing"_s); };
    QPushButton button;
    QObject::connect(&button, &QPushButton::clicked, &store, fail);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    QTimer::singleShot(0, &store, fail);
    QMetaObject::invokeMethod(&store, fail, Qt::QueuedConnection);
    // Not by the mouse: the toolkit loses a few bytes of a mouse event that an exception leaves.
    QTimer::singleShot(20, &button, &QPushButton::click);
    constexpr int ended = 42;
    QTimer::singleShot(100, &store, [] { QCoreApplication::exit(ended); });
    QCOMPARE(QCoreApplication::exec(), ended);
    QCOMPARE(errors.count(), 3);
    QVERIFY(button.isVisible());
}

void ApplicationTest::notifyGivesFalseForAFileErrorAndElseTheHandlersAnswer()
{
    QEvent event(QEvent::User);
    Handler failing([]() -> bool { throw DiskStore::FileException(u"text"_s, u"details"_s); });
    QVERIFY(!qApp->notify(&failing, &event));
    Handler yes([] { return true; });
    QVERIFY(qApp->notify(&yes, &event));
    Handler no([] { return false; });
    QVERIFY(!qApp->notify(&no, &event));
}

void ApplicationTest::otherExceptionsPass()
{
    QEvent event(QEvent::User);
    Handler failing([]() -> bool { throw "bad"; });
    QByteArray caught;
    try {
        qApp->notify(&failing, &event);
    } catch (const char *text) {
        caught = text;
    }
    QCOMPARE(caught, QByteArray("bad"));
}

int main(int argc, char **argv)
{
    const Application application(argc, argv);
    ApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ApplicationTest.moc"
