// Which fields there are to choose from, and how people name them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/near_names.h"

namespace tabelion {

// What a field is chosen for.
enum class FieldUse : unsigned char {
  kAnything,  // every field of a valid type
  kFilter,    // records can be filtered by it
  kSort,      // its type sorts, it is not enciphered, and no other record has a part in it
  kReport,    // there are figures of it
  kFind,      // a search looks into it
};
// The slots of the fields that can be used so, in field order.
std::vector<int> fieldsFor(const Database& database, FieldUse use);

// The name of a field as chooseField takes it (UTF-8); empty for a slot that is not in use.
std::string fieldLabel(const Database& database, const TextEncoding& encoding, int slot);

// The slot of the field with this name (UTF-8): exactly, else in any case of its ASCII letters.
// Fields that share a name are told apart as the columns of an export are, "NAME #SLOT". The error
// names the text, and the fields that may be meant.
Result<int> chooseField(const Database& database, const TextEncoding& encoding,
                        std::string_view name);

// The names of a database's fields, for who asks for many of them.
class FieldNames {
 public:
  FieldNames(const Database& database, const TextEncoding& encoding);
  // As chooseField() chooses.
  Result<int> choose(std::string_view name) const;
  // The same without a word on what is not there.
  std::optional<int> find(std::string_view name) const;
  // How many bytes names have, the longest first, each number once.
  const std::vector<std::size_t>& lengths() const { return lengths_; }

 private:
  struct Field {
    int slot;
    std::string own;
    std::string name;  // unique unless another field is called just like this one with its number
  };
  std::vector<const Field*> called(std::string_view name) const;

  std::vector<Field> fields_;
  std::vector<std::size_t> lengths_;
};

// The same as chooseField() for several, "Name,Born": the text is split at commas unless a field
// has the whole as its name; blanks around a name do not count.
Result<std::vector<int>> chooseFields(const Database& database, const TextEncoding& encoding,
                                      std::string_view names);

}  // namespace tabelion
