#include "platform/win32/layout_engine.h"

#include <algorithm>
#include <set>

#include "controls/list_view.h"
#include "controls/text_field.h"

namespace quenta::platform {
namespace {

using controls::Cell;
using controls::ControlKind;
using controls::Frame;
using controls::Layout;
using controls::LayoutRow;

constexpr int kColumns = 12;
constexpr int kSmallestGrowingRow = 3;  // lines

bool FillsRow(const controls::Control& control) {
  if (control.kind() == ControlKind::kListView) return true;
  return control.kind() == ControlKind::kTextField && static_cast<const controls::TextField&>(control).multi_line;
}

bool HasLabels(const LayoutRow& row) {
  return std::any_of(row.cells.begin(), row.cells.end(), [](const Cell& cell) { return cell.label != nullptr; });
}

int LabelHeight(const LayoutRow& row, const Metrics& metrics) {
  return HasLabels(row) ? metrics.line + metrics.label_gap : 0;
}

// Height of a row's controls without its labels.
int ControlHeight(const LayoutRow& row, const Metrics& metrics, int lines) {
  const bool list = std::any_of(row.cells.begin(), row.cells.end(), [](const Cell& cell) {
    return cell.control != nullptr && cell.control->kind() == ControlKind::kListView;
  });
  const int frame = metrics.field - metrics.line;
  // A list has a header, and more air between its lines than a text has.
  if (list) return (lines + 1) * (metrics.line + frame / 2) + frame;
  return lines * metrics.line + frame;
}

int RowHeight(const LayoutRow& row, const Metrics& metrics) {
  return LabelHeight(row, metrics) + ControlHeight(row, metrics, row.lines);
}

int ShrinkableBy(const LayoutRow& row, const Metrics& metrics) {
  const int least = std::min(row.lines, kSmallestGrowingRow);
  return ControlHeight(row, metrics, row.lines) - ControlHeight(row, metrics, least);
}

int GrowingRows(const Frame& frame) {
  return static_cast<int>(
      std::count_if(frame.rows.begin(), frame.rows.end(), [](const LayoutRow& row) { return row.grows; }));
}

// Distances from a frame's edges to its rows.
struct Insets {
  int side = 0;
  int top = 0;
  int bottom = 0;
};

Insets InsetsOf(const Frame& frame, bool page, const Metrics& metrics) {
  Insets insets;
  if (page) insets = {metrics.margin, metrics.margin, metrics.margin};
  if (!frame.caption().empty()) {
    insets.side += metrics.margin;
    insets.top += metrics.line + metrics.row_gap;
    insets.bottom += metrics.margin;
  }
  return insets;
}

int ToolbarRoom(const Frame& frame, const Metrics& metrics) {
  return frame.toolbar != nullptr ? metrics.frame_toolbar + metrics.row_gap / 2 : 0;
}

int NaturalHeight(const Frame& frame, bool page, const Metrics& metrics) {
  const Insets insets = InsetsOf(frame, page, metrics);
  int height = insets.top + insets.bottom + ToolbarRoom(frame, metrics);
  for (const LayoutRow& row : frame.rows) height += RowHeight(row, metrics) + metrics.row_gap;
  if (!frame.rows.empty()) height -= metrics.row_gap;
  return height;
}

std::set<const Frame*> Pages(const Layout& layout) {
  std::set<const Frame*> pages;
  for (const auto& [key, frame] : layout.pages) pages.insert(frame);
  return pages;
}

class FrameArranger {
 public:
  FrameArranger(const Frame& frame, bool page, const Metrics& metrics, const Rect& place)
      : frame_(frame), metrics_(metrics), insets_(InsetsOf(frame, page, metrics)) {
    result_.frame = &frame;
    result_.place = place;
    extra_ = place.height - NaturalHeight(frame, page, metrics);
  }

  PlacedFrame Run() {
    int top = insets_.top;
    const int inner = result_.place.width - 2 * insets_.side;
    if (frame_.toolbar != nullptr) {
      result_.controls.push_back({frame_.toolbar, {insets_.side, top, inner, metrics_.frame_toolbar}});
      top += ToolbarRoom(frame_, metrics_);
    }
    int growing = GrowingRows(frame_);
    for (const LayoutRow& row : frame_.rows) {
      int controls = ControlHeight(row, metrics_, row.lines);
      if (row.grows) {
        const int share = std::max(extra_ / growing--, -ShrinkableBy(row, metrics_));
        extra_ -= share;
        controls += share;
      }
      ArrangeRow(row, top, inner, controls);
      top += LabelHeight(row, metrics_) + controls + metrics_.row_gap;
    }
    return std::move(result_);
  }

 private:
  void ArrangeRow(const LayoutRow& row, int top, int inner, int controls) {
    const int controls_top = top + LabelHeight(row, metrics_);
    int column = 0;
    for (const Cell& cell : row.cells) {
      const int left = ColumnEdge(column, inner);
      column = std::min(column + cell.columns, kColumns);
      const int width = ColumnEdge(column, inner) - metrics_.column_gap - left;
      if (cell.label != nullptr) result_.controls.push_back({cell.label, {left, top, width, metrics_.line}});
      if (cell.control == nullptr) continue;
      const int height = FillsRow(*cell.control) ? controls : metrics_.field;
      result_.controls.push_back({cell.control, {left, controls_top, width, height}});
    }
  }

