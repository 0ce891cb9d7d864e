// The real program with real files, pipes and devices.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "support/temporary_folder.h"

namespace tabelion {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class CliProgram : public ::testing::Test {
 protected:
  CliProgram() {
    ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    folder.write("a.json", R"({"name": "A", "fields": [{"name": "Name", "type": "text"},
                               {"name": "N", "type": "integer"}]})");
    folder.write("a.csv", "Name,N\nÄnne,1\n\"x, y\",2\n");
  }

  // Runs a line of shell in the folder; "$cli" is the program. Its output is in `output`.
  int shell(const std::string& line) {
    const std::string whole = "cd '" + folder.path() + "' && cli='" + TABELION_CLI + "' && { " +
                              line + "; } > out 2> err";
    const int status = std::system(whole.c_str());
    output = folder.read("out");
    errors = folder.read("err");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  TemporaryFolder folder;
  std::string output;
  std::string errors;
};

TEST_F(CliProgram, FilesAndPipesGiveTheSame) {
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv"), 0) << errors;
  ASSERT_EQ(shell("\"$cli\" export a.PDB --format csv"), 0);
  EXPECT_EQ(output, folder.read("a.csv"));
  ASSERT_EQ(shell("\"$cli\" create - --schema a.json | \"$cli\" import - a.csv | "
                  "\"$cli\" rewrite - - | \"$cli\" export - --format csv"),
            0)
      << errors;
  EXPECT_EQ(output, folder.read("a.csv"));
  ASSERT_EQ(shell("\"$cli\" schema a.PDB | \"$cli\" create b.PDB --schema - --data a.csv"), 0);
  ASSERT_EQ(shell("\"$cli\" export a.PDB --format csv | \"$cli\" import b.PDB - && "
                  "\"$cli\" info b.PDB --json && \"$cli\" check b.PDB"),
            0)
      << errors;
  EXPECT_EQ(json::parse(output)["records"], 4);
  EXPECT_EQ(errors, "") << "no progress where nobody sits at a terminal";
}

TEST_F(CliProgram, OutputThatGoesNowhereIsAFailure) {
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv"), 0);
  EXPECT_EQ(shell("\"$cli\" export a.PDB --format csv > /dev/full"), 8);
  EXPECT_THAT(errors, HasSubstr("standard output cannot be written"));
  EXPECT_EQ(shell("\"$cli\" dump a.PDB >&-"), 8);
  EXPECT_EQ(shell("\"$cli\" --help > /dev/full"), 8);
  EXPECT_EQ(shell("\"$cli\" rewrite a.PDB /dev/full"), 8);
  // Who has read enough goes, and nobody is told.
  EXPECT_EQ(shell("{ \"$cli\" dump a.PDB; echo $? > code; } | true; [ \"$(cat code)\" = 0 ]"), 0);
  EXPECT_EQ(errors, "");
  // What is saved is saved.
  EXPECT_EQ(shell("\"$cli\" set a.PDB 1 N=7 > /dev/full"), 0);
  EXPECT_THAT(errors, HasSubstr("a.PDB: is saved, but standard output cannot be written"));
  EXPECT_EQ(shell("\"$cli\" export a.PDB --format csv"), 0);
  EXPECT_THAT(output, HasSubstr("Änne,7"));
  EXPECT_EQ(shell("[ -c /dev/full ]"), 0) << "still a device";
}

TEST_F(CliProgram, NamesDoNotCommandATerminal) {
  if (shell("command -v script") != 0) GTEST_SKIP() << "the program script is not there";
  folder.write("a.csv", "Name\n\"\x1b]0;gone\x07\"\n");
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv"), 0) << errors;
  ASSERT_EQ(shell("\"$cli\" export a.PDB --format csv"), 0);
  EXPECT_THAT(output, HasSubstr("\x1b]0;gone\x07")) << "data on a pipe stays as it is";
  ASSERT_EQ(shell("script -qec \"'$cli' export a.PDB --format csv; '$cli' info $(printf "
                  "'no\\033[7m')\" /dev/null"
                  " < /dev/null; true"),
            0);
  EXPECT_THAT(output, HasSubstr("␛]0;gone␇"));
  EXPECT_THAT(output, HasSubstr("no␛[7m"));
  EXPECT_EQ(output.find('\x1b'), std::string::npos);
}

