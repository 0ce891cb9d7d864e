// view: the views of a database.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/commands/view_command.h"
#include "interchange/words/view_choice.h"
#include "query/view.h"

namespace tabelion {
namespace {

struct ViewOptions {
  std::string file;
  std::string action;
  bool json = false;
  std::string view;
  std::string new_name;
  ViewEdit edit;
};

// A database opened for one action on its views.
class ViewCommand {
 public:
  ViewCommand(const ViewOptions& options, CliContext& context)
      : options_(options), context_(context) {}

  ExitCode run() {
    ExitCode failure{};
    const bool changes = options_.action != "list";
    const auto lock = changes ? context_.lock(options_.file, failure) : nullptr;
    if (changes && !lock) return failure;
    database_ = context_.open(options_.file, failure);
    if (!database_) return failure;
    auto encoding = context_.encodingOf(*database_);
    if (!encoding.ok()) return context_.fail(encoding.error());
    encoding_ = std::move(encoding).value();
    viewsMenu(*database_);
    if (!changes) return list();
    Result<bool> done = false;
    context_.history.Perform(
        context_.target(*database_), "Change of view", [&] { done = change(); },
        SchemaExtent::kWhole);
    if (!done.ok()) return context_.fail({done.error().kind, place(done.error().text)});
    return *done ? context_.save(*database_) : ExitCode::kDone;
  }

 private:
  std::string place(std::string_view text) const {
    return fmt::format("{}: {}", options_.file, text);
  }

  ExitCode list() {
    if (options_.json) {
      putViewJson(*database_, encoding_, context_.out);
    } else {
      putViewTable(*database_, encoding_, context_.out);
    }
    return context_.finishOutput();
  }

  // Whether there is anything to be saved.
  Result<bool> change() {
    if (options_.action == "add") return made(addView(*database_), options_.view);
    const auto view = viewNamed(*database_, encoding_, options_.view);
    if (!view.ok()) return view.error();
    if (options_.action == "use") return use(*view);
    if (options_.action == "copy") return made(copyView(*database_, *view), options_.new_name);
    if (options_.action == "delete") return remove(*view);
    return edited(*view, options_.edit);
  }

  Result<bool> edited(int view, const ViewEdit& edit) {
    const Status status = editView(*database_, encoding_, view, edit);
    if (!status.ok()) return status.error();
    return true;
  }

  // Names the view that was just made.
  Result<bool> made(int view, const std::string& name) {
    if (view < 0) return makeError(ErrorKind::kRefused, std::string(kTooManyViewsText));
    ViewEdit edit;
    edit.name = name;
    return edited(view, edit);
  }

  Result<bool> remove(int view) {
    if (deleteView(*database_, view)) return true;
    return makeError(ErrorKind::kRefused,
                     fmt::format("\"{}\" stays: it is never deleted", kDefaultViewName));
  }

  Result<bool> use(int view) {
    const ViewChange change = applyView(*database_, view, context_.querySettings(encoding_));
    if (change.switch_to.empty()) return true;
    context_.say(place(fmt::format("the view shows the database \"{}\"; nothing was changed",
                                   encoding_.toUtf8(change.switch_to))));
    return false;
  }

  const ViewOptions& options_;
  CliContext& context_;
  Database* database_ = nullptr;  // the context's
  TextEncoding encoding_ = TextEncoding::utf8();
};

void declareSet(OptionList list, ViewOptions& options) {
  ViewEdit& edit = options.edit;
  list.required("VIEW", options.view, "The view to be changed");
  list.optional("--name NAME", edit.name, "Its name from now on");
  list.optionalOneOf("--live-update SWITCH", edit.live_update, {"on", "off"},
                     "Whether changes of the sort go into the view as well");
  list.optional("--switch-to DATABASE", edit.target,
                "Let it show another database instead of arranging this one");
  list.flag("--adjust", edit.adjust, "Let it arrange this database again");
  list.several("--show FIELDS", edit.show, "Show these fields as columns of the list");
  list.several("--hide FIELDS", edit.hide, "Show no columns for these fields");
  list.several("--width FIELD=N", edit.widths,
               "Show a field as a column of this width; 2 are 3 pixels");
  list.several("--form FIELDS", edit.form, "Show these fields in the form of a record");
  list.several("--no-form FIELDS", edit.no_form, "Leave these fields out of the form");
  list.several("--export FIELDS", edit.exported, "Export and print these fields");
  list.several("--no-export FIELDS", edit.not_exported, "Neither export nor print these fields");
  list.optional("--order FIELDS", edit.order, "Put these fields first; the others follow");
  list.exclusive({"--switch-to", "--adjust"});
}

}  // namespace

CommandBody declareView(OptionList list) {
  const auto options = std::make_shared<ViewOptions>();
  list.required("FILE", options->file, "The database");
  OptionList show =
      list.action("list", "List the views; a * marks the current one", options->action);
  show.flag("--json", options->json, "As JSON, with every field's settings");
  OptionList use =
      list.action("use", "Choose a view: its columns, sort and filter", options->action);
  use.required("VIEW", options->view, "The view");
  OptionList add =
      list.action("add", "Make a view of what the database shows now", options->action);
  add.required("NAME", options->view, "Its name");
  OptionList copy = list.action("copy", "Make a view that is like another one", options->action);
  copy.required("VIEW", options->view, "The view");
  copy.required("NEWNAME", options->new_name, "The copy's name");
  OptionList remove = list.action("delete", "Delete a view", options->action);
  remove.required("VIEW", options->view, "The view");
  declareSet(
      list.action("set", "Change a view; FIELDS are names with commas between", options->action),
      *options);
  return [options](CliContext& context) { return ViewCommand(*options, context).run(); };
}

}  // namespace tabelion
