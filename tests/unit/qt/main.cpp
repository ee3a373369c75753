#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "platform/controls/control_classes.h"
#include "platform/controls/db_grids.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "platform/streams/text_form.h"
#include "qt/application.h"
#include "qt_tests.h"

namespace vyn {

std::string ReadTestFile(const std::string& name) {
    std::ifstream file(std::string(VYN_QT_TESTS) + "/" + name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::unique_ptr<TForm> FormFromText(std::string_view text) {
    TMemoryStream binary;
    TextToBinary(text, binary);
    binary.SetPosition(0);
    auto form = std::make_unique<TForm>(nullptr);
    ReadComponentFromStream(binary, form.get());
    return form;
}

}  // namespace vyn

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    return vyn::qt::RunQtApplication(argc, argv, [] {
        vyn::RegisterControlClasses();
        vyn::RegisterDataClasses();
        vyn::RegisterDataControlClasses();
        for (const vyn::TClass each : vyn::LinkedClasses()) vyn::RegisterClass(each);
        return RUN_ALL_TESTS();
    });
}
