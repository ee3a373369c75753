#include "platform/access/fault.h"

namespace vyn {

namespace fault_detail {

const char* SentenceOf(DatabaseFault fault) {
    switch (fault) {
        case DatabaseFault::None:
            return "";
        case DatabaseFault::InUse:
            return "another program is using the database and has not finished. Try again in a moment";
        case DatabaseFault::Deadlock:
            return "another user was changing the same records at the same moment. Try again";
        case DatabaseFault::DiskFull:
            return "there is no room left on the disk. Nothing of this was stored: make room and try again";
        case DatabaseFault::DiskFailure:
            return "the disk could not be read or written. Nothing of this was stored: look at the disk and at the way "
                   "to it, and try again";
        case DatabaseFault::ReadOnly:
            return "the database may only be read. Nothing of this was stored: ask for the right to write its file and "
                   "folder";
        case DatabaseFault::Damaged:
            return "the database file is damaged. Write no more to it, and take a copy from before";
        case DatabaseFault::NoDatabase:
            return "the file is not a database. Look whether it is the right one";
        case DatabaseFault::CannotOpen:
            return "the file cannot be opened. Look at its name and its folder, and whether you may read and write "
                   "both";
        case DatabaseFault::OutOfMemory:
            return "there is not enough memory. Close something and try again";
        case DatabaseFault::TooLarge:
            return "a value is larger than this database keeps";
        case DatabaseFault::TooSlow:
            return "it took longer than was allowed and was broken off. Try again, or allow more time";
    }
    return "";
}

}  // namespace fault_detail

AnsiString FaultMessage(const AnsiString& what, DatabaseFault fault, const AnsiString& reason) {
    if (fault == DatabaseFault::None) return what + ": " + reason;
    return what + ": " + fault_detail::SentenceOf(fault) + " (" + reason + ")";
}

}  // namespace vyn
