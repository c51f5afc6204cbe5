// SPDX-License-Identifier: MIT
#include "ui/CheckForUpdates.h"

#include "shared/Maker.h"
#include "shared/Version.h"
#include "ui/AbstractWindow.h"
#include "ui/UpdatesAvailable.h"

#include <QLoggingCategory>
#include <QSettings>
#include <memory>

using namespace Qt::StringLiterals;

namespace
{
Q_LOGGING_CATEGORY(lcUpdates, "brindle.ui.updates")

constexpr int statusOk = 200;

QString lastCheckKey()
{
    return u"lastcheckforupdates"_s;
}
} // namespace

CheckForUpdates::CheckForUpdates(AbstractWindow *window)
    : CheckForUpdates(window, Source())
{
}

CheckForUpdates::CheckForUpdates(AbstractWindow *window, Source source)
    : m_window(window)
    , m_source(std::move(source))
{
    connect(&m_network, &QNetworkAccessManager::finished, this, &CheckForUpdates::replyFinished);
    connect(&m_timer, &QTimer::timeout, this, &CheckForUpdates::maybeCheckForUpdates);
    maybeCheckForUpdates();
    m_timer.start(tickMs);
}

void CheckForUpdates::maybeCheckForUpdates()
{
    const QSettings settings;
    if (settings.contains(u"dontcheckforupdates"_s))
        return;
    const QDateTime now = m_source.clock();
    const QDateTime last = settings.value(lastCheckKey()).toDateTime();
    // A date that can't be read or lies ahead would silence the check for good.
    if (!last.isValid() || last > now || last.daysTo(now) >= daysBetweenChecks)
        checkForUpdates();
}

QUrl CheckForUpdates::announcementUrl() const
{
    const QString host
        = m_source.host.isEmpty() ? QString::fromLatin1(Maker::updateHost) : m_source.host;
    return QUrl(u"http://"_s + host + u"/updates/"_s + Version::text() + u".html"_s);
}

void CheckForUpdates::checkForUpdates()
{
    QNetworkRequest request(announcementUrl());
    request.setRawHeader("User-Agent", "AD");
    // The toolkit would name the user's language, and what it can unpack depends on its build.
    request.setRawHeader("Accept-Language", "en,*");
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    // The server is told the version and nothing else, so it isn't reminded of an earlier visit.
    for (const auto cookies :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute})
        request.setAttribute(cookies, QNetworkRequest::Manual);
    request.setTransferTimeout(m_source.timeLimitMs);
    qCDebug(lcUpdates).noquote() << u"Checking for updates (%1)"_s.arg(request.url().toString());
    QNetworkReply *reply = m_network.get(request);
    connect(reply, &QNetworkReply::errorOccurred, this, &CheckForUpdates::httpRequestError);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > largestAnnouncement)
            reply->abort();
    });
    // The timeout above starts anew with every byte; this one doesn't.
    QTimer::singleShot(m_source.timeLimitMs, reply, &QNetworkReply::abort);
}

void CheckForUpdates::httpRequestError(QNetworkReply::NetworkError)
{
    // Everything is handled once the reply is finished.
}

void CheckForUpdates::replyFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool missing = reply->error() == QNetworkReply::ContentNotFoundError;
    const bool found = reply->error() == QNetworkReply::NoError && status == statusOk;
    if (!missing && !found)
        return;
    QSettings settings;
    settings.setValue(lastCheckKey(), m_source.clock());
    settings.sync();
    if (found)
        announce(reply->readAll());
}

void CheckForUpdates::announce(const QByteArray &body)
{
    // Up to the first zero byte.
    const QString html = QString::fromLatin1(body.constData());
    auto dialog = std::make_unique<UpdatesAvailable>(html, m_window);
    connect(dialog.get(), &AbstractWindow::hiding, m_window, &AbstractWindow::activate);
    dialog.release()->show(); // owned by its parent, the window
}
