#include "platform/qt/request_socket.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QTimer>

#include "platform/std/request_frame.h"

namespace tabelion {
namespace {

constexpr char kAnswer = 6;
constexpr int kConnectMs = 1000;
constexpr int kAnswerMs = 5000;
constexpr int kSilenceMs = 10000;

int msLeft(const QDeadlineTimer& deadline) {
  return int(deadline.remainingTime());
}

}  // namespace

Status RequestServer::listen(const std::string& socket_path) {
  const QString path = QFile::decodeName(socket_path.c_str());
  QLocalServer::removeServer(path);
  if (!server_.listen(path)) {
    return makeError(ErrorKind::kCannotOpen,
                     socket_path + ": " + server_.errorString().toStdString());
  }
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] {
    while (QLocalSocket* socket = server_.nextPendingConnection()) serve(socket);
  });
  return Done{};
}

void RequestServer::serve(QLocalSocket* socket) {
  socket->setReadBufferSize(kRequestHeader + kLargestRequest);
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  QObject::connect(socket, &QLocalSocket::readyRead, &server_, [this, socket] { read(socket); });
  QTimer::singleShot(kSilenceMs, socket, [socket] { socket->abort(); });
  read(socket);  // what came before anybody was told
}

void RequestServer::read(QLocalSocket* socket) {
  StartRequest request;
  const QByteArray bytes = socket->peek(kRequestHeader + kLargestRequest);
  switch (readFrame({bytes.data(), static_cast<std::size_t>(bytes.size())}, request)) {
    case FrameReading::kNotAllThere:
      return;
    case FrameReading::kJunk:
      return socket->abort();
    case FrameReading::kWhole:
      socket->disconnect(&server_);  // what follows is nobody's business
      taker_(request);
      socket->write(&kAnswer, 1);
      socket->disconnectFromServer();
  }
}

Delivery sendRequest(const std::string& socket_path, const StartRequest& request) {
  const auto frame = frameOf(request);
  if (!frame) return Delivery::kTooLong;
  QLocalSocket socket;
  socket.connectToServer(QFile::decodeName(socket_path.c_str()));
  if (!socket.waitForConnected(kConnectMs)) return Delivery::kNobodyThere;
  const QDeadlineTimer deadline(kAnswerMs);
  socket.write(frame->data(), static_cast<qint64>(frame->size()));
  while (socket.bytesAvailable() == 0) {
    if (!socket.waitForReadyRead(msLeft(deadline))) break;
  }
  char answer = 0;
  if (socket.getChar(&answer) && answer == kAnswer) return Delivery::kTaken;
  return deadline.hasExpired() ? Delivery::kNoAnswer : Delivery::kNobodyThere;
}

}  // namespace tabelion
