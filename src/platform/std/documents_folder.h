// Where the user's documents are, on this machine and on a card put into it.
#pragma once

#include <optional>
#include <string>

namespace tabelion {

// What the desktop's user-dirs.dirs names, else "Documents" in the home folder. None without a
// home. Without a trailing separator; the folder need not exist yet.
std::optional<std::string> userDocumentsFolder();

// On the first removable volume that is mounted for this user: its "Documents" folder when it has
// one, else the volume itself.
std::optional<std::string> cardDocumentsFolder();

// The user's folders for configuration files and for what programs leave behind; none without a
// home.
std::optional<std::string> userConfigFolder();
std::optional<std::string> userStateFolder();

}  // namespace tabelion
