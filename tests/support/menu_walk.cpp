#include "support/menu_walk.h"

namespace tabelion {
namespace {

void collect(const std::vector<MenuEntry>& entries, const MenuPath& above,
             std::vector<MenuPath>& paths) {
  for (const MenuEntry& entry : entries) {
    MenuPath path = above;
    path.push_back(entry.text);
    if (!entry.enabled || entry.text.empty()) continue;
    if (entry.children.empty()) paths.push_back(path);
    collect(entry.children, path, paths);
  }
}

std::vector<MenuPath> offered(FakeDialog& dialog) {
  std::vector<MenuPath> paths;
  for (MenuEntry* key : {&dialog.menu_bar.left, &dialog.menu_bar.right}) {
    if (!key->children.empty()) dialog.handler.onMenuOpening(dialog, *key);
    collect({*key}, {}, paths);
  }
  return paths;
}

}  // namespace

std::vector<MenuPath> walkMenus(FakePhone& phone, const MenuWalk& walk) {
  std::vector<MenuPath> paths;
  phone.leaves_the_rest = true;
  walk.enter();
  phone.at(walk.screen).look([&](FakeDialog& dialog) { paths = offered(dialog); });
  phone.play(walk.program);
  for (const MenuPath& path : paths) {
    walk.enter();
    phone.at(walk.screen).choose(path);
    phone.play(walk.program);
    walk.after(path);
  }
  phone.leaves_the_rest = false;
  return paths;
}

}  // namespace tabelion
