// Descriptions of databases with rows for them. What is accepted gives a database whose description
// gives an equal one, and whose rows come out of it as they go in again.
//
//   JSON, a line "---", CSV
#include <nlohmann/json.hpp>

#include "engine/database.h"
#include "image_files.h"
#include "interchange/schema_json.h"
#include "interchange/table_export.h"
#include "interchange/table_import.h"
#include "require.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

class Text : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    text += bytes;
    return true;
  }
  std::string text;
};

struct Made {
  ImageFiles files{{}};
  FixedClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  Database database;
  Made() { initDatabase(database, engine); }
};

std::string rowsOf(const Database& database, const TextEncoding& encoding) {
  Text text;
  OutputBuffer out(text);
  exportTable(database, encoding, TableFormat::kCsv, "t", {}, out, {});
  out.flush();
  return text.text;
}

void tryDescription(std::string_view input) {
  constexpr std::string_view kParting = "\n---\n";
  const std::size_t parting = input.find(kParting);
  const Json json = Json::parse(input.substr(0, parting), nullptr, /*allow_exceptions=*/false);
  if (json.is_discarded()) return;
  const TextEncoding user = TextEncoding::utf8();
  const auto made = std::make_unique<Made>();
  const Status described = schemaFromJson(json, user, made->database);
  if (!described.ok()) return require(!described.error().text.empty());

  const TextEncoding encoding = databaseEncoding(made->database, "UTF-8");
  const Json again = schemaToJson(made->database, encoding);
  const auto twin = std::make_unique<Made>();
  require(schemaFromJson(again, user, twin->database).ok());
  require(schemaToJson(twin->database, encoding) == again);

  if (parting == std::string_view::npos) return;
  const auto imported = importCsv(input.substr(parting + kParting.size()), {}, encoding,
                                  made->engine, made->database, {});
  if (!imported.ok()) return require(made->database.records.count() == 0);
  require(imported->records == made->database.records.count());
  const std::string rows = rowsOf(made->database, encoding);
  if (importCsv(rows, {.delimiter = ',', .dates = {}}, encoding, twin->engine, twin->database, {})
          .ok()) {
    require(rowsOf(twin->database, encoding) == rows);
  }
  FileLayout layout;
  require(layOutDatabase(made->database, layout));
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::tryDescription({reinterpret_cast<const char*>(data), size});
  return 0;
}
