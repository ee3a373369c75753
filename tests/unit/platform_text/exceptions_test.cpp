#include "platform/text/exceptions.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace vyn;

TEST(Exceptions, OneKnowsItsNameAndMessage) {
    try {
        throw EConvertError("posici\xF3");
    } catch (const Exception& error) {
        EXPECT_STREQ("EConvertError", error.ClassName());
        EXPECT_EQ("posici\xF3", error.Message());
        EXPECT_STREQ("posici\xF3", error.what());
    }
}

TEST(Exceptions, ThePlainOneIsCalledException) { EXPECT_STREQ("Exception", Exception("x").ClassName()); }

template <class Raised, class Caught>
bool IsCaughtAs() {
    try {
        throw Raised("x");
    } catch (const Caught&) {
        return true;
    } catch (...) {
        return false;
    }
}

TEST(Exceptions, TheFamilyHasItsNaturalBases) {
    EXPECT_TRUE((IsCaughtAs<EReadError, EFilerError>()));
    EXPECT_TRUE((IsCaughtAs<EWriteError, EStreamError>()));
    EXPECT_TRUE((IsCaughtAs<EClassNotFound, EFilerError>()));
    EXPECT_TRUE((IsCaughtAs<EMethodNotFound, EFilerError>()));
    EXPECT_TRUE((IsCaughtAs<EFOpenError, EStreamError>()));
    EXPECT_TRUE((IsCaughtAs<EFCreateError, EStreamError>()));
    EXPECT_TRUE((IsCaughtAs<EStackOverflow, EExternal>()));
    EXPECT_TRUE((IsCaughtAs<EOutOfResources, EOutOfMemory>()));
    EXPECT_TRUE((IsCaughtAs<EZeroDivide, EMathError>()));
    EXPECT_TRUE((IsCaughtAs<EDivByZero, EIntError>()));
    EXPECT_TRUE((IsCaughtAs<EDatabaseError, std::exception>()));
    EXPECT_FALSE((IsCaughtAs<EStreamError, EFilerError>()));
    EXPECT_FALSE((IsCaughtAs<EStringListError, EListError>()));
}

TEST(Exceptions, AnErrorOfTheSystemCarriesItsNumber) {
    const EOSError error("no such file", 2);
    EXPECT_EQ(2, error.ErrorCode());
    EXPECT_STREQ("EOSError", error.ClassName());
}

TEST(Exceptions, AbortRaisesTheQuietOne) {
    try {
        Abort();
    } catch (const EAbort& error) {
        EXPECT_EQ("Operation aborted", error.Message());
        EXPECT_STREQ("EAbort", error.ClassName());
        return;
    }
    FAIL();
}
