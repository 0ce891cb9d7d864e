// What was enciphered, and the password, are nowhere in the program's memory once the database is
// closed: typed, shown, changed and enciphered again in the real window.
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/std/std_files.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/edit_record.h"
#include "screens/records/record_list.h"
#include "scripted_run.h"
#include "support/phone_world.h"

namespace tabelion {

class SecretsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void nothingIsLeftOfThem();
};

namespace {

// Turned by thirteen letters, so that this program itself holds none of them.
constexpr std::string_view kPassword = "Dhbxxn Hzoeryyn";
constexpr std::string_view kStored = "Iryirg Napube Uneirfg";
constexpr std::string_view kTyped = "Pbccre Ynagrea Qevsg";

char turned(char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>('a' + (c - 'a' + 13) % 26);
  if (c >= 'A' && c <= 'Z') return static_cast<char>('A' + (c - 'A' + 13) % 26);
  return c;
}

// How often a secret stands in this process's memory, as 8-bit text or in UTF-16.
int findInMemory(std::string_view secret) {
  int found = 0;
  QFile maps(QStringLiteral("/proc/self/maps"));
  if (!maps.open(QIODevice::ReadOnly)) return -1;
  for (const QByteArray& line : maps.readAll().split('\n')) {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    char rights[5] = {};
    if (std::sscanf(line.constData(), "%lx-%lx %4s", &begin, &end, rights) != 3 ||
        rights[0] != 'r' || rights[1] != 'w' || line.contains("/dev/")) {
      continue;
    }
    for (const std::size_t width : {1, 2}) {
      for (std::uintptr_t at = begin; at + secret.size() * width <= end; ++at) {
        const auto* bytes = reinterpret_cast<const volatile char*>(at);
        std::size_t same = 0;
        while (same < secret.size() && bytes[same * width] == turned(secret[same]) &&
               (width == 1 || bytes[same * width + 1] == 0)) {
          ++same;
        }
        found += same == secret.size();
      }
    }
  }
  return found;
}

void typeSecret(std::string_view secret) {
  for (const char c : secret) QTest::keyClick(QApplication::focusWidget(), turned(c));
}

// By other processes, which take what they know with them.
void makeDatabase(const QString& folder) {
  QProcess process;
  process.setWorkingDirectory(folder);
  const QString cli = QCoreApplication::applicationDirPath() + QStringLiteral("/tabelion-cli");
  const auto text = [](std::string_view secret) {
    return QString::fromLatin1(secret.data(), qsizetype(secret.size()));
  };
  const QString script =
      QStringLiteral(
          "set -e; turn() { tr A-Za-z N-ZA-Mn-za-m; }\n"
          "echo '{\"name\": \"Safe\", \"fields\": [{\"name\": \"Pin\", \"type\": \"text\", "
          "\"width\": 60}]}' > schema\n"
          "echo '%2' | turn > password; { echo Pin; echo '%3' | turn; } > data\n"
          "'%1' create Safe.PDB --schema schema --data data\n"
          "'%1' encrypt Safe.PDB --field Pin --password-file password\n")
          .arg(cli, text(kPassword), text(kStored));
  process.start(QStringLiteral("sh"), {QStringLiteral("-c"), script});
  QVERIFY(process.waitForFinished());
  QCOMPARE(process.exitCode(), 0);
}

}  // namespace

void SecretsTest::nothingIsLeftOfThem() {
  const QTemporaryDir folder;
  makeDatabase(folder.path());
  PhoneWorld world;
  StdFiles files;
  QtDialogs dialogs({{240, 320}, 1});
  Platform platform{files,   world.clock,    world.locale, world.settings,
                    dialogs, world.instance, "/samples"};
  Application app(platform);
  app.preferences.auto_save_on_close = true;
  int seen = 0;
  Script script(dialogs);
  script.then([] {}).then([] {}).then([] { typeSecret(kPassword); }).key(Qt::Key_Return);
  script.then([&] { dialogs.frame().grab(); }).key(Qt::Key_Return);
  script.then([] { typeSecret(kTyped); }).then([&] {
    seen = findInMemory(kStored) > 0 && findInMemory(kTyped) > 0;
  });
  script.key(Qt::Key_Return).key(Qt::Key_Escape);
  script.then([] { typeSecret(kPassword); }).key(Qt::Key_Return);
  const std::string path = folder.filePath(QStringLiteral("Safe.PDB")).toStdString();
  script.run([&] { return ShowRecordList(app, path); });
  QVERIFY(seen);
  QVERIFY(!IsDatabaseOpen(app));
  QCOMPARE(findInMemory(kPassword), 0);
  QCOMPARE(findInMemory(kStored), 0);
  QCOMPARE(findInMemory(kTyped), 0);
}

}  // namespace tabelion

QTEST_MAIN(tabelion::SecretsTest)
#include "secrets_test.moc"
