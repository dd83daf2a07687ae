// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/ui/map/TileServer.h"

#include <QBuffer>
#include <QImage>
#include <QTcpSocket>

namespace nightjar::testing {

QByteArray tileBytes(const char* format, QSize size, QRgb color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

TileServer::TileServer() : answer([](const QByteArray&) { return ok(tileBytes()); }) {
    listen(QHostAddress::LocalHost);
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = nextPendingConnection())
            serve(socket);
    });
}

void TileServer::serve(QTcpSocket* socket) {
    ++connections;
    ++open;
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        --open;
        socket->deleteLater();
    });
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, heard = QByteArray()]() mutable {
        heard += socket->readAll();
        for (qsizetype end = heard.indexOf("\r\n\r\n"); end >= 0; end = heard.indexOf("\r\n\r\n")) {
            requests.push_back(heard.left(end));
            heard.remove(0, end + 4);
            const QByteArray reply = answer(requests.back());
            if (reply.isEmpty())
                ++waiting;
            socket->write(reply);
        }
    });
}

void TileServer::releaseWaiting(const QByteArray& bytes) {
    waiting = 0;
    for (QTcpSocket* socket : findChildren<QTcpSocket*>())
        socket->write(bytes);
}

QString TileServer::urlTemplate() const {
    return QStringLiteral("http://127.0.0.1:%1/{z}/{x}/{y}.png").arg(serverPort());
}

QByteArray TileServer::ok(const QByteArray& body, const QByteArray& headers) {
    return "HTTP/1.1 200 OK\r\n" + headers + "Content-Length: " + QByteArray::number(body.size()) +
           "\r\n\r\n" + body;
}

QByteArray TileServer::status(int code, const QByteArray& headers) {
    return "HTTP/1.1 " + QByteArray::number(code) + " Told\r\n" + headers + "Content-Length: 0\r\n\r\n";
}

} // namespace nightjar::testing
