// SPDX-License-Identifier: MIT
#pragma once

#include "shared/Clock.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>

class AbstractWindow;

/// Asks the maker's server every few days whether a newer version exists, and announces it.
class CheckForUpdates : public QObject
{
    Q_OBJECT

public:
    /// How often it is looked whether a check is due.
    static constexpr int tickMs = 7'200'000;
    static constexpr int daysBetweenChecks = 3;
    static constexpr int transferTimeoutMs = 30'000;
    static constexpr qint64 largestAnnouncement = 1 << 20;

    /// Where and when to ask, and how long to wait; the defaults are the real ones.
    struct Source {
        QString host; ///< Empty: the maker's update host. May carry a port.
        Clock clock = systemClock();
        int timeLimitMs = transferTimeoutMs;
    };

    /// Checks at once when that is due. \a window, the parent of the announcements, is borrowed.
    explicit CheckForUpdates(AbstractWindow *window);
    CheckForUpdates(AbstractWindow *window, Source source);

public slots:
    void maybeCheckForUpdates();
    void checkForUpdates();
    void replyFinished(QNetworkReply *reply);
    void httpRequestError(QNetworkReply::NetworkError error);

private:
    QUrl announcementUrl() const;
    void announce(const QByteArray &body);

    AbstractWindow *m_window;
    QNetworkAccessManager m_network{this};
    QTimer m_timer{this};
    Source m_source;
};
