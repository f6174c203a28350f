// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

namespace epr::test {

/// One HTTP answer with its length.
inline QByteArray http(const QByteArray &status, const QByteArray &body, const QByteArray &header = "Connection: close")
{
    const QByteArray length = "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
    return "HTTP/1.1 " + status + length + header + "\r\n\r\n" + body;
}

/// A web server on the loopback interface that gives every request the same answer, word for word, and never hangs up.
struct LoopbackServer final {
    explicit LoopbackServer(const QByteArray &answer, std::unique_ptr<QTcpServer> server = nullptr)
        : m_server(server ? std::move(server) : std::make_unique<QTcpServer>())
        , m_answer(answer)
    {
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
            QTcpSocket *socket = m_server->nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, m_server.get(), [this, socket] { serve(socket); });
            serve(socket); // a request may have come before anyone listened
        });
        if (!m_server->listen(QHostAddress::LocalHost))
            qFatal("Cannot listen: %ls", qUtf16Printable(m_server->errorString()));
    }

    [[nodiscard]] QString address(const QString &scheme = QStringLiteral("http")) const
    {
        return QStringLiteral("%1://127.0.0.1:%2/latest").arg(scheme).arg(m_server->serverPort());
    }

    void serve(QTcpSocket *socket)
    {
        if (!socket->peek(65536).contains("\r\n\r\n"))
            return;
        requests << socket->readAll();
        socket->write(m_answer);
    }

    std::unique_ptr<QTcpServer> m_server;
    QByteArray m_answer;
    QList<QByteArray> requests;
};

} // namespace epr::test
