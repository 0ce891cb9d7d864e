#include "security/access_rights.h"

namespace tabelion {

int securityCode(const DatabaseRecord& schema, Operation operation) {
  return static_cast<int>(schema.security_word >> (2 * static_cast<int>(operation)) & 3u);
}

void setSecurityCode(DatabaseRecord& schema, Operation operation, int code) {
  const int shift = 2 * static_cast<int>(operation);
  schema.security_word =
      (schema.security_word & ~(3u << shift)) | (static_cast<std::uint32_t>(code) & 3u) << shift;
}

int CheckSecurity(const DatabaseRecord& schema, Operation operation) {
  switch (securityCode(schema, operation)) {
    case kCodeRefused:
      return kAccessRefused;
    case kCodeRestricted:
      return kAccessRestricted;
    default:
      return kAccessGranted;
  }
}

int OpenCode(const DatabaseRecord& schema) {
  switch (securityCode(schema, Operation::kOpen)) {
    case kCodeFree:
      return kOpenFreely;
    case kCodePassword:
      return kOpenWithPassword;
    default:
      return kNeverOpen;
  }
}

}  // namespace tabelion
