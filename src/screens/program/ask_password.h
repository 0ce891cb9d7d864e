// The one dialog that asks for a password.
#pragma once

#include <string>

#include "services/application.h"
#include "services/encryption.h"
#include "services/modal.h"

namespace tabelion {

inline constexpr int kPasswordConfirmed = 1;
inline constexpr int kPasswordCancelled = -1;
inline constexpr std::size_t kMaxPassword = 24;  // characters

inline constexpr ControlId kPasswordLabel = 1;
inline constexpr ControlId kPasswordEdit = 2;
inline constexpr ControlId kHidePasswordBox = 3;

struct PasswordQuestion {
  std::string expected{};  // 8-bit
  bool compare = false;
  bool for_encryption = false;  // asks for the encryption password, not for the access password
};

// kPasswordConfirmed or kPasswordCancelled; what was typed, 8-bit, goes into `typed`.
// Compat: a wrong password is answered with a notice and counts as confirmed all the same
// (AskPassword.WrongPasswordIsConfirmedAfterANotice).
int AskPassword(Application& app, const PasswordQuestion& question, Password* typed = nullptr);

// For the services that need the encryption password.
EncryptionPasswordPrompt AskEncryptionPassword(Application& app);

}  // namespace tabelion
