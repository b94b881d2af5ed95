// Turns a form's layout, which is data, into places in pixels. Plain arithmetic: no window, no system call.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "controls/layout.h"

namespace quenta::platform {

struct Rect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  int right() const noexcept { return left + width; }
  int bottom() const noexcept { return top + height; }
  bool operator==(const Rect&) const = default;
};

// Sizes in pixels that follow from the font and the resolution.
struct Metrics {
  int line = 15;          // height of a line of text
  int field = 23;         // height of a one-line control
  int button = 25;        // height of a command button
  int button_width = 80;  // at least
  int margin = 12;        // around the contents of a form
  int column_gap = 10;    // between the controls of a row
  int row_gap = 8;
  int label_gap = 3;       // between a label and its field
  int toolbar = 38;        // the form's main toolbar
  int frame_toolbar = 30;  // a toolbar inside a frame
  int tab_strip = 26;
  std::function<int(const std::string& caption)> text_width;  // of a caption without its mnemonic mark
};

// Where a control goes, measured from the corner of what it stands in: its frame, or else the form.
struct PlacedControl {
  const controls::Control* control = nullptr;
  Rect place;
};

struct PlacedFrame {
  const controls::Frame* frame = nullptr;
  Rect place;  // in the form
  std::vector<PlacedControl> controls;
};

struct Arrangement {
  std::vector<PlacedControl> controls;  // those that stand in no frame
  std::vector<PlacedFrame> frames;      // pages too, each as if it were the one shown
};

// The smallest client area that shows everything.
struct Extent {
  int width = 0;
  int height = 0;
};
Extent MinimumExtent(const controls::Layout& layout, const Metrics& metrics);

// Fills a client area of this size. Rows that grow take the height that is left over; when there is too little height
// they shrink to three lines, and what still has no room is cut at the bottom. A note without
// text, and a frame that is not visible (unless it is a page), take no room.
Arrangement Arrange(const controls::Layout& layout, const Metrics& metrics, int width, int height);

// Moves (and if need be shrinks) a rectangle so that all of it lies inside another.
Rect MovedInside(Rect rect, const Rect& area) noexcept;

}  // namespace quenta::platform
