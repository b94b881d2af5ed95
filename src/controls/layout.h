// How a form is laid out, as data: the window side turns rows and columns into places on the screen.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "controls/commands.h"
#include "controls/simple_controls.h"

namespace quenta::controls {

// One control in a row, with the label above it that carries its caption and mnemonic (null for none).
struct Cell {
  Control* control = nullptr;  // null leaves the columns blank
  Label* label = nullptr;
  int columns = 1;  // of the row's twelve
};

// A row of twelve columns of equal width. Tab order is the order of rows and cells.
struct LayoutRow {
  std::vector<Cell> cells;
  int lines = 1;       // height in lines of text
  bool grows = false;  // takes what the window has in height beyond its minimum
};

// A group of rows, shown and hidden as one; a page of the tabs when the form's layout names it as one.
class Frame final : public Control {
 public:
  // A caption draws a border around the group.
  explicit Frame(std::string name, std::string caption = {}) : Control(std::move(name)), caption_(std::move(caption)) {}

  ControlKind kind() const noexcept override { return ControlKind::kFrame; }
  std::string Describe() const override { return caption_; }
  const std::string& caption() const noexcept { return caption_; }

  Toolbar* toolbar = nullptr;  // above the rows; null for none
  std::vector<LayoutRow> rows;

 private:
  std::string caption_;
};

// From top to bottom: menu bar, toolbar, note, frames, tabs with their pages, a row of command buttons.
struct Layout {
  Toolbar* toolbar = nullptr;
  Label* note = nullptr;  // one line under the toolbar
  std::vector<Frame*> frames;
  TabStrip* tabs = nullptr;
  std::map<std::string, Frame*> pages;  // by tab key; tabs may share a page
  std::vector<CommandButton*> buttons;
  int minimum_width = 640;  // of the window, in 1/96 inch
  int minimum_height = 400;
  int initial_width = 900;
  int initial_height = 640;
  bool resizable = true;
};

}  // namespace quenta::controls
