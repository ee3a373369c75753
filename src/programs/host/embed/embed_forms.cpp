// Turns text forms into the source that holds their bytes: embed_forms OUTPUT.cpp FORM...
// A form's class is its root's; errors name the file and the line.
#include <cstdio>
#include <string>

#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace {

std::string ClassOf(vyn::TStream& form) {
    vyn::TReader reader(form);
    reader.ReadSignature();
    uint8_t flags = 0;
    int position = -1;
    reader.ReadPrefix(flags, position);
    return std::string(reader.ReadNameView());
}

void Compile(const char* fileName, std::string& arrays, std::string& registrations) {
    vyn::TMemoryStream text, binary;
    text.LoadFromFile(vyn::Utf8ToAnsi(fileName));
    vyn::TextToBinary(text.Bytes(), binary);
    binary.SetPosition(0);
    const std::string className = ClassOf(binary);
    arrays += "const unsigned char k" + className + "[] = {";
    int column = 0;
    for (unsigned char byte : binary.Bytes()) {
        arrays += column++ % 24 == 0 ? "\n    " : " ";
        arrays += std::to_string(byte) + ",";
    }
    arrays += "};\n";
    registrations +=
        "    RegisterFormResource(\"" + className + "\", Bytes(k" + className + ", sizeof k" + className + "));\n";
}

}  // namespace

int main(int argc, char** argv) {
    std::string arrays, registrations;
    for (int i = 2; i < argc; ++i) {
        try {
            Compile(argv[i], arrays, registrations);
        } catch (const vyn::Exception& error) {
            std::fprintf(stderr, "%s: %s\n", argv[i], vyn::AnsiToUtf8(error.Message()).c_str());
            return 1;
        }
    }
    const std::string source =
        "// Made by the build from the text forms of the host.\n#include <string_view>\n\n"
        "#include \"platform/controls/form_classes.h\"\n\nnamespace vyn {\n\nnamespace {\n\n" +
        arrays +
        "\nstd::string_view Bytes(const unsigned char* bytes, size_t size) {\n"
        "    return {reinterpret_cast<const char*>(bytes), size};\n}\n\n}  // namespace\n\n"
        "void RegisterCompiledForms();\nvoid RegisterCompiledForms() {\n" +
        registrations + "}\n\n}  // namespace vyn\n";
    FILE* file = argc > 1 ? std::fopen(argv[1], "wb") : nullptr;
    if (!file || std::fwrite(source.data(), 1, source.size(), file) != source.size() || std::fclose(file) != 0) {
        std::fprintf(stderr, "embed_forms: cannot write %s\n", argc > 1 ? argv[1] : "");
        return 1;
    }
    return 0;
}