  // Left edge of a column; the edge behind the last one is a gap beyond the frame's inside.
  int ColumnEdge(int column, int inner) const {
    return insets_.side + column * (inner + metrics_.column_gap) / kColumns;
  }

  const Frame& frame_;
  const Metrics& metrics_;
  Insets insets_;
  int extra_ = 0;
  PlacedFrame result_;
};

int ButtonWidth(const controls::CommandButton& button, const Metrics& metrics) {
  return std::max(metrics.button_width, metrics.text_width(button.caption()) + 2 * metrics.margin);
}

int PagesHeight(const Layout& layout, const Metrics& metrics) {
  int height = 0;
  for (const Frame* page : Pages(layout)) height = std::max(height, NaturalHeight(*page, true, metrics));
  return height;
}

// What stands below the toolbar, from top to bottom, with the heights it has before anything grows.
class FormArranger {
 public:
  FormArranger(const Layout& layout, const Metrics& metrics) : layout_(layout), metrics_(metrics) {
    for (const Frame* frame : layout.frames) {
      if (frame->visible()) frames_.push_back(frame);
    }
  }

  int NaturalHeightOfForm() const {
    int height = layout_.toolbar != nullptr ? metrics_.toolbar + metrics_.row_gap : metrics_.margin;
    const auto add = [&](int part) { height += part + metrics_.margin; };
    if (HasNote()) add(metrics_.line);
    for (const Frame* frame : frames_) add(NaturalHeight(*frame, false, metrics_));
    if (layout_.tabs != nullptr) add(metrics_.tab_strip + PagesHeight(layout_, metrics_));
    if (!layout_.buttons.empty()) add(metrics_.button);
    return height;
  }

  Arrangement Run(int width, int height) {
    const int inner = width - 2 * metrics_.margin;
    int extra = height - NaturalHeightOfForm();
    int top = metrics_.margin;
    if (layout_.toolbar != nullptr) {
      result_.controls.push_back(
          {layout_.toolbar, {metrics_.margin / 2, 0, width - metrics_.margin, metrics_.toolbar}});
      top = metrics_.toolbar + metrics_.row_gap;
    }
    if (HasNote()) {
      result_.controls.push_back({layout_.note, {metrics_.margin, top, inner, metrics_.line}});
      top += metrics_.line + metrics_.margin;
    }
    int growing = layout_.tabs != nullptr ? 0 : FramesThatGrow();
    for (const Frame* frame : frames_) {
      int frame_height = NaturalHeight(*frame, false, metrics_);
      if (growing > 0 && GrowingRows(*frame) > 0) {
        const int share = extra / growing--;
        extra -= share;
        frame_height += share;
      }
      const Rect place{metrics_.margin, top, inner, frame_height};
      result_.frames.push_back(FrameArranger(*frame, false, metrics_, place).Run());
      top += frame_height + metrics_.margin;
    }
    if (layout_.tabs != nullptr) top = ArrangeTabs(top, inner, extra);
    ArrangeButtons(top, width);
    return std::move(result_);
  }

 private:
  bool HasNote() const {
    return layout_.note != nullptr && layout_.note->visible() && !layout_.note->caption().empty();
  }

  int FramesThatGrow() const {
    return static_cast<int>(
        std::count_if(frames_.begin(), frames_.end(), [](const Frame* frame) { return GrowingRows(*frame) > 0; }));
  }

  int ArrangeTabs(int top, int inner, int extra) {
    result_.controls.push_back({layout_.tabs, {metrics_.margin, top, inner, metrics_.tab_strip}});
    const int height = std::max(0, PagesHeight(layout_, metrics_) + extra);
    const Rect place{metrics_.margin, top + metrics_.tab_strip, inner, height};
    for (const Frame* page : Pages(layout_)) {
      result_.frames.push_back(FrameArranger(*page, true, metrics_, place).Run());
    }
    return place.bottom() + metrics_.margin;
  }

  // To the right, in reading order.
  void ArrangeButtons(int top, int width) {
    int left = width - metrics_.margin;
    for (const auto* button : layout_.buttons) left -= ButtonWidth(*button, metrics_) + metrics_.row_gap;
    for (const auto* button : layout_.buttons) {
      left += metrics_.row_gap;
      result_.controls.push_back({button, {left, top, ButtonWidth(*button, metrics_), metrics_.button}});
      left += ButtonWidth(*button, metrics_);
    }
  }

  const Layout& layout_;
  const Metrics& metrics_;
  std::vector<const Frame*> frames_;
  Arrangement result_;
};

}  // namespace

Extent MinimumExtent(const Layout& layout, const Metrics& metrics) {
  int buttons = 2 * metrics.margin;
  for (const auto* button : layout.buttons) buttons += ButtonWidth(*button, metrics) + metrics.row_gap;
  return {buttons, FormArranger(layout, metrics).NaturalHeightOfForm()};
}

Arrangement Arrange(const Layout& layout, const Metrics& metrics, int width, int height) {
  return FormArranger(layout, metrics).Run(width, height);
}

Rect MovedInside(Rect rect, const Rect& area) noexcept {
  rect.width = std::min(rect.width, area.width);
  rect.height = std::min(rect.height, area.height);
  rect.left = std::clamp(rect.left, area.left, area.right() - rect.width);
  rect.top = std::clamp(rect.top, area.top, area.bottom() - rect.height);
  return rect;
}

}  // namespace quenta::platform
