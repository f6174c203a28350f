// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTcpServer>
#include <QTcpSocket>

namespace epr::test {

/// One HTTP answer with its length.
inline QByteArray http(const QByteArray &status, const QByteArray &body)
{
    const QByteArray length = "\r\nContent-Length: " + QByteArray::number(body.size());
    return "HTTP/1.1 " + status + length + "\r\nConnection: close\r\n\r\n" + body;
}

/// A web server on the loopback interface that gives every request the same answer, word for word, and never hangs up.
struct LoopbackServer final {
    explicit LoopbackServer(const QByteArray &answer)
        : m_answer(answer)
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, &m_server, [this, socket] { serve(socket); });
            serve(socket); // a request may have come before anyone listened
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("Cannot listen: %ls", qUtf16Printable(m_server.errorString()));
    }

    [[nodiscard]] QString address() const
    {
        return QStringLiteral("http://127.0.0.1:%1/latest").arg(m_server.serverPort());
    }

    void serve(QTcpSocket *socket)
    {
        if (!socket->peek(65536).contains("\r\n\r\n"))
            return;
        requests << socket->readAll();
        socket->write(m_answer);
    }

    QTcpServer m_server;
    QByteArray m_answer;
    QList<QByteArray> requests;
};

} // namespace epr::test
