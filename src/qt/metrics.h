#pragma once

#include <memory>

#include "platform/controls/text_metrics.h"

namespace vyn::qt {

// The sizes that controls ask for, measured with the fonts in which their peers draw. The frame's own size is the
// window system's secret until a window is mapped; the platform's approximation stands for it.
std::unique_ptr<TextMetrics> NewTextMetrics();

}  // namespace vyn::qt
