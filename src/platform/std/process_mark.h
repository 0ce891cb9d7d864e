// Which process made a file that lies beside a database: a lock, or a content half written. So that
// the next program can tell what was left by one that was killed from what is in use.
#pragma once

#include <string>
#include <string_view>

namespace tabelion {

// A word of this process, "PLACE-BOOT-PID-START" in hexadecimal digits: the machine (with its
// process namespace), when it was started, the process, and when that was started. At most 36
// characters, all of them fit for a file name.
std::string processMark();

// Whether the process of that mark has certainly ended. What cannot be known from here (another
// machine, a mark that nobody reads) has not.
bool hasEnded(std::string_view mark);

std::string hostName();

}  // namespace tabelion
