// SPDX-License-Identifier: MIT
#include "app/activation/dbus/ApplicationAdaptor.h"

#include "app/activation/InstanceLog.h"
#include "app/activation/dbus/ApplicationBusName.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace
{

using Kind = InstanceRequest::Kind;

/// Far beyond any real one; passed on, a longer one could break the connection to the desktop.
constexpr qsizetype longestToken = 1000;

/// Desktops give the one, the other or both, then with the same content.
QByteArray tokenIn(const QVariantMap &platformData)
{
    for (const QString &key : {u"activation-token"_s, u"desktop-startup-id"_s}) {
        QByteArray token = platformData.value(key).toString().toUtf8();
        if (!token.isEmpty() && token.size() <= longestToken)
            return token;
    }
    return {};
}

/// Empty unless \a text names a file of this machine.
QString pathOf(const QString &text)
{
    const QUrl uri(text, QUrl::StrictMode);
    const bool isHere = uri.host().isEmpty() || uri.host() == "localhost"_L1;
    if (!uri.isValid() || uri.scheme() != "file"_L1 || !isHere)
        return {};
    const QString path = uri.path(QUrl::FullyDecoded);
    return path.startsWith(u'/') && !path.contains(QChar::Null) ? path : QString();
}

QStringList pathsOf(const QStringList &uris)
{
    QStringList paths;
    for (const QString &uri : uris) {
        const QString path = pathOf(uri);
        if (paths.size() == ApplicationAdaptor::mostFiles) {
            qCDebug(instanceLog) << "asked to open" << uris.size() << "files; the rest is ignored";
            break;
        }
        if (path.isEmpty())
            qCDebug(instanceLog) << "asked to open what is no file:" << uri.left(longestToken);
        else
            paths.append(path);
    }
    return paths;
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(const QDBusConnection &connection, Receiver receiver,
                                       QObject *parent)
    : QDBusAbstractAdaptor(parent)
    , m_connection(connection)
    , m_receiver(std::move(receiver))
{
}

void ApplicationAdaptor::Activate(const QVariantMap &platformData)
{
    m_receiver({Kind::Activate, {}, tokenIn(platformData)});
}

void ApplicationAdaptor::Open(const QStringList &uris, const QVariantMap &platformData)
{
    m_receiver({Kind::Open, pathsOf(uris), tokenIn(platformData)});
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList &parameter,
                                        const QVariantMap &platformData, const QDBusMessage &call)
{
    Q_UNUSED(parameter)
    if (action == QLatin1StringView(ApplicationBusName::toggleAction)) {
        m_receiver({Kind::Toggle, {}, tokenIn(platformData)});
        return;
    }
    qCDebug(instanceLog) << "asked for the unknown action" << action.left(longestToken);
    call.setDelayedReply(true);
    m_connection.send(call.createErrorReply(QDBusError::InvalidArgs, u"no such action"_s));
}
