#include <gtest/gtest.h>

#include "qt/application.h"

// The windows of the framework's own controls. Each test starts and ends the package.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    return vyn::qt::RunQtApplication(argc, argv, [] { return RUN_ALL_TESTS(); });
}
