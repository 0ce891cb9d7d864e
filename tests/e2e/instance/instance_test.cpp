// Copies of the real program that start, end, freeze and are killed beside each other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "instance/program_copy.h"
#include "support/temporary_folder.h"

namespace tabelion {
namespace {

using ::testing::HasSubstr;

class InstanceTest : public ::testing::Test {
 protected:
  InstanceTest() {
    for (const char* name : {"config/tabelion", "documents/Tabelion", "runtime"}) {
      std::filesystem::create_directories(folder / name);
    }
    std::filesystem::permissions(folder / "runtime", std::filesystem::perms::owner_all);
    folder.write("config/tabelion/settings.json", R"({"Software\\Tabelion3": {"SampleDBs": "1"}})");
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("HOME", folder.path().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    folder.write("films.json",
                 R"({"name": "Films", "fields": [{"name": "Name", "type": "text"}]})");
    folder.write("films.csv", "Name\nOne\n");
    RunningProgram create(
        {TABELION_CLI, "create", "My Films.PDB", "--schema", "films.json", "--data", "films.csv"},
        folder.path(), folder / "errors");
    EXPECT_EQ(create.wait(), 0) << folder.read("errors");
  }

  RunningProgram start(std::vector<std::string> words = {}) {
    words.insert(words.begin(), {TABELION, "--documents", folder / "documents"});
    return RunningProgram(words, folder.path(), folder / ("errors" + std::to_string(++starts)));
  }
  // Not before it has the place.
  RunningProgram startFirst() {
    auto first = start();
    EXPECT_TRUE(eventually([&] {
      return folder.read("runtime/tabelion.lock") == std::to_string(first.pid()) + "\n";
    }));
    return first;
  }
  // What the last start complained of.
  std::string errors() const { return folder.read("errors" + std::to_string(starts)); }

  // Another start ends at once and without a word: a first copy has taken its request.
  void expectHandsOver(const std::vector<std::string>& words = {}) {
    EXPECT_EQ(start(words).wait(), 0);
    EXPECT_EQ(errors(), "");
  }
  // The lock beside a database says who has it open.
  bool opens(pid_t pid) const {
    return eventually([&] {
      return folder.read(".My Films.PDB.lock").find(" " + std::to_string(pid) + " ") !=
             std::string::npos;
    });
  }
  void expectEndsWell(RunningProgram& copy, int signal) {
    copy.signal(signal);
    EXPECT_EQ(copy.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(folder / ".My Films.PDB.lock"));
  }

  TemporaryFolder folder;
  int starts = 0;
};

TEST_F(InstanceTest, OneOfTwentyStaysAfterAKilledOneAndOpensWhatItIsAskedFor) {
  auto killed = startFirst();
  expectHandsOver();
  killed.signal(SIGKILL);
  EXPECT_EQ(killed.wait(), -SIGKILL);
  std::vector<RunningProgram> copies;
  for (int i = 0; i < 20; ++i) copies.push_back(start());
  const auto running = [&] {
    return std::count_if(copies.begin(), copies.end(), [](auto& copy) { return !copy.ended(); });
  };
  ASSERT_TRUE(eventually([&] { return running() <= 1; }));
  EXPECT_EQ(running(), 1);
  RunningProgram* first = nullptr;
  for (int i = 0; i < 20; ++i) {
    RunningProgram& copy = copies[static_cast<std::size_t>(i)];
    if (!copy.ended()) {
      first = &copy;
      continue;
    }
    EXPECT_EQ(copy.wait(), 0);
    EXPECT_EQ(folder.read("errors" + std::to_string(i + 3)), "") << "handed over";
  }
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(start({"My Films.PDB"}).wait(), 0);
  EXPECT_EQ(errors(), "tabelion: A database is opened with --open My Films.PDB.\n");
  EXPECT_FALSE(std::filesystem::exists(folder / ".My Films.PDB.lock")) << "no plain words open";
  expectHandsOver({"--open", "documents/../My Films.PDB"});
  EXPECT_TRUE(opens(first->pid()));
  expectEndsWell(*first, SIGTERM);
}

TEST_F(InstanceTest, FrozenOneHoldsUpNobodyAndGoesOnLater) {
  auto first = startFirst();
  expectHandsOver();
  first.signal(SIGSTOP);
  EXPECT_EQ(start({"--open", "My Films.PDB"}).wait(), 1);
  EXPECT_THAT(errors(),
              HasSubstr("(process " + std::to_string(first.pid()) + ") but does not answer"));
  first.signal(SIGCONT);
  EXPECT_TRUE(opens(first.pid()));
  expectHandsOver();
  expectEndsWell(first, SIGINT);
}

TEST_F(InstanceTest, StartWithoutADisplayIsRefused) {
  ::unsetenv("QT_QPA_PLATFORM");
  ::unsetenv("WAYLAND_DISPLAY");
  for (const char* display : {"", ":7777"}) {
    ::setenv("DISPLAY", display, 1);
    EXPECT_EQ(start().wait(), 1) << display;
    EXPECT_THAT(errors(), HasSubstr("display"));
  }
  ::unsetenv("DISPLAY");
}

std::string number(std::uint32_t value) {
  return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

// What the socket answers to these bytes; empty when it hangs up.
std::string answerTo(const std::string& socket_path, const std::string& bytes) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socket_path.copy(address.sun_path, sizeof address.sun_path - 1);
  const auto* there = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(socket, there, sizeof address) != 0) ADD_FAILURE() << "nobody listens";
  EXPECT_EQ(::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL), ssize_t(bytes.size()));
  char answer = 0;
  const ssize_t got = ::recv(socket, &answer, 1, 0);
  ::close(socket);
  return got == 1 ? std::string(1, answer) : "";
}

TEST_F(InstanceTest, JunkIsNotAnswered) {
  auto first = startFirst();
  expectHandsOver();
  const std::string socket = folder / "runtime/tabelion.socket";
  const auto frame = [](char kind, const std::string& body) {
    return std::string("TBLN\0\1", 6) + number(std::uint32_t(body.size() + 1)) + kind + body;
  };
  const std::string empty = number(0) + number(0);
  EXPECT_EQ(answerTo(socket, frame(2, empty)), "\6") << "this is a request";
  for (const std::string& junk :
       {std::string("GET / HTTP/1.1\r\n\r\n"), "TBLM" + frame(2, empty).substr(4),
        "TBLN" + number(0x00020000) + frame(2, empty).substr(8),
        std::string("TBLN\0\1\xFF\xFF\xFF\xFF", 10) + "..", frame(2, ""),
        frame(2, number(0xFFFFFFFE) + number(0)), frame(2, number(5) + "1234"),
        frame(2, empty + "more"), frame(4, empty), frame(3, empty)}) {
    EXPECT_EQ(answerTo(socket, junk), "") << ::testing::PrintToString(junk);
  }
  expectHandsOver();
  expectEndsWell(first, SIGHUP);
}

// A bus of the test's own, which starts the program by itself.
class DesktopTest : public InstanceTest {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(DBUS_DAEMON))
      GTEST_SKIP() << "the package dbus-daemon is not there";
    std::filesystem::create_directories(folder / "data/dbus-1/services");
    folder.write("data/dbus-1/services/org.tabelion.Tabelion.service",
                 "[D-BUS Service]\nName=org.tabelion.Tabelion\nExec=" TABELION " --documents " +
                     folder / "documents" + "\n");
    ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    const std::string address = "unix:path=" + folder / "bus";
    daemon = std::make_unique<RunningProgram>(
        std::vector<std::string>{DBUS_DAEMON, "--session", "--nofork", "--address=" + address},
        folder.path(), folder / "bus-errors");
    ASSERT_TRUE(eventually([&] {
      QDBusConnection::disconnectFromBus("test");  // a failed one would be given again
      return QDBusConnection::connectToBus(QString::fromStdString(address), "test").isConnected();
    })) << folder.read("bus-errors");
  }
  ~DesktopTest() override { QDBusConnection::disconnectFromBus("test"); }

  QDBusMessage open(const QStringList& uris) {
    auto message = QDBusMessage::createMethodCall("org.tabelion.Tabelion", "/org/tabelion/Tabelion",
                                                  "org.freedesktop.Application", "Open");
    message << uris << QVariantMap{{"activation-token", "a token"}};
    return QDBusConnection("test").call(message);
  }

  int words = 0;
  QCoreApplication app{words, nullptr};
  std::unique_ptr<RunningProgram> daemon;
};

TEST_F(DesktopTest, FileManagerStartsItAndOpensAFile) {
  EXPECT_EQ(open({"sftp://elsewhere/a.PDB"}).errorName().toStdString(),
            "org.freedesktop.DBus.Error.InvalidArgs");
  const QString uri = "file://" + QString::fromStdString(folder / "My%20Films.PDB");
  EXPECT_EQ(open({uri}).type(), QDBusMessage::ReplyMessage) << folder.read("bus-errors");
  const auto pid =
      pid_t(QDBusConnection("test").interface()->servicePid("org.tabelion.Tabelion").value());
  ASSERT_GT(pid, 0);
  EXPECT_TRUE(opens(pid));
  expectHandsOver();
  ::kill(pid, SIGTERM);
  EXPECT_TRUE(eventually([&] { return ::kill(pid, 0) != 0; }));
  EXPECT_FALSE(std::filesystem::exists(folder / ".My Films.PDB.lock"));
}

}  // namespace
}  // namespace tabelion
