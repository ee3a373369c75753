// What a key costs the main thread in a shown window, from its event to the painted text: in a lookup box that waits
// for a pause in typing, and in one that completes what is typed by what it has found, beside a plain edit of the same
// form and Qt's own line.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include "lookup_world.h"
#include "qt/application.h"
#include "qt/widget_peer.h"

namespace {

using namespace lookup_world;

constexpr uint32_t kLongWait = 9999;  // milliseconds: each key moves the deadline on
// What is typed again and again; some customer's name begins so.
constexpr char kTyped[] = "garcia 1000";
constexpr size_t kTypedLength = sizeof kTyped - 1;

// Keys typed into a widget, which is painted behind each.
class Typist {
  public:
    explicit Typist(QLineEdit& line) : line_(line) {}
    void TypeOne() {
        if (at_ == kTypedLength) {
            line_.selectAll();
            at_ = 0;
        }
        const QChar letter(kTyped[at_++]);
        const int key = letter.toUpper().unicode();
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(letter));
        QCoreApplication::sendEvent(&line_, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(letter));
        QCoreApplication::sendEvent(&line_, &release);
        QCoreApplication::processEvents();
    }

  private:
    QLineEdit& line_;
    size_t at_ = 0;
};

// A shown form with a lookup box and a plain edit.
class Window : public World {
  public:
    explicit Window(uint32_t wait) : World(Engine::Embedded, 1) {
        form->SetBounds(0, 0, 400, 120);
        box = AddBox(1);
        box->SetBounds(20, 20, 200, 25);
        box->SetAutoSearchWaitMiliSeconds(static_cast<int32_t>(wait));
        plain = new TEdit(form.get());
        plain->SetParent(form.get());
        plain->SetBounds(20, 60, 200, 25);
        form->Show();
        box->Link().HasComponent();
        Settle();
        orders->Edit();
    }
    ~Window() { box->Link().WaitUntilThreadFinished(); }
    QLineEdit& LineOf(TWinControl& control) {
        control.SetFocus();
        Settle();
        return *static_cast<QLineEdit*>(qt::PeerOfControl(&control)->FocusTarget());
    }

    TVynEditBox* box = nullptr;
    TEdit* plain = nullptr;
};

void Type(benchmark::State& state, QLineEdit& line) {
    Typist typist(line);
    for (size_t i = 0; i < 2 * kTypedLength; ++i) typist.TypeOne();
    for (auto _ : state) typist.TypeOne();
    state.SetItemsProcessed(state.iterations());
}

void WaitingBox(benchmark::State& state) {
    Window window(kLongWait);
    Type(state, window.LineOf(*window.box));
}
BENCHMARK(WaitingBox)->Name("keystroke/ours_waiting");

// The beginning was found before, so every key behind it is completed at once.
void CompletingBox(benchmark::State& state) {
    Window window(0);
    QLineEdit& line = window.LineOf(*window.box);
    Type(state, line);
    window.Settle();
    if (!line.hasSelectedText()) Fail("nothing was completed");
}
BENCHMARK(CompletingBox)->Name("keystroke/ours_completing");

// Nothing is known: each key is searched for among the 1,000,000.
void SearchingBox(benchmark::State& state) {
    Window window(0);
    QLineEdit& line = window.LineOf(*window.box);
    Typist typist(line);
    TVynComponent& record = *window.source->ComponentList()->RecordOf(&window.box->Link());
    for (auto _ : state) {
        record.LastSearchedValue = Variant();
        typist.TypeOne();
        while (!line.hasSelectedText()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SearchingBox)->Name("keystroke/ours_searching")->UseRealTime();

void PlainEdit(benchmark::State& state) {
    Window window(kLongWait);
    Type(state, window.LineOf(*window.plain));
}
BENCHMARK(PlainEdit)->Name("keystroke/peer_plain_edit");

void ToolkitLine(benchmark::State& state) {
    QWidget window;
    window.resize(400, 120);
    QLineEdit line(&window);
    line.setGeometry(20, 20, 200, 25);
    window.show();
    line.setFocus();
    Type(state, line);
}
BENCHMARK(ToolkitLine)->Name("keystroke/limit_toolkit_line");

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    return vyn::qt::RunQtApplication(argc, argv, [] {
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        return 0;
    });
}
