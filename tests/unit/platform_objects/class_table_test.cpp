#include "platform/objects/class_table.h"

#include <gtest/gtest.h>

#include "platform/objects/class_info.h"
#include "platform/objects/component.h"
#include "platform/text/exceptions.h"

using namespace vyn;

namespace class_table_tests {

TEST(ClassTable, StaysRightWhenTheLastAndThenAMiddleClassGo) {
    const ClassInfo first = DefineClass<TComponent, TPersistent>("TTableFirst");
    const ClassInfo second = DefineClass<TComponent, TPersistent>("TTableSecond");
    const ClassInfo third = DefineClass<TComponent, TPersistent>("TTableThird");
    for (TClass each : {&first, &second, &third}) RegisterClass(each);
    UnRegisterClass(&third);
    EXPECT_EQ(GetClass("ttablethird"), nullptr);
    EXPECT_EQ(GetClass("TTABLESECOND"), &second);
    RegisterClass(&third);
    UnRegisterClass(&first);
    EXPECT_EQ(GetClass("TTableFirst"), nullptr);
    EXPECT_EQ(GetClass("TTableSecond"), &second);
    EXPECT_EQ(GetClass("TTableThird"), &third);
    for (TClass each : {&second, &third}) UnRegisterClass(each);
    EXPECT_EQ(GetClass("TTableSecond"), nullptr);
}

TEST(ClassTable, AClassThatIsNotThereIsNoneToTakeAway) {
    const ClassInfo stranger = DefineClass<TComponent, TPersistent>("TTableStranger");
    const size_t count = RegisteredClasses().size();
    UnRegisterClass(&stranger);
    EXPECT_EQ(RegisteredClasses().size(), count);
}

TEST(ClassTable, AnotherClassOfTheSameNameIsRefused) {
    const ClassInfo one = DefineClass<TComponent, TPersistent>("TTableTwin");
    const ClassInfo other = DefineClass<TComponent, TPersistent>("ttabletwin");
    RegisterClass(&one);
    RegisterClass(&one);
    try {
        RegisterClass(&other);
        ADD_FAILURE() << "no error";
    } catch (const EFilerError& error) {
        EXPECT_EQ(error.Message(), "A class named ttabletwin already exists");
    }
    UnRegisterClass(&one);
}

}  // namespace class_table_tests
