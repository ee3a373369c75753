#include "unit/app/fixtures.h"

namespace app_fixtures {

const ClassInfo& TMenuProbe::StaticClass() {
    static const ClassInfo info = DefineForm<TMenuProbe, TForm>("TFRMMenu");
    return info;
}
const ClassInfo& TGuardProbe::StaticClass() {
    static const ClassInfo info = DefineForm<TGuardProbe, TForm>("TFRMPassword");
    return info;
}
const ClassInfo& TPlainProbe::StaticClass() {
    static const ClassInfo info = DefineClass<TPlainProbe, TComponent>("TCustomFRM")
                                      .Published("Level", &TPlainProbe::Level, &TPlainProbe::Level)
                                      .Default(3);
    return info;
}

namespace fixture_detail {

std::string FormBytes(const std::string& text) {
    TMemoryStream stream;
    TextToBinary(text, stream);
    return std::string(stream.Bytes());
}

const std::string& CompiledMenu() {
    static const std::string bytes =
        FormBytes("object MenuProbe: TFRMMenu\n  Caption = 'Compiled'\n  Hint = 'Of the class'\nend\n");
    return bytes;
}

}  // namespace fixture_detail

AppTest::AppTest() {
    InitializePackage();
    RegisterClass(&TMenuProbe::StaticClass());
    RegisterClass(&TGuardProbe::StaticClass());
    RegisterClass(&TPlainProbe::StaticClass());
    RegisterFormResource("TFRMMenu", fixture_detail::CompiledMenu());
    SetClockForTests([] { return kTen; });
    Log().clear();
    Answers().clear();
    OnWindowMessage() = nullptr;
    TGuardProbe::Result = mrOk;
    hook = Application()->HookMainWindow([](TMessage& message) {
        Note("host", message);
        return IsToHost(message);
    });
    app = std::make_unique<TVynApp>(nullptr);
    Parametres()->Clear();
}

AppTest::~AppTest() {
    if (app) app->CloseApp();
    app.reset();
    Application()->UnhookMainWindow(hook);
    UnregisterFormResource("TFRMMenu");
    SetClockForTests({});
    OnWindowMessage() = nullptr;
    FinalizePackage();
}

void AppTest::Store(int component, const std::string& form, int type) {
    StoreForm(*app, {component, type, "C" + IntToStr(component)}, form);
}

void AppTest::Node(int number, int parent, int type, int component, const AnsiString& name) {
    app->Tree().Add({number, parent, number * 10, component, type, name});
}

AnsiString AppTest::StoredText(int component) const {
    const auto stream = app->Components().GetStreamComponent(component);
    return BinaryToText(*stream);
}

}  // namespace app_fixtures
