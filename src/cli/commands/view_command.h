// What the actions of the command view share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/kit/context.h"

namespace tabelion {

// What view set changes. Lists of fields are as chooseFields takes them.
struct ViewEdit {
  std::string view;
  std::optional<std::string> name;
  std::string live_update;  // "on", "off", empty
  std::optional<std::string> target;
  bool adjust = false;
  std::vector<std::string> show;
  std::vector<std::string> hide;
  std::vector<std::string> widths;  // "FIELD=N"
  std::vector<std::string> form;
  std::vector<std::string> no_form;
  std::vector<std::string> exported;
  std::vector<std::string> not_exported;
  std::optional<std::string> order;
};

// Stores what `edit` says in the view; nothing is to be saved after an error.
Status editView(Database& database, const TextEncoding& encoding, int view, const ViewEdit& edit);

// The views as a table for people, or as JSON.
void putViewTable(const Database& database, const TextEncoding& encoding, OutputBuffer& out);
void putViewJson(const Database& database, const TextEncoding& encoding, OutputBuffer& out);

}  // namespace tabelion
