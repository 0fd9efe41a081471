#include "shell/single_instance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

TVintraSingleInstance::TVintraSingleInstance(const QString& executableName, QObject* parent)
    : QObject(parent) {
    // Named after the executable and the user, as the shared memory of a Windows session would be.
    const QByteArray key = executableName.toUtf8() + '-' + QByteArray::number(uint(getuid()));
    m_serverName =
        QStringLiteral("quillmeal-") +
        QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(16));
}

TVintraSingleInstance::~TVintraSingleInstance() = default;

QStringList TVintraSingleInstance::Limit(const QStringList& parameters) {
    QStringList limited;
    for (qsizetype i = 0; i < parameters.size() && i < MaxParameters; ++i)
        limited << parameters.at(i).left(MaxParameterLength);
    return limited;
}

bool TVintraSingleInstance::Claim() {
    if (m_server)
        return true;
    QLocalSocket probe;
    probe.connectToServer(m_serverName);
    if (probe.waitForConnected(500))
        return false; // someone answers: we are the second start
    auto* server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(m_serverName)) {
        // A server file left by a crashed first instance: nobody answered, so take it over.
        QLocalServer::removeServer(m_serverName);
        if (!server->listen(m_serverName)) {
            delete server;
            return false;
        }
    }
    m_server = server;
    connect(m_server, &QLocalServer::newConnection, this, &TVintraSingleInstance::ReadConnection);
    return true;
}

bool TVintraSingleInstance::HandOver(const QStringList& parameters, int timeoutMs) const {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    QByteArray block;
    QDataStream out(&block, QIODevice::WriteOnly);
    out << Limit(parameters);
    socket.write(block);
    const bool written = socket.waitForBytesWritten(timeoutMs);
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState)
        socket.waitForDisconnected(timeoutMs);
    return written;
}

void TVintraSingleInstance::ReadConnection() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream in(socket);
            in.startTransaction();
            QStringList parameters;
            in >> parameters;
            if (!in.commitTransaction())
                return; // wait for the rest
            emit ParametersReceived(Limit(parameters));
        });
    }
}
