#include "services/access.h"

#include "services/message.h"

namespace tabelion {

int CheckSecurity(Application& app, Operation operation, bool show_message) {
  const DatabaseRecord& schema = CurrentDatabase(app).schema;
  if (securityCode(schema, operation) == kCodePassword) {
    ShowMessage(app, u"This is a pending item.", u"CheckPassword", MessageIcon::kInformation);
  }
  const int result = CheckSecurity(schema, operation);
  if (result == kAccessRefused && show_message) {
    ShowMessage(app, u"Sorry, You do Not have Security Access to Perform this Operation!",
                u"ACCESS DENIED", MessageIcon::kExclamation);
  }
  return result;
}

}  // namespace tabelion
