// What people write after a command: conditions, sorts, names of views and fields. A filter that is
// understood reads back from its own words as it was.
//
//   'f' conditions, one a line; 's' a sort; 'v' a view; 'n' fields
#include <memory>
#include <vector>

#include "engine/database.h"
#include "engine/schema_places.h"
#include "interchange/words/field_choice.h"
#include "interchange/words/filter_words.h"
#include "interchange/words/sort_choice.h"
#include "interchange/words/view_choice.h"
#include "require.h"

namespace tabelion {
namespace {

constexpr int kFieldTypes = codeOf(kLastFieldType) + 1;

constexpr const char* kNames[] = {"Title", "Year", "and", "Twin",   "Twin", "is",
                                  "Or so", "a\"b", "(x)", "Dat um", "not",  "\xC4"};

std::unique_ptr<Database> library() {
  auto database = std::make_unique<Database>();
  initSchema(database->schema);
  for (std::size_t slot = 0; slot < 40; ++slot) {
    FieldDefinition& field = database->schema.fields[slot];
    field.type = FieldType(slot % kFieldTypes);
    field.area_f[kResultKindOffset] = static_cast<std::uint8_t>(slot / 20 * 3);
    const bool named = slot < std::size(kNames);
    setFieldName(field, named ? kNames[slot] : "F" + std::to_string(slot));
    for (const char* text : {"Sea", "Salt and pepper", "Empty"}) {
      PopupItem item;
      item.key[0] = static_cast<std::uint8_t>(database->fields[slot].items.size() + 1);
      item.text = text;
      database->fields[slot].items.push_back(item);
    }
  }
  return database;
}

void tryFilter(const Database& database, const TextEncoding& encoding, std::string_view input) {
  std::vector<std::string> lines;
  while (!input.empty() && lines.size() < 8) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    lines.emplace_back(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
  const auto criteria = filterOfWords(database, encoding, lines);
  if (!criteria.ok()) return require(!criteria.error().text.empty());
  const auto again =
      filterOfWords(database, encoding, wordsOfFilter(database, encoding, *criteria));
  require(again.ok() && *again == *criteria);
}

void tryWords(std::string_view input) {
  static const std::unique_ptr<Database> database = library();
  static const TextEncoding encoding = *TextEncoding::open("1252");
  const std::string_view words = input.substr(1);
  if (input[0] == 's') {
    (void)chooseSort(*database, encoding, words);
  } else if (input[0] == 'v') {
    (void)viewNamed(*database, encoding, words);
  } else if (input[0] == 'n') {
    (void)chooseFields(*database, encoding, words);
  } else {
    tryFilter(*database, encoding, words);
  }
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) tabelion::tryWords({reinterpret_cast<const char*>(data), size});
  return 0;
}
