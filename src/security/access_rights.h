// What a database allows its users to do: two bits per operation in its security word.
#pragma once

#include "engine/database_record.h"

namespace tabelion {

enum class Operation : int {
  kOpen = 0,
  kAdd = 1,
  kChange = 2,  // an existing record
  kDelete = 3,
  kEditPopups = 6,
};

// The operations by the number of their two bits, and their codes: as descriptions and commands
// write them.
inline constexpr const char* kOperationNames[] = {
    "open", "add", "change", "delete", "operation4", "operation5", "popups", "operation7"};
inline constexpr const char* kSecurityCodeNames[] = {"granted", "password", "refused",
                                                     "restricted"};

// The two bits of an operation.
inline constexpr int kCodeFree = 0;
inline constexpr int kCodePassword = 1;
inline constexpr int kCodeRefused = 2;
inline constexpr int kCodeRestricted = 3;  // changing records: they can be looked at only
int securityCode(const DatabaseRecord& schema, Operation operation);
void setSecurityCode(DatabaseRecord& schema, Operation operation, int code);

// Whether an operation may go on. Callers that take any non-zero result go on when restricted.
inline constexpr int kAccessRefused = 0;
inline constexpr int kAccessGranted = 1;
inline constexpr int kAccessRestricted = 2;
// Compat: an operation that asks for a password is granted without one
// (AccessRights.PasswordOperationsAreGranted).
int CheckSecurity(const DatabaseRecord& schema, Operation operation);

// How a database opens.
inline constexpr int kOpenFreely = 0;
inline constexpr int kOpenWithPassword = 1;
inline constexpr int kNeverOpen = -1;
int OpenCode(const DatabaseRecord& schema);

}  // namespace tabelion
