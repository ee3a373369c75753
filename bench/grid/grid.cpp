// A grid over 1,000,000 rows of 8 columns: opened, and paged through; beside Qt's table view with uniform rows over a
// model of the same dataset. Both ask the same fields for the same texts, in the same font, columns, row height and
// viewport, so that what differs is how cells are found and painted.
#include <benchmark/benchmark.h>

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QWindow>

#include "package/package.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/forms.h"
#include "platform/text/exceptions.h"
#include "qt/application.h"
#include "qt/text.h"
#include "qt/widget_peer.h"

namespace {

using namespace vyn;

constexpr int64_t kRows = 1'000'000;
constexpr int kColumnWidth = 100;
constexpr int kWindowWidth = 830;
constexpr int kWindowHeight = 640;

// Rows made of their numbers.
class Sales : public TDataSet {
  public:
    Sales() : TDataSet(nullptr) {}
    ~Sales() override { BeginDestruction(); }

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        return {{"Id", ftInteger},     {"Client", ftInteger}, {"Name", ftString, 30}, {"City", ftString, 20},
                {"Price", ftCurrency}, {"Weight", ftFloat},   {"Day", ftDate},        {"Note", ftString, 40}};
    }
    bool InternalFetch(RowStore& rows, int64_t count) override {
        for (; count > 0 && next_ < kRows; --count, ++next_) {
            rows.BeginRow();
            rows.PutInteger(next_);
            rows.PutInteger(next_ % 5000);
            rows.PutBytes("Client " + std::to_string(next_ % 5000));
            rows.PutBytes("City " + std::to_string(next_ % 300));
            rows.PutInteger(next_ % 100000 * 10000 / 100);
            rows.PutReal(static_cast<double>(next_ % 7000) / 8);
            rows.PutReal(40000.0 + static_cast<double>(next_ % 7000));
            if (next_ % 3 != 0)
                rows.PutBytes("A note, number " + std::to_string(next_));
            else
                rows.PutNull();
            rows.EndRow();
        }
        return next_ < kRows;
    }
    void InternalClose() override { next_ = 0; }

  private:
    int64_t next_ = 0;
};

Sales& TheSales() {
    static Sales sales;
    if (!sales.Active()) {
        sales.Open();
        sales.RecordCount();
    }
    return sales;
}

// The toolkit's way to the same texts.
class SalesModel : public QAbstractTableModel {
  public:
    explicit SalesModel(Sales& sales) : sales_(sales) {}
    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(sales_.RecordsFetched());
    }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : sales_.FieldCount(); }
    QVariant data(const QModelIndex& index, int role) const override {
        const TField* field = sales_.Fields(index.column());
        if (role == Qt::DisplayRole) return qt::ToQt(field->DisplayTextOf(index.row()));
        if (role == Qt::TextAlignmentRole)
            return int(Qt::AlignVCenter | (field->Alignment() == taRightJustify ? Qt::AlignRight : Qt::AlignLeft));
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return qt::ToQt(sales_.Fields(section)->DisplayLabel());
    }

  private:
    Sales& sales_;
};

// Handles a window's events until it has been painted once.
void WaitForPaint(QWidget& widget) {
    QCoreApplication::processEvents();
    if (!widget.windowHandle() || !widget.windowHandle()->isExposed()) throw Exception("The window was not painted");
}

struct Ours {
    Ours() : source(&form) {
        form.SetPosition(poDesigned);
        form.SetBorderStyle(bsNone);
        form.SetBounds(0, 0, kWindowWidth, kWindowHeight);
        auto* grid = new TDBGrid(&form);
        grid->SetParent(&form);
        grid->SetBounds(0, 0, kWindowWidth, kWindowHeight);
        for (int i = 0; i < TheSales().FieldCount(); ++i) {
            TColumn* column = grid->Columns()->Add();
            column->SetFieldName(TheSales().Fields(i)->FieldName());
            column->SetWidth(kColumnWidth);
        }
        grid->SetDataSource(&source);
        source.SetDataSet(&TheSales());
        form.Show();
        area = static_cast<QAbstractScrollArea*>(static_cast<QWidget*>(grid->Peer()->NativeHandle()));
        rowHeight = grid->RowHeight();
        WaitForPaint(*static_cast<QWidget*>(form.Peer()->NativeHandle()));
    }
    ~Ours() { source.SetDataSet(nullptr); }
    TForm form{nullptr};
    TDataSource source;
    QAbstractScrollArea* area = nullptr;
    int rowHeight = 0;
};

// What the peer takes over from us.
struct Look {
    int rowHeight;
    QFont font;
};
const Look& TheLook() {
    static const Look look = [] {
        const Ours ours;
        return Look{ours.rowHeight, ours.area->font()};
    }();
    return look;
}
int RowHeight() { return TheLook().rowHeight; }

struct Peer {
    Peer() : model(TheSales()) {
        view.setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
        view.resize(kWindowWidth, kWindowHeight);
        view.setFont(TheLook().font);
        view.verticalHeader()->setDefaultSectionSize(RowHeight());
        view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view.verticalHeader()->hide();
        view.horizontalHeader()->setDefaultSectionSize(kColumnWidth);
        view.setWordWrap(false);
        view.setModel(&model);
        view.show();
        WaitForPaint(view);
    }
    SalesModel model;
    QTableView view;
};

void OpenOurs(benchmark::State& state) {
    TheSales();
    for (auto _ : state) const Ours ours;
}
BENCHMARK(OpenOurs)->Name("grid_open/ours")->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenPeer(benchmark::State& state) {
    RowHeight();
    for (auto _ : state) const Peer peer;
}
BENCHMARK(OpenPeer)->Name("grid_open/peer_table_view")->Unit(benchmark::kMillisecond)->UseRealTime();

// A page further each time, painted each time.
void Page(benchmark::State& state, QAbstractScrollArea& area) {
    QScrollBar& bar = *area.verticalScrollBar();
    const int last = bar.maximum();
    if (bar.pageStep() < 10 || last < kRows / 2) throw Exception("There is nothing to page through");
    int at = 0;
    for (auto _ : state) {
        at = at + bar.pageStep() > last ? 0 : at + bar.pageStep();
        bar.setValue(at);
        area.viewport()->repaint();
    }
    state.SetItemsProcessed(state.iterations());
}

void PageOurs(benchmark::State& state) {
    const Ours ours;
    Page(state, *ours.area);
}
BENCHMARK(PageOurs)->Name("grid_paging/ours")->Unit(benchmark::kMicrosecond)->UseRealTime();

void PagePeer(benchmark::State& state) {
    Peer peer;
    Page(state, peer.view);
}
BENCHMARK(PagePeer)->Name("grid_paging/peer_table_view")->Unit(benchmark::kMicrosecond)->UseRealTime();

// The texts alone, which both need before they paint anything.
void PageTexts(benchmark::State& state) {
    Sales& sales = TheSales();
    const int rows = kWindowHeight / RowHeight();
    int64_t at = 0;
    for (auto _ : state) {
        at = at + 2 * rows > kRows ? 0 : at + rows;
        for (int64_t record = at; record < at + rows; ++record)
            for (int i = 0; i < sales.FieldCount(); ++i)
                benchmark::DoNotOptimize(qt::ToQt(sales.Fields(i)->DisplayTextOf(record)));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(PageTexts)->Name("grid_paging/limit_texts_alone")->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    vyn::InitializePackage();
    return vyn::qt::RunQtApplication(argc, argv, [] {
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    });
}