TEST_F(CliProgram, EndlessInputAndLittleMemoryEndInWords) {
  std::string rows = "Name,N\n";
  for (int i = 0; i < 20000; ++i)
    rows += "a name of some length " + std::to_string(i * 7919) + ",1\n";
  folder.write("a.csv", rows);
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv"), 0) << errors;
  EXPECT_EQ(shell("\"$cli\" import a.PDB /dev/zero"), 3);
  EXPECT_THAT(errors, HasSubstr("/dev/zero: it is not a file"));
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer takes more memory than any limit here";
#endif
  EXPECT_EQ(shell("ulimit -v 300000; \"$cli\" import a.PDB - < /dev/zero"), 12);
  EXPECT_THAT(errors, HasSubstr("not enough memory"));
  int failed = 0;
  for (int kilobytes = 7000; kilobytes < 200000; kilobytes += 500) {
    const std::string before = folder.read("a.PDB");
    const int code =
        shell("ulimit -v " + std::to_string(kilobytes) + "; \"$cli\" sort a.PDB --by N,Name");
    if (code == 127 || code == 134) continue;  // no room for the program, or for its exceptions
    if (code == 0) break;
    ++failed;
    // The system's tables of a code page that cannot be loaded look to it like an unknown page.
    EXPECT_TRUE(code == 3 || code == 12 || (code == 7 && errors.find("code page") != errors.npos))
        << kilobytes << ": " << code;
    if (code != 7) {
      EXPECT_THAT(errors, HasSubstr("not enough memory"));
    }
    EXPECT_TRUE(folder.read("a.PDB") == before);
  }
  EXPECT_GE(failed, 1);
  EXPECT_EQ(shell("\"$cli\" check a.PDB; ls -A | grep -c PDB"), 0);
  EXPECT_EQ(output, "1\n");
}

TEST_F(CliProgram, InputsMayBePipesWithAPath) {
  ASSERT_EQ(shell("mkfifo rows schema; cat a.csv > rows & cat a.json > schema & "
                  "\"$cli\" create a.PDB --schema schema --data rows && "
                  "{ cat a.csv > rows & \"$cli\" import a.PDB rows; } && "
                  "{ cat a.PDB > rows & \"$cli\" info rows --json; }"),
            0)
      << errors;
  EXPECT_EQ(json::parse(output)["records"], 4);
}

TEST_F(CliProgram, InterruptedCommandLeavesNothingBehind) {
  folder.write("sesame", "sesame");
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv && "
                  "\"$cli\" encrypt a.PDB --field Name --password-file sesame && cp a.PDB b.PDB"),
            0)
      << errors;
  // It holds the lock and waits for a password that does not come.
  EXPECT_EQ(shell("mkfifo secret; \"$cli\" decrypt a.PDB --password-fd 3 3<>secret & pid=$!; "
                  "while [ ! -e .a.PDB.lock ]; do :; done; "
                  "while kill -TERM $pid; do sleep 0.02; done; wait $pid; echo $?"),
            0);
  EXPECT_EQ(output, "143\n");
  EXPECT_EQ(shell("cmp a.PDB b.PDB && ls -A .[!.]*"), 2) << output;
}

TEST_F(CliProgram, SqlLoadsAsItStands) {
  if (shell("command -v sqlite3") != 0) GTEST_SKIP() << "the program sqlite3 is not there";
  folder.write("a.csv", "Name,N\n\"it's \"\"so\"\"\nand ;\",-5\n\"€\",0\n");
  ASSERT_EQ(shell("\"$cli\" create a.PDB --schema a.json --data a.csv && "
                  "\"$cli\" export a.PDB --format sql | sqlite3 -bail a.db && "
                  "sqlite3 -csv -header a.db 'SELECT * FROM A' | tr -d '\\r'"),
            0)
      << errors;
  EXPECT_EQ(output, folder.read("a.csv"));
}

