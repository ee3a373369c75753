#pragma once

#include <QFontMetrics>
#include <QPainter>
#include <QPalette>
#include <QStyle>

#include "qt/painted.h"

namespace vyn::qt {

// The peer of a control that is simple to look at (a label, a line, a picture, a button at rest) and that costs no
// widget while it only has to be seen: its parent's peer draws it. It becomes a widget, for good, when one is needed:
// the mouse or the keyboard comes to it, assistive technology listens, somebody asks for the native handle, it gets
// colours or a cursor of its own, a control inside, or a place above a control that is a widget. Main thread only.
class LightPeer : public WidgetPeer {
  public:
    using WidgetPeer::WidgetPeer;
    ~LightPeer() override;

    void Create() override;
    void Changed(PeerChange what) override;
    void* NativeHandle() override;
    void BecomeWidget() override;
    void PaintLight(QPainter& painter, const QWidget& host) override;
    // For the widget, once there is one.
    void Paint(QPainter& painter);

  protected:
    // What drawing needs to know; places are relative to the control.
    struct Surface {
        QPainter& painter;
        QRect rect;
        const QWidget& widget;  // that is painted: the control's own or its parent's
        const QStyle& style;
        const QPalette& palette;
        bool enabled;
    };
    virtual void PaintOn(const Surface& surface) = 0;
    // Whether what is drawn stays inside the control's bounds by itself. Bounding it costs more than a short text does.
    virtual bool StaysInside(const QFontMetrics& metrics) const { return false; }
    // At least the width of a line of text, found without shaping it, which would cost as much as drawing it.
    static int WidthOf(const QFontMetrics& metrics, const QString& text);
    // Takes over from the control what is drawn.
    virtual void TakeState() {}
    QWidget* MakeWidget(QWidget* parent) override;
    void ApplyText() override;

  private:
    QWidget* Host() const;
    bool CanBeLight() const;
    void Repaint();

    QRect shown_;  // where the parent draws it
};

// The same with its control's class.
template <class C>
class LightPeerOf : public LightPeer {
  public:
    using LightPeer::LightPeer;

  protected:
    C& Self() const { return static_cast<C&>(Control()); }
};

}  // namespace vyn::qt
