// A stored form of 1,000 controls (labels, edits, buttons, check boxes): to live components, and opened, shown and
// painted; beside Qt's runtime form loader with the same form, and the same widgets made by hand in C++.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUiLoader>
#include <QWindow>

#include "app/Utvynapp.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_table.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/exceptions.h"
#include "qt/application.h"
#include "qt/widget_peer.h"

namespace {

using namespace vyn;

constexpr int kControls = 1000;
constexpr int kColumns = 20;
constexpr int kCellWidth = 70;
constexpr int kCellHeight = 22;
constexpr int kFormWidth = kColumns * kCellWidth;
constexpr int kFormHeight = kControls / kColumns * kCellHeight;

struct Cell {
    int kind, left, top;
    std::string name, text;
};

Cell CellAt(int i) {
    return {i % 4, i % kColumns * kCellWidth, i / kColumns * kCellHeight, "C" + std::to_string(i),
            "Text " + std::to_string(i)};
}

std::string OurForm() {
    static const char* const classes[] = {"TLabel", "TEdit", "TButton", "TCheckBox"};
    std::string text = "object BenchForm: TForm\n  Caption = 'Bench'\n  ClientWidth = " + std::to_string(kFormWidth) +
                       "\n  ClientHeight = " + std::to_string(kFormHeight) + "\n";
    for (int i = 0; i < kControls; ++i) {
        const Cell cell = CellAt(i);
        text += "  object " + cell.name + ": " + classes[cell.kind] + "\n    Left = " + std::to_string(cell.left) +
                "\n    Top = " + std::to_string(cell.top) + "\n    Width = " + std::to_string(kCellWidth - 4) +
                "\n    Height = " + std::to_string(kCellHeight - 4) + "\n    Hint = 'Hint'\n" +
                (cell.kind == 0 ? "    AutoSize = False\n" : "    TabOrder = " + std::to_string(i) + "\n") +
                (cell.kind == 1 ? "    Text = '" : "    Caption = '") + cell.text + "'\n  end\n";
    }
    TMemoryStream binary;
    TextToBinary(text + "end\n", binary);
    return std::string(binary.Bytes());
}

QByteArray QtForm() {
    static const char* const classes[] = {"QLabel", "QLineEdit", "QPushButton", "QCheckBox"};
    std::string xml =
        "<ui version=\"4.0\"><class>F</class><widget class=\"QWidget\" name=\"F\"><property name=\"geometry\">"
        "<rect><x>0</x><y>0</y><width>" +
        std::to_string(kFormWidth) + "</width><height>" + std::to_string(kFormHeight) + "</height></rect></property>";
    for (int i = 0; i < kControls; ++i) {
        const Cell cell = CellAt(i);
        xml += std::string("<widget class=\"") + classes[cell.kind] + "\" name=\"" + cell.name +
               "\"><property name=\"geometry\"><rect><x>" + std::to_string(cell.left) + "</x><y>" +
               std::to_string(cell.top) + "</y><width>" + std::to_string(kCellWidth - 4) + "</width><height>" +
               std::to_string(kCellHeight - 4) +
               "</height></rect></property><property name=\"toolTip\"><string>Hint</string>"
               "</property><property name=\"text\"><string>" +
               cell.text + "</string></property></widget>";
    }
    return QByteArray::fromStdString(xml + "</widget></ui>");
}

QWidget* ByHand() {
    auto* form = new QWidget;
    form->resize(kFormWidth, kFormHeight);
    for (int i = 0; i < kControls; ++i) {
        const Cell cell = CellAt(i);
        const QString text = QString::fromStdString(cell.text);
        QWidget* widget = nullptr;
        switch (cell.kind) {
            case 0:
                widget = new QLabel(text, form);
                break;
            case 1:
                widget = new QLineEdit(text, form);
                break;
            case 2:
                widget = new QPushButton(text, form);
                break;
            default:
                widget = new QCheckBox(text, form);
                break;
        }
        widget->setGeometry(cell.left, cell.top, kCellWidth - 4, kCellHeight - 4);
        widget->setToolTip(QStringLiteral("Hint"));
    }
    return form;
}

// Shows a window and handles its events until it has been painted once.
void ShowAndPaint(QWidget& widget) {
    widget.show();
    QCoreApplication::processEvents();
    if (!widget.windowHandle() || !widget.windowHandle()->isExposed()) throw Exception("The window was not painted");
}

std::unique_ptr<TForm> ReadOurs(const std::string& bytes) {
    TViewStream stream(bytes);
    auto form = std::make_unique<TForm>(nullptr);
    ReadComponentFromStream(stream, form.get());
    return form;
}

void LoadOurs(benchmark::State& state) {
    const std::string bytes = OurForm();
    for (auto _ : state) benchmark::DoNotOptimize(ReadOurs(bytes));
}
BENCHMARK(LoadOurs)->Name("form_load/ours_components")->Unit(benchmark::kMillisecond);

// Through the application: stored resources layered over the class's defaults.
void LoadOursThroughApplication(benchmark::State& state) {
    const std::string bytes = OurForm();
    TVynApp app(nullptr);
    TViewStream stream(bytes);
    app.Components().InsertComponent({1, 2, "Form"}, stream);
    app.Tree().Add({1, -1, 1, 0, 0, "Root"});
    app.Tree().Add({2, 1, 1, 1, 2, "Form"});
    for (auto _ : state) {
        TComponent* form = app.ObreComponent(2, nullptr);
        benchmark::DoNotOptimize(form);
        delete form;
    }
}
BENCHMARK(LoadOursThroughApplication)->Name("form_load/ours_node")->Unit(benchmark::kMillisecond);

void LoadPeer(benchmark::State& state) {
    QByteArray xml = QtForm();
    QUiLoader loader;
    for (auto _ : state) {
        QBuffer buffer(&xml);
        buffer.open(QIODevice::ReadOnly);
        const std::unique_ptr<QWidget> form(loader.load(&buffer));
        benchmark::DoNotOptimize(form.get());
    }
}
BENCHMARK(LoadPeer)->Name("form_load/peer_form_loader")->Unit(benchmark::kMillisecond);

void LoadByHand(benchmark::State& state) {
    for (auto _ : state) {
        const std::unique_ptr<QWidget> form(ByHand());
        benchmark::DoNotOptimize(form.get());
    }
}
BENCHMARK(LoadByHand)->Name("form_load/limit_widgets_by_hand")->Unit(benchmark::kMillisecond);

void ShowOurs(benchmark::State& state) {
    const std::string bytes = OurForm();
    for (auto _ : state) {
        const std::unique_ptr<TForm> form = ReadOurs(bytes);
        form->Show();
        ShowAndPaint(*static_cast<QWidget*>(form->Peer()->NativeHandle()));
    }
}
BENCHMARK(ShowOurs)->Name("form_show/ours")->Unit(benchmark::kMillisecond);

void ShowPeer(benchmark::State& state) {
    QByteArray xml = QtForm();
    QUiLoader loader;
    for (auto _ : state) {
        QBuffer buffer(&xml);
        buffer.open(QIODevice::ReadOnly);
        const std::unique_ptr<QWidget> form(loader.load(&buffer));
        ShowAndPaint(*form);
    }
}
BENCHMARK(ShowPeer)->Name("form_show/peer_form_loader")->Unit(benchmark::kMillisecond);

void ShowByHand(benchmark::State& state) {
    for (auto _ : state) {
        const std::unique_ptr<QWidget> form(ByHand());
        ShowAndPaint(*form);
    }
}
BENCHMARK(ShowByHand)->Name("form_show/limit_by_hand")->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    vyn::InitializePackage();
    vyn::RegistraClassesVyn();
    vyn::AddLinkedClass(&vyn::TForm::StaticClass());
    vyn::RegisterClass(&vyn::TForm::StaticClass());
    const int result = vyn::qt::RunQtApplication(argc, argv, [] {
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    });
    return result;
}