// The 7,900 languages of the system's own list: every script there is, and a real size.
class Languages : public CliProgram {
 protected:
  void SetUp() override {
    std::FILE* file = std::fopen("/usr/share/iso-codes/json/iso_639-3.json", "rb");
    if (!file) GTEST_SKIP() << "the package iso-codes is not there";
    const json document = json::parse(file);
    std::fclose(file);
    std::string csv = "Code,Name,Inverted name,Kind\n";
    for (const json& language : document["639-3"]) {
      csv += language.value("alpha_3", "") + "," + quoted(language.value("name", "")) + "," +
             quoted(language.value("inverted_name", "")) + "," + language.value("type", "") + "\n";
    }
    ASSERT_GT(document["639-3"].size(), 7000u);
    folder.write("languages.csv", csv);
    folder.write("utf8.json", R"({"name": "Languages", "code_page": "UTF-8", "fields": [
      {"name": "Code", "type": "text", "width": 3}, {"name": "Name", "type": "text", "width": 120},
      {"name": "Inverted name", "type": "text", "width": 120},
      {"name": "Kind", "type": "pop-up", "items": ["A", "C", "E", "H", "L", "S"]}]})");
  }

  static std::string quoted(const std::string& text) {
    return text.find(',') == std::string::npos ? text : "\"" + text + "\"";
  }
};

TEST_F(Languages, Utf8DatabaseGivesThemBackUnchanged) {
  ASSERT_EQ(shell("\"$cli\" create l.PDB --schema utf8.json --data languages.csv && "
                  "\"$cli\" check l.PDB && \"$cli\" export l.PDB --format csv"),
            0)
      << errors;
  EXPECT_TRUE(output == folder.read("languages.csv")) << output.substr(0, 300);
}

TEST_F(CliProgram, BashCompletesCommandsOptionsWordsAndFiles) {
  if (shell("command -v bash") != 0) GTEST_SKIP() << "no bash here";
  folder.write("complete", R"(
    source <("$cli" completions bash)
    complete() { COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tabelion_cli; echo "${COMPREPLY[*]}"; }
    complete tabelion-cli ex
    complete tabelion-cli --code-page 1252 sch
    complete tabelion-cli export a.PDB --format = j
    complete tabelion-cli export a.PDB --format ''
    complete tabelion-cli import a.PDB a.c
    complete tabelion-cli view a.PDB s
    complete tabelion-cli view a.PDB set export --live
    complete tabelion-cli view a.PDB set list --live-update o
    complete tabelion-cli report a.PDB ''
    complete tabelion-cli inf --ver
    complete "$cli" sort n.PDB --by Na
    complete "$cli" sort n.PDB --by name,du
    complete "$cli" list n.PDB --sort "'Due"
    complete "$cli" set n.PDB 1 n
    complete "$cli" view n.PDB use d
    complete "$cli" report none.PDB ''
  )");
  folder.write("n.json", R"({"fields": [{"name": "Name", "type": "text"},
                             {"name": "Due on", "type": "date"}]})");
  ASSERT_EQ(shell("\"$cli\" create n.PDB --schema n.json"), 0) << errors;
  ASSERT_EQ(shell("cli=\"$cli\" bash complete"), 0) << errors;
  EXPECT_EQ(output,
            "export\nschema\njson\ncsv json sql\na.csv\nset\n--live-update\non off\n\n--version\n"
            "Name\nname\\,Due\\ on\nDue on\nName=\nDefault\\ View\n\n");
  EXPECT_EQ(errors, "");
}

TEST_F(CliProgram, ManualAndCompletionsAreWhatTheirReadersAccept) {
  const std::pair<const char*, const char*> readers[] = {
      {"zsh", "\"$cli\" completions zsh > z && zsh -n z"},
      {"fish", "\"$cli\" completions fish > f && fish -n f"},
      {"groff", "\"$cli\" manual | groff -man -ww -Tascii -z"},
      {"mandoc", "\"$cli\" manual | mandoc -Tlint -Werror"}};
  int accepted = 0;
  for (const auto& [reader, line] : readers) {
    if (shell(std::string("command -v ") + reader) != 0) continue;
    EXPECT_EQ(shell(line), 0) << output << errors;
    EXPECT_EQ(errors, "") << reader;
    ++accepted;
  }
  if (accepted == 0) GTEST_SKIP() << "none of the readers is here";
}

}  // namespace
}  // namespace tabelion
