#pragma once

#include "platform/text/ansi_string.h"

namespace vyn {

// What can befall a database through no fault of a statement: engines call each of these by codes of their own, users
// hear of all in the same sentences, which say what happened and what can be done.
enum class DatabaseFault {
    None,         // nothing of the kind: the engine's own words say it
    InUse,        // another program holds it
    Deadlock,     // two users wait for each other, or changed the same
    DiskFull,     //
    DiskFailure,  // reading or writing went wrong
    ReadOnly,     //
    Damaged,      //
    NoDatabase,   // a file of something else
    CannotOpen,   //
    OutOfMemory,  //
    TooLarge,     // a value
    TooSlow,      // broken off after the time that was allowed
};

// "WHAT: SENTENCE (REASON)", or "WHAT: REASON" for no fault. `reason` is the engine's own.
AnsiString FaultMessage(const AnsiString& what, DatabaseFault fault, const AnsiString& reason);

// What is added when a transaction was taken back on the way.
constexpr char kTransactionGone[] = ". The transaction was taken back with it: nothing that was done in it is kept";

// What a connection that was lost is reported with.
constexpr char kConnectionLost[] = "The connection to the database server was lost";
constexpr char kServerSilent[] = "The database server does not answer any more: the connection to it was given up";
constexpr char kTransactionLost[] = ", and the transaction with it: nothing that was done in it is kept";
// When the answer to what stores a change did not come: it may have been done.
constexpr char kOutcomeUnknown[] =
    " while a change was being stored. Whether it is kept cannot be told from here: look at the records before you "
    "store it again";
constexpr char kMadeAgain[] = ". It has been made again";
constexpr char kMadeLater[] = ". It will be made again at the next step";
constexpr char kNotMadeAgain[] = ". It could not be made again: ";
constexpr char kLostWhileReading[] = "The connection to the database server was lost while records were read";

}  // namespace vyn
