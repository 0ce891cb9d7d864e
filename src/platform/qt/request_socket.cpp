#include "platform/qt/request_socket.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QTimer>
#include <optional>

namespace tabelion {
namespace {

constexpr quint32 kMagic = 0x54424C4E;  // "TBLN"
constexpr quint16 kVersion = 1;
constexpr qint64 kHeaderBytes = 10;
constexpr quint32 kMostBytes = 1 << 20;
constexpr char kAnswer = 6;
constexpr int kConnectMs = 1000;
constexpr int kAnswerMs = 5000;
constexpr int kSilenceMs = 10000;

std::string text(const QByteArray& bytes) {
  return bytes.toStdString();
}

// None when it is too long.
std::optional<QByteArray> frameOf(const StartRequest& request) {
  QByteArray body;
  QDataStream out(&body, QIODevice::WriteOnly);
  out << quint8(request.kind) << QByteArray::fromStdString(request.text)
      << QByteArray::fromStdString(request.activation_token);
  if (body.size() > kMostBytes) return std::nullopt;
  QByteArray header;
  QDataStream(&header, QIODevice::WriteOnly) << kMagic << kVersion << quint32(body.size());
  return header + body;
}

enum class Reading { kNotAllThere, kJunk, kWhole };

Reading readFrame(QIODevice& from, StartRequest& request) {
  const QByteArray header = from.peek(kHeaderBytes);
  if (header.size() < kHeaderBytes) return Reading::kNotAllThere;
  quint32 magic = 0;
  quint16 version = 0;
  quint32 length = 0;
  QDataStream(header) >> magic >> version >> length;
  if (magic != kMagic || version != kVersion || length > kMostBytes) return Reading::kJunk;
  if (from.bytesAvailable() < kHeaderBytes + length) return Reading::kNotAllThere;
  from.skip(kHeaderBytes);
  const QByteArray body = from.read(length);
  QDataStream in(body);
  quint8 kind = 0;
  QByteArray words;
  QByteArray token;
  in >> kind >> words >> token;
  // The end of the session is no other program's to tell.
  const bool known = kind == quint8(RequestKind::kCommandLine) ||
                     kind == quint8(RequestKind::kOpenFile) ||
                     kind == quint8(RequestKind::kActivate);
  if (in.status() != QDataStream::Ok || !in.atEnd() || !known) return Reading::kJunk;
  request = {RequestKind(kind), text(words), text(token)};
  return Reading::kWhole;
}

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
  socket->setReadBufferSize(kHeaderBytes + kMostBytes);
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  QObject::connect(socket, &QLocalSocket::readyRead, &server_, [this, socket] { read(socket); });
  QTimer::singleShot(kSilenceMs, socket, [socket] { socket->abort(); });
  read(socket);  // what came before anybody was told
}

void RequestServer::read(QLocalSocket* socket) {
  StartRequest request;
  switch (readFrame(*socket, request)) {
    case Reading::kNotAllThere:
      return;
    case Reading::kJunk:
      return socket->abort();
    case Reading::kWhole:
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
  socket.write(*frame);
  while (socket.bytesAvailable() == 0) {
    if (!socket.waitForReadyRead(msLeft(deadline))) break;
  }
  char answer = 0;
  if (socket.getChar(&answer) && answer == kAnswer) return Delivery::kTaken;
  return deadline.hasExpired() ? Delivery::kNoAnswer : Delivery::kNobodyThere;
}

}  // namespace tabelion
