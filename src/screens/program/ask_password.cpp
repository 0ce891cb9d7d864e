#include "screens/program/ask_password.h"

#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/message.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

DialogTemplate passwordTemplate(bool for_encryption) {
  const std::u16string label =
      for_encryption ? u"Enter Encryption Password" : u"Enter Access Password:";
  DialogTemplate dialog;
  dialog.resource = kPasswordScreen;
  dialog.title = u"Tabelion";
  dialog.controls = {
      {.id = kPasswordLabel, .kind = ControlKind::kLabel, .text = label, .centered = true},
      {.id = kPasswordEdit,
       .kind = ControlKind::kEdit,
       .accessible_name = label,
       .back_erases = true,
       .max_length = static_cast<int>(kMaxPassword)},
      {.id = kHidePasswordBox, .kind = ControlKind::kCheckBox, .text = u"Hide Password"},
  };
  return dialog;
}

class PasswordScreen : public CommandScreen<PasswordScreen> {
 public:
  explicit PasswordScreen(Application& app) : app_(app) {}

  CommandTable<PasswordScreen> Commands(Dialog&) {
    return {.left = {kActionCommand, u"OK", &PasswordScreen::Confirm},
            .right = {kBackCommand, u"Cancel", &PasswordScreen::Cancel}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    Settings& settings = app_.platform.settings;
    const auto hide = ReadNumberSetting(settings, Setting::kHidePassword);
    if (!hide) WriteNumberSetting(settings, Setting::kHidePassword, 0);
    dialog.control(kHidePasswordBox).setChecked(hide.value_or(0) == 1);
    dialog.control(kPasswordEdit).setMasked(hide.value_or(0) == 1);
    onResize(dialog);
    dialog.control(kPasswordEdit).focus();
  }
  void onResize(Dialog& dialog) override {
    PlaceRows(dialog, {TextRow(kPasswordLabel), BoxRow(kPasswordEdit), CheckRow(kHidePasswordBox)},
              {.top = 14, .widest = 260, .margin = 20});
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (control != kHidePasswordBox || notice != Notice::kEdited) return;
    dialog.control(kPasswordEdit).setMasked(dialog.control(kHidePasswordBox).checked());
  }
  // The same text must be typable wherever the file is opened, so only what its code page has.
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  // A password that nobody confirmed is none.
  bool OnAutoClose(Dialog& dialog) override {
    storeHiding(dialog);
    return true;
  }

  Password typed;

 private:
  void Confirm(Dialog& dialog) {
    takeText(dialog);
    dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }
  void takeText(Dialog& dialog) {
    auto text = StoredText(app_, dialog.control(kPasswordEdit).text().substr(0, kMaxPassword));
    if (text.ok()) {
      typed.assign(*text);
      wipeText(*text);
    }
    storeHiding(dialog);
  }
  void storeHiding(Dialog& dialog) {
    WriteNumberSetting(app_.platform.settings, Setting::kHidePassword,
                       dialog.control(kHidePasswordBox).checked() ? 1 : 0);
  }

  Application& app_;
};

}  // namespace

int AskPassword(Application& app, const PasswordQuestion& question, Password* typed) {
  PasswordScreen screen(app);
  const int result = RunModalDialog(app, passwordTemplate(question.for_encryption), screen);
  if (result != kDialogDone) return kPasswordCancelled;
  if (typed != nullptr) *typed = screen.typed;
  if (question.compare && screen.typed.text() != question.expected) {
    ShowMessage(app, u"Invalid Password", u"Error", MessageIcon::kError);
  }
  return kPasswordConfirmed;
}

EncryptionPasswordPrompt AskEncryptionPassword(Application& app) {
  return [&app](Password& typed) {
    return AskPassword(app, {.for_encryption = true}, &typed) == kPasswordConfirmed;
  };
}

}  // namespace tabelion
