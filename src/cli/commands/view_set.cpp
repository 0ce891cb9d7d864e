// Changing a view: its name, what it does, and its fields.

#include <charconv>

#include <fmt/format.h>

#include "cli/commands/view_command.h"
#include "interchange/words/field_choice.h"
#include "query/view.h"

namespace tabelion {
namespace {

// A name as the view stores it.
Result<std::string> storedName(const TextEncoding& encoding, const std::string& name,
                               const char* what) {
  const Encoded encoded = encoding.fromUtf8(name);
  if (!encoded.ok()) {
    return makeError(ErrorKind::kInvalid, fmt::format("{} \"{}\": {}", what, name,
                                                      describeFault(*encoded.fault, encoding)));
  }
  if (encoded.bytes.empty()) {
    return makeError(ErrorKind::kInvalid, fmt::format("{} cannot be empty", what));
  }
  if (encoded.bytes.size() > kMostViewName || encoded.bytes.find('\0') != std::string::npos) {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("{} \"{}\" is longer than {} bytes", what, name, kMostViewName));
  }
  return encoded.bytes;
}

// Lets `change` loose on the settings of every field of the lists.
template <class Change>
Status changeFields(Database& database, const TextEncoding& encoding, int view,
                    const std::vector<std::string>& lists, Change change) {
  for (const std::string& list : lists) {
    const auto slots = chooseFields(database, encoding, list);
    if (!slots.ok()) return slots.error();
    for (const int slot : *slots) {
      ViewFieldSettings field = viewFieldSettings(database.schema, view, slot);
      change(field);
      storeViewFieldSettings(database, view, slot, field);
    }
  }
  return Done{};
}

// "Name=90".
Status setWidth(Database& database, const TextEncoding& encoding, int view,
                const std::string& text) {
  const std::size_t equals = text.rfind('=');
  int width = 0;
  if (equals != std::string::npos) {
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data() + equals + 1, end, width);
    if (read.ec != std::errc() || read.ptr != end) width = 0;
  }
  if (width < 1 || width > kWidestColumn) {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("\"{}\" is not a field and its width, \"FIELD=N\" with N from 1 "
                                 "to {}",
                                 text, kWidestColumn));
  }
  return changeFields(database, encoding, view, {text.substr(0, equals)},
                      [width](ViewFieldSettings& field) {
                        field.column_width = width;
                        field.in_list = true;
                      });
}

// What the Edit View dialog stores, and refuses.
Status editSettings(Database& database, const TextEncoding& encoding, int view,
                    const ViewEdit& edit) {
  if (!edit.name && edit.live_update.empty() && !edit.adjust && !edit.target) return Done{};
  ViewSettings settings = viewSettings(database.schema, view);
  if (edit.name) {
    auto name = storedName(encoding, *edit.name, "the name of a view");
    if (!name.ok()) return name.error();
    settings.name = std::move(name).value();
  }
  if (!edit.live_update.empty()) settings.live_update = edit.live_update == "on";
  if (edit.adjust) settings.switches_database = false;
  if (edit.target) {
    auto target = storedName(encoding, *edit.target, "the name of a database");
    if (!target.ok()) return target.error();
    settings.switches_database = true;
    settings.target = std::move(target).value();
  }
  const std::string refused = storeViewSettings(database, view, settings);
  if (refused.empty()) return Done{};
  return makeError(ErrorKind::kRefused,
                   fmt::format("\"{}\": {}", encoding.toUtf8(settings.name), refused));
}

Status editFields(Database& database, const TextEncoding& encoding, int view,
                  const ViewEdit& edit) {
  struct Step {
    const std::vector<std::string>& lists;
    bool ViewFieldSettings::*setting;
    bool value;
  };
  const Step steps[] = {{edit.show, &ViewFieldSettings::in_list, true},
                        {edit.hide, &ViewFieldSettings::in_list, false},
                        {edit.form, &ViewFieldSettings::in_record_view, true},
                        {edit.no_form, &ViewFieldSettings::in_record_view, false},
                        {edit.exported, &ViewFieldSettings::exported, true},
                        {edit.not_exported, &ViewFieldSettings::exported, false}};
  for (const std::string& width : edit.widths) {
    Status set = setWidth(database, encoding, view, width);
    if (!set.ok()) return set;
  }
  for (const Step& step : steps) {
    Status set =
        changeFields(database, encoding, view, step.lists,
                     [&step](ViewFieldSettings& field) { field.*step.setting = step.value; });
    if (!set.ok()) return set;
  }
  return Done{};
}

}  // namespace

Status editView(Database& database, const TextEncoding& encoding, int view, const ViewEdit& edit) {
  Status settings = editSettings(database, encoding, view, edit);
  if (!settings.ok()) return settings;
  Status fields = editFields(database, encoding, view, edit);
  if (!fields.ok() || !edit.order) return fields;
  const auto slots = chooseFields(database, encoding, *edit.order);
  if (!slots.ok()) return slots.error();
  storeViewOrder(database, view, *slots);
  return Done{};
}

}  // namespace tabelion
