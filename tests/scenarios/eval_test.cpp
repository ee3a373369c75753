#include "scenarios/program.h"

namespace vyn::scenarios {

namespace {

class Eval : public ProgramTest {
  protected:
    // What is printed for the arguments after "eval", a line.
    std::string Printed(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "eval");
        const Ended ended = Vyn(arguments);
        EXPECT_EQ(ended.ExitStatus, 0) << ended.Told();
        EXPECT_EQ(ended.Errors, "");
        return ended.Output;
    }
    // The whole of standard error, after "vyn: ".
    void ExpectError(std::vector<std::string> arguments, const std::string& text) {
        arguments.insert(arguments.begin(), "eval");
        const Ended ended = Vyn(arguments);
        EXPECT_EQ(ended.ExitStatus, 1) << ended.Told();
        EXPECT_EQ(ended.Output, "");
        EXPECT_EQ(ended.Errors, "vyn: " + text + "\n");
    }
    void ExpectWrongUsage(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "eval");
        const Ended ended = Vyn(arguments);
        EXPECT_EQ(ended.ExitStatus, 2) << ended.Told();
        EXPECT_EQ(ended.Output, "");
        EXPECT_NE(ended.Errors.find("Usage: vyn eval"), std::string::npos) << ended.Told();
    }
};

}  // namespace

TEST_F(Eval, PrintsTheShortestNumberThatReadsBack) {
    EXPECT_EQ(Printed({"1+2*3"}), "7\n");
    EXPECT_EQ(Printed({"0.1+0.2"}), "0.30000000000000004\n");
    EXPECT_EQ(Printed({"1/4"}), "0.25\n");
    EXPECT_EQ(Printed({"2^100"}), "1.2676506002282294E30\n");
    EXPECT_EQ(Printed({"1/8E20"}), "1.25E-21\n");
}

TEST_F(Eval, TakesTheVariablesAsArguments) {
    EXPECT_EQ(Printed({"a*b+c", "a=2", "b=1.5", "c=-1"}), "2\n");
    EXPECT_EQ(Printed({"Base*(1+IVA/100)", "BASE=200", "iva=21"}), "242\n");
    EXPECT_EQ(Printed({"t*2", "t='2.5'"}), "5\n");
    EXPECT_EQ(Printed({"a", "a=1", "a=2"}), "2\n");
}

TEST_F(Eval, AnExpressionMayBeginWithAMinusSignAfterTwoDashes) {
    EXPECT_EQ(Printed({"--", "-2^2"}), "-4\n");
    EXPECT_EQ(Printed({"--", "-a", "a=5"}), "-5\n");
    EXPECT_EQ(Printed({"--", "-PI*0"}), "-0\n");
}

TEST_F(Eval, AnEmptyExpressionIsZero) { EXPECT_EQ(Printed({""}), "0\n"); }

TEST_F(Eval, ErrorsAreTheCompilersOwn) {
    ExpectError({"2 + 3"}, "Expression has blanks");
    ExpectError({"(1+2"}, "Missing brackets in expression");
    ExpectError({"1+"}, "Error parsing expression:\r1+\r+");
    ExpectError({"a"}, "Error parsing expression:\ra");
    ExpectError({std::string(21, '(') + "1" + std::string(21, ')')}, "Expression contains too many nestings");
    ExpectError({"a", "a=null"}, "Can't Build Variable a because is null");
    ExpectError({"a", "a="}, "Variable a is null");
    ExpectError({"a", "a=x"}, "'x' is not a valid floating point value");
    ExpectError({"1/0"}, "Floating point division by zero");
}

TEST_F(Eval, ErrorsOfTheValuesAreTold) {
    ExpectError({"1", "9a=1"}, "Parametre 9a can't start with 9");
    ExpectError({"1", "a-b=1"}, "Character \"-\" is not a valid char in NomParametre a-b");
    ExpectError({"1", "a=1E999"}, "'1E999' is not a valid floating point value");
}

TEST_F(Eval, AValueWithoutANameIsWrongUsage) {
    ExpectWrongUsage({});
    ExpectWrongUsage({"1", "2"});
    ExpectWrongUsage({"1", "=2"});
    ExpectWrongUsage({"--loud", "1"});
}

TEST_F(Eval, AFullDeviceIsNoticed) {
    Conditions conditions;
    conditions.OutputFile = "/dev/full";
    ExpectFailed(Vyn({"eval", "1"}, conditions), "Standard output");
}

}  // namespace vyn::scenarios
