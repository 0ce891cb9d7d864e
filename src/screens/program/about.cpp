#include "screens/program/about.h"

#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kNamePixels = 20;
constexpr int kNameHeight = 28;
constexpr Size kLogoSize{96, 48};

DialogTemplate aboutTemplate() {
  DialogTemplate dialog;
  dialog.resource = kAboutScreen;
  dialog.title = u"About";
  dialog.controls = {
      {.id = kAboutLogo, .kind = ControlKind::kIcon, .picture = Picture::kLogo},
      {.id = kAboutName, .kind = ControlKind::kLabel, .text = u"Tabelion", .centered = true},
      {.id = kAboutVersion,
       .kind = ControlKind::kLabel,
       .text = u"Version " + FromUtf8(TABELION_VERSION),
       .centered = true},
      {.id = kAboutPurpose,
       .kind = ControlKind::kLabel,
       .text = u"A personal relational database that is worked with a few keys. Each database is "
               u"one file of up to 65,000 records."},
      {.id = kAboutKeys,
       .kind = ControlKind::kLabel,
       .text = u"F1 and F2 are the soft keys, Enter opens, Backspace or Escape goes back.\n"
               u"Help: tabelion --help"},
  };
  return dialog;
}

class AboutScreen : public CommandScreen<AboutScreen> {
 public:
  CommandTable<AboutScreen> Commands(Dialog&) {
    return {.left = {kActionCommand, u"OK", &AboutScreen::Close},
            .keys = {{kBackCommand, {}, &AboutScreen::Close}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    dialog.control(kAboutName).setFontPixels(kNamePixels);
    onResize(dialog);
  }
  void onResize(Dialog& dialog) override {
    const Size full = dialog.fullScreenSize();
    if (full.width == 320 && full.height == 240) {
      placeLandscape(dialog);
    } else {
      placePortrait(dialog);
    }
  }

 private:
  void Close(Dialog& dialog) { dialog.end(kDialogDone); }
  // The name beside the logo.
  static void placeLandscape(Dialog& dialog) {
    dialog.control(kAboutLogo).setPlace({40, 12, kLogoSize.width, kLogoSize.height});
    dialog.control(kAboutName).setPlace({136, 8, 136, 28});
    dialog.control(kAboutVersion).setPlace({136, 38, 136, 20});
    PlaceRows(dialog, {TextRow(kAboutPurpose), Spaced(TextRow(kAboutKeys))},
              {.top = 70, .margin = 8});
  }
  // Everything below each other.
  static void placePortrait(Dialog& dialog) {
    LayoutRow name = TextRow(kAboutName);
    name.cells[0].height = kNameHeight;
    PlaceRows(dialog,
              {Centered({.cells = {AreaCell(kAboutLogo, kLogoSize)}}), name, TextRow(kAboutVersion),
               Spaced(TextRow(kAboutPurpose)), Spaced(TextRow(kAboutKeys))},
              {.top = 8, .margin = 8});
  }
};

}  // namespace

int ShowAbout(Application& app) {
  AboutScreen screen;
  return RunModalDialog(app, aboutTemplate(), screen);
}

}  // namespace tabelion
