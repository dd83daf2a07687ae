// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QRgb>
#include <QSize>
#include <QString>
#include <QTcpServer>

#include <functional>
#include <vector>

class QTcpSocket;

namespace nightjar::testing {

/// A picture of a tile: one colour.
[[nodiscard]] QByteArray tileBytes(const char* format = "png", QSize size = {256, 256},
                                   QRgb color = 0xff3366cc);

/// A web server on this computer whose answers the test makes up.
class TileServer : public QTcpServer {
public:
    /// What is sent for a request (its head); nothing: the answer is kept waiting.
    using Answer = std::function<QByteArray(const QByteArray& request)>;

    TileServer();

    [[nodiscard]] QString urlTemplate() const;
    [[nodiscard]] static QByteArray ok(const QByteArray& body,
                                       const QByteArray& headers = "Content-Type: image/png\r\n");
    [[nodiscard]] static QByteArray status(int code, const QByteArray& headers = {});
    /// Sends what it would not before.
    void releaseWaiting(const QByteArray& bytes);

    Answer answer;
    std::vector<QByteArray> requests;
    int connections = 0;
    int open = 0;
    int waiting = 0;

private:
    void serve(QTcpSocket* socket);
};

} // namespace nightjar::testing
