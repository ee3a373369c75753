#include "platform/controls/pages.h"

#include <QStyle>
#include <QStyleOptionTabWidgetFrame>
#include <QTabBar>

#include "platform/controls/shortcuts.h"
#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/pictures.h"
#include "qt/text.h"

namespace vyn::qt {

namespace page_detail {

// Tabs as high as the room that the control keeps for them.
class TabBar final : public Native<QTabBar> {
  public:
    using Native<QTabBar>::Native;
    void SetTabSize(int thickness, int length) {
        if (thickness == thickness_ && length == length_) return;
        thickness_ = thickness;
        length_ = length;
        updateGeometry();
        tabLayoutChange();
    }

  protected:
    QSize tabSizeHint(int index) const override {
        QSize size = Native<QTabBar>::tabSizeHint(index);
        const bool upright = shape() == QTabBar::RoundedEast || shape() == QTabBar::RoundedWest;
        if (upright) size.transpose();
        if (thickness_ > 0) size.setHeight(thickness_);
        if (length_ > 0) size.setWidth(length_);
        if (upright) size.transpose();
        return size;
    }

  private:
    int thickness_ = 0;
    int length_ = 0;
};

class PageControlPeer final : public PeerOf<TPageControl> {
  public:
    using PeerOf::PeerOf;

    QWidget* FocusTarget() const override { return bar_; }

    void Paint(QPainter& painter) {
        QStyleOptionTabWidgetFrame frame;
        frame.initFrom(widget_);
        frame.shape = bar_->shape();
        frame.lineWidth = widget_->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, widget_);
        frame.rect = widget_->rect();
        constexpr int kOverlap = 1;  // the tabs stand on the frame's line
        if (!bar_->isHidden()) {
            switch (Self().TabPosition()) {
                case tpTop:
                    frame.rect.setTop(bar_->geometry().bottom() + 1 - kOverlap);
                    break;
                case tpBottom:
                    frame.rect.setBottom(bar_->geometry().top() - 1 + kOverlap);
                    break;
                case tpLeft:
                    frame.rect.setLeft(bar_->geometry().right() + 1 - kOverlap);
                    break;
                case tpRight:
                    frame.rect.setRight(bar_->geometry().left() - 1 + kOverlap);
                    break;
            }
            frame.tabBarSize = bar_->size();
            frame.tabBarRect = bar_->geometry();
            frame.selectedTabRect =
                bar_->currentIndex() >= 0 ? bar_->tabRect(bar_->currentIndex()).translated(bar_->pos()) : QRect();
        }
        widget_->style()->drawPrimitive(QStyle::PE_FrameTabWidget, &frame, &painter, widget_);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new Painted<PageControlPeer>(this, parent);
        bar_ = new TabBar(this, widget);
        bar_->setDrawBase(false);
        bar_->setExpanding(false);
        bar_->setUsesScrollButtons(true);
        bar_->setElideMode(Qt::ElideNone);
        QObject::connect(bar_, &QTabBar::currentChanged, Context(), [this](int tab) { TabChosen(tab); });
        return widget;
    }

    void ApplyBounds() override {
        PeerOf::ApplyBounds();
        PlaceBar();
    }
    void ApplyStyle() override {
        bar_->setFocusPolicy(FocusPolicyOf(Self()));
        switch (Self().TabPosition()) {
            case tpTop:
                bar_->setShape(QTabBar::RoundedNorth);
                break;
            case tpBottom:
                bar_->setShape(QTabBar::RoundedSouth);
                break;
            case tpLeft:
                bar_->setShape(QTabBar::RoundedWest);
                break;
            case tpRight:
                bar_->setShape(QTabBar::RoundedEast);
                break;
        }
        ApplyItems();
    }
    void ApplyItems() override {
        TCustomImageList* images = Self().Images();
        int tab = 0;
        for (int i = 0; i < Self().PageCount(); ++i) {
            TTabSheet& page = *Self().Pages(i);
            if (!page.TabVisible()) continue;
            // Mnemonics are the form's affair.
            const QString caption = WithPlainAmpersands(StripHotkey(page.Caption()));
            if (tab == bar_->count())
                bar_->addTab(caption);
            else if (bar_->tabText(tab) != caption)
                bar_->setTabText(tab, caption);
            const bool pictured = images && page.ImageIndex() >= 0 && page.ImageIndex() < images->Count();
            if (pictured || !bar_->tabIcon(tab).isNull())
                bar_->setTabIcon(
                    tab, pictured ? QIcon(QPixmap::fromImage(ToQImage(images->Image(page.ImageIndex())))) : QIcon());
            bar_->setTabEnabled(tab, page.Enabled());
            ++tab;
        }
        while (bar_->count() > tab) bar_->removeTab(bar_->count() - 1);
        PlaceBar();
        ApplySelection();
    }
    void ApplySelection() override {
        const TTabSheet* active = Self().ActivePage();
        const int tab = active ? active->TabIndex() : -1;
        if (tab >= 0 && bar_->currentIndex() != tab) bar_->setCurrentIndex(tab);
        widget_->update();
    }
    void ApplyFont() override {
        PeerOf::ApplyFont();
        PlaceBar();
    }

  private:
    void PlaceBar() {
        const TRect inside = Self().DisplayRect();
        const int width = widget_->width();
        const int height = widget_->height();
        QRect place;
        switch (Self().TabPosition()) {
            case tpTop:
                place = {0, 0, width, inside.Top};
                break;
            case tpBottom:
                place = {0, inside.Bottom, width, height - inside.Bottom};
                break;
            case tpLeft:
                place = {0, 0, inside.Left, height};
                break;
            case tpRight:
                place = {inside.Right, 0, width - inside.Right, height};
                break;
        }
        const bool upright = Self().TabPosition() == tpLeft || Self().TabPosition() == tpRight;
        // The room for the tabs ends where the frame's border begins.
        constexpr int kFrame = 3;
        const int thickness = std::max((upright ? place.width() : place.height()) - kFrame, 0);
        switch (Self().TabPosition()) {
            case tpTop:
                place.setHeight(thickness);
                break;
            case tpBottom:
                place.setTop(height - thickness);
                break;
            case tpLeft:
                place.setWidth(thickness);
                break;
            case tpRight:
                place.setLeft(width - thickness);
                break;
        }
        bar_->SetTabSize(thickness, Self().TabWidth());
        bar_->setVisible(bar_->count() > 0);
        bar_->setGeometry(place);
    }

    void TabChosen(int tab) {
        if (updating_ > 0 || tab < 0) return;
        TTabSheet* chosen = nullptr;
        for (int i = 0; i < Self().PageCount() && !chosen; ++i)
            if (Self().Pages(i)->TabIndex() == tab) chosen = Self().Pages(i);
        if (!chosen) return;
        const Watch alive(*this);
        Guard(&Self(), [&] { Self().ProcessTabChange(chosen); });
        if (!alive) return;
        const Updating updating(*this);
        ApplySelection();  // a refused change goes back
    }

    TabBar* bar_ = nullptr;
};

class TabSheetPeer final : public PeerOf<TTabSheet> {
  public:
    using PeerOf::PeerOf;
    QString AccessibleName() const override { return WithoutMnemonic(Self().Caption()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Native<QWidget>(this, parent); }
};

}  // namespace page_detail

void RegisterPagePeers() {
    RegisterPeer(&TPageControl::StaticClass(), &NewPeer<page_detail::PageControlPeer>);
    RegisterPeer(&TTabSheet::StaticClass(), &NewPeer<page_detail::TabSheetPeer>);
}

}  // namespace vyn::qt
