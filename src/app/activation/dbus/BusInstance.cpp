// SPDX-License-Identifier: MIT
#include "app/activation/BusInstance.h"

#include "app/activation/InstanceLog.h"
#include "app/activation/dbus/ApplicationBusName.h"
#include "platform/BusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace
{

constexpr int answerMs = 5000;

struct TokenPlace {
    const char *variable;
    QLatin1StringView key;
};
constexpr TokenPlace tokenPlaces[] = {
    {"XDG_ACTIVATION_TOKEN", "activation-token"_L1},
    {"DESKTOP_STARTUP_ID", "desktop-startup-id"_L1},
};

QVariantMap platformData()
{
    QVariantMap data;
    for (const TokenPlace &place : tokenPlaces) {
        if (!qEnvironmentVariableIsEmpty(place.variable))
            data.insert(place.key, qEnvironmentVariable(place.variable));
    }
    return data;
}

QStringList urisOf(const QStringList &paths)
{
    QStringList uris;
    for (const QString &path : paths) {
        QUrl uri;
        uri.setScheme(u"file"_s);
        uri.setPath(path, QUrl::DecodedMode);
        uris.append(uri.toString(QUrl::FullyEncoded));
    }
    return uris;
}

QDBusMessage messageFor(const InstanceRequest &request)
{
    const auto call = [](const QString &method) {
        return QDBusMessage::createMethodCall(
            ApplicationBusName::service(), ApplicationBusName::objectPath(),
            QLatin1StringView(ApplicationBusName::interfaceName), method);
    };
    const QVariantMap data = platformData();
    QDBusMessage message;
    if (request.kind == InstanceRequest::Kind::Open) {
        message = call(u"Open"_s);
        message << urisOf(request.files) << data;
    } else if (request.kind == InstanceRequest::Kind::Toggle) {
        message = call(u"ActivateAction"_s);
        message << QString::fromLatin1(ApplicationBusName::toggleAction) << QVariantList() << data;
    } else {
        message = call(u"Activate"_s);
        message << data;
    }
    // The copy that was found on its socket is meant; a new one would only find it, too.
    message.setAutoStartService(false);
    return message;
}

} // namespace

class BusInstance::Bus
{
public:
    BusConnection session;
};

BusInstance::BusInstance()
    : m_bus(std::make_unique<Bus>())
{
}

BusInstance::~BusInstance() = default;

bool BusInstance::isThere() const
{
    return m_bus->session.isConnected()
        && m_bus->session.connection()
               .interface()
               ->isServiceRegistered(ApplicationBusName::service())
               .value();
}

BusInstance::Answer BusInstance::send(const InstanceRequest &request) const
{
    const QDBusMessage reply
        = m_bus->session.connection().call(messageFor(request), QDBus::Block, answerMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Answer::Taken;
    const auto error = QDBusError(reply).type();
    if (error == QDBusError::NoReply || error == QDBusError::Timeout
        || error == QDBusError::TimedOut)
        return Answer::None;
    qCDebug(instanceLog) << "the running copy refused over the session bus:"
                         << reply.errorMessage();
    return Answer::Refused;
}

bool BusInstance::hasActivationToken()
{
    return !platformData().isEmpty();
}
