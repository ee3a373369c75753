#pragma once

#include <exception>
#include <utility>

#include "platform/text/ansi_string.h"

// The platform's family of exceptions. Message() is shown to users as it is, so it is a whole sentence in Windows-1252;
// ClassName() is the family member's name as handlers and logs print it.
namespace vyn {

class Exception : public std::exception {
  public:
    explicit Exception(AnsiString message) : message_(std::move(message)) {}
    virtual const char* ClassName() const noexcept { return "Exception"; }
    const AnsiString& Message() const noexcept { return message_; }
    const char* what() const noexcept override { return message_.c_str(); }  // the same Windows-1252 bytes

  private:
    AnsiString message_;
};

// A member of the family that differs in its name alone; other rooms declare theirs with it too.
#define VYN_EXCEPTION(Name, Base)                                         \
    class Name : public Base {                                            \
      public:                                                             \
        using Base::Base;                                                 \
        const char* ClassName() const noexcept override { return #Name; } \
    }

// Handlers treat it as a quiet cancel and show nothing.
VYN_EXCEPTION(EAbort, Exception);
VYN_EXCEPTION(EAbstractError, Exception);
VYN_EXCEPTION(EAssertionFailed, Exception);
VYN_EXCEPTION(EConvertError, Exception);
VYN_EXCEPTION(EVariantError, Exception);
VYN_EXCEPTION(EInvalidCast, Exception);
VYN_EXCEPTION(EInOutError, Exception);
VYN_EXCEPTION(EThread, Exception);

// What the machine itself reports.
VYN_EXCEPTION(EExternal, Exception);
VYN_EXCEPTION(EExternalException, EExternal);
VYN_EXCEPTION(EAccessViolation, EExternal);
VYN_EXCEPTION(EStackOverflow, EExternal);
VYN_EXCEPTION(EIntError, EExternal);
VYN_EXCEPTION(EDivByZero, EIntError);
VYN_EXCEPTION(ERangeError, EIntError);
VYN_EXCEPTION(EIntOverflow, EIntError);
VYN_EXCEPTION(EMathError, EExternal);
VYN_EXCEPTION(EInvalidOp, EMathError);
VYN_EXCEPTION(EZeroDivide, EMathError);
VYN_EXCEPTION(EOverflow, EMathError);
VYN_EXCEPTION(EUnderflow, EMathError);
VYN_EXCEPTION(EHeapException, Exception);
VYN_EXCEPTION(EOutOfMemory, EHeapException);
VYN_EXCEPTION(EOutOfResources, EOutOfMemory);

// Streams and what is stored in them.
VYN_EXCEPTION(EStreamError, Exception);
VYN_EXCEPTION(EFCreateError, EStreamError);
VYN_EXCEPTION(EFOpenError, EStreamError);
VYN_EXCEPTION(EFilerError, EStreamError);
VYN_EXCEPTION(EReadError, EFilerError);
VYN_EXCEPTION(EWriteError, EFilerError);
VYN_EXCEPTION(EClassNotFound, EFilerError);
VYN_EXCEPTION(EMethodNotFound, EFilerError);
VYN_EXCEPTION(EInvalidImage, EFilerError);
VYN_EXCEPTION(EResNotFound, Exception);
VYN_EXCEPTION(EParserError, Exception);

// Components, properties and lists.
VYN_EXCEPTION(EPropertyError, Exception);
VYN_EXCEPTION(EPropReadOnly, Exception);
VYN_EXCEPTION(EPropWriteOnly, Exception);
VYN_EXCEPTION(EListError, Exception);
VYN_EXCEPTION(EStringListError, Exception);
VYN_EXCEPTION(EBitsError, Exception);
VYN_EXCEPTION(EComponentError, Exception);
VYN_EXCEPTION(EInvalidOperation, Exception);

// Windows and what is drawn in them.
VYN_EXCEPTION(EInvalidGraphic, Exception);
VYN_EXCEPTION(EInvalidGraphicOperation, Exception);
VYN_EXCEPTION(EInvalidGridOperation, Exception);
VYN_EXCEPTION(EMenuError, Exception);
VYN_EXCEPTION(ETreeViewError, Exception);
VYN_EXCEPTION(EListViewError, Exception);
VYN_EXCEPTION(EPrinter, Exception);

VYN_EXCEPTION(EDatabaseError, Exception);

// A failed call of the operating system; ErrorCode() is its error number.
class EOSError : public Exception {
  public:
    explicit EOSError(AnsiString message, int errorCode = 0) : Exception(std::move(message)), errorCode_(errorCode) {}
    const char* ClassName() const noexcept override { return "EOSError"; }
    int ErrorCode() const noexcept { return errorCode_; }

  private:
    int errorCode_;
};

[[noreturn]] void Abort();  // raises EAbort("Operation aborted")

}  // namespace vyn
