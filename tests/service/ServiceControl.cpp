// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceControl.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QTcpSocket>

namespace {

QString textOf(const QJsonObject& command, QLatin1String name)
{
    return command.value(name).toString();
}

QJsonObject failure(const QString& text)
{
    return {{QStringLiteral("error"), text}};
}

/// "wrong_types" for `WrongTypes`.
QString kindName(const char* key)
{
    QString name;
    for (const QChar letter : QString::fromLatin1(key)) {
        if (letter.isUpper() && !name.isEmpty()) {
            name += QLatin1Char('_');
        }
        name += letter.toLower();
    }
    return name;
}

std::optional<Fault::Kind> kindNamed(const QString& name)
{
    const QMetaEnum kinds = QMetaEnum::fromType<Fault::Kind>();
    for (int i = 0; i < kinds.keyCount(); ++i) {
        if (kindName(kinds.key(i)) == name) {
            return static_cast<Fault::Kind>(kinds.value(i));
        }
    }
    return std::nullopt;
}

QJsonObject described(const ServedRequest& served)
{
    const QMetaEnum kinds = QMetaEnum::fromType<Fault::Kind>();
    return {
        {QStringLiteral("type"), served.request.type()},
        {QStringLiteral("envelope"), served.request.envelope},
        {QStringLiteral("fault"), kindName(kinds.valueToKey(static_cast<int>(served.fault.kind)))},
        {QStringLiteral("status"), served.status},
        {QStringLiteral("violations"), QJsonArray::fromStringList(served.request.violations)}};
}

} // namespace

ServiceControl::ServiceControl(AccountService& service)
    : m_service(service)
    , m_listener([this](const HttpRequest& request, QTcpSocket& socket) {
        const QJsonObject answer = execute(QJsonDocument::fromJson(request.body).object());
        HttpListener::send(socket, {.body = QJsonDocument(answer).toJson(QJsonDocument::Compact)});
    })
{
}

quint16 ServiceControl::start(quint16 port)
{
    return m_listener.start(port);
}

const QHash<QString, ServiceControl::Handler>& ServiceControl::handlers()
{
    using Self = ServiceControl;
    static const QHash<QString, Handler> handlers{
        {QStringLiteral("fault"), &Self::addFault},
        {QStringLiteral("soak"), &Self::soak},
        {QStringLiteral("clear_faults"), &Self::clearFaults},
        {QStringLiteral("computer"), &Self::addComputer},
        {QStringLiteral("agree_at_once"), &Self::agreeAtOnce},
        {QStringLiteral("archive"), &Self::archive},
        {QStringLiteral("message"), &Self::addMessage},
        {QStringLiteral("forget_client_tokens"), &Self::forgetClientTokens},
        {QStringLiteral("state"), &Self::state},
        {QStringLiteral("forget_requests"), &Self::forgetRequests},
        {QStringLiteral("stop"), &Self::stop},
        {QStringLiteral("resume"), &Self::resume},
    };
    return handlers;
}

QJsonObject ServiceControl::execute(const QJsonObject& command)
{
    const QString name = textOf(command, QLatin1String("command"));
    const Handler handler = handlers().value(name);
    return handler != nullptr ? (this->*handler)(command)
                              : failure(QStringLiteral("there is no command \"%1\"").arg(name));
}

QJsonObject ServiceControl::addFault(const QJsonObject& command)
{
    const auto kind =
        kindNamed(command.value(QLatin1String("kind")).toString(QStringLiteral("none")));
    if (!kind) {
        return failure(QStringLiteral("there is no such kind of fault"));
    }
    const bool acts = command.value(QLatin1String("act")).toBool(true);
    m_service.faults().add({.kind = *kind,
                            .when = acts ? Fault::When::AfterActing : Fault::When::BeforeActing,
                            .status = command.value(QLatin1String("status")).toInt(Fault().status),
                            .delayMs = command.value(QLatin1String("delay_ms")).toInt(),
                            .times = command.value(QLatin1String("times")).toInt(1),
                            .requestType = textOf(command, QLatin1String("type"))});
    return {};
}

QJsonObject ServiceControl::soak(const QJsonObject& command)
{
    m_service.faults().soak(static_cast<quint32>(command.value(QLatin1String("seed")).toInteger()),
                            command.value(QLatin1String("share")).toDouble());
    return {};
}

QJsonObject ServiceControl::clearFaults(const QJsonObject&)
{
    m_service.faults().clear();
    return {};
}

QJsonObject ServiceControl::addComputer(const QJsonObject& command)
{
    ServiceStore& store = m_service.store();
    const auto activation = command.value(QLatin1String("activated")).toBool(true)
                                ? ServiceStore::Activation::Done
                                : ServiceStore::Activation::Pending;
    const qint64 account = store.account(textOf(command, QLatin1String("username")), activation);
    const ServiceComputer computer =
        store.computerNamed(account, textOf(command, QLatin1String("computer")));
    return {{QStringLiteral("userid"), computer.accountId},
            {QStringLiteral("computerid"), computer.id},
            {QStringLiteral("passwordhash"), computer.passwordHash},
            {QStringLiteral("token"), computer.zurgeToken}};
}

QJsonObject ServiceControl::agreeAtOnce(const QJsonObject& command)
{
    const ServiceAgreement agreement{.userName = textOf(command, QLatin1String("username")),
                                     .computer = textOf(command, QLatin1String("computer"))};
    m_service.protocol().setAgreement(agreement.userName.isEmpty() ? std::nullopt
                                                                   : std::make_optional(agreement));
    return {};
}

QJsonObject ServiceControl::archive(const QJsonObject& command)
{
    m_service.store().setArchived(command.value(QLatin1String("computerid")).toInteger(),
                                  command.value(QLatin1String("archived")).toBool(true));
    return {};
}

QJsonObject ServiceControl::addMessage(const QJsonObject& command)
{
    ServiceStore& store = m_service.store();
    const qint64 account = store.account(textOf(command, QLatin1String("username")));
    return {{QStringLiteral("id"), store.addMessage(account, command)}};
}

QJsonObject ServiceControl::forgetClientTokens(const QJsonObject&)
{
    m_service.store().forgetClientTokens();
    return {};
}

QJsonObject ServiceControl::state(const QJsonObject&)
{
    QJsonArray requests;
    for (const ServedRequest& served : m_service.requests()) {
        requests.append(described(served));
    }
    return {{QStringLiteral("requests"), requests},
            {QStringLiteral("violations"), QJsonArray::fromStringList(m_service.violations())}};
}

QJsonObject ServiceControl::forgetRequests(const QJsonObject&)
{
    m_service.forgetRequests();
    return {};
}

QJsonObject ServiceControl::stop(const QJsonObject&)
{
    m_service.stop();
    return {};
}

QJsonObject ServiceControl::resume(const QJsonObject&)
{
    return m_service.resume() ? QJsonObject()
                              : failure(QStringLiteral("the port is taken meanwhile"));
}
