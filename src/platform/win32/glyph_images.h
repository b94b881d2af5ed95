// Glyphs as Windows takes them: image lists for toolbars and lists, and the icon of a form.
#pragma once

#include <string>
#include <vector>

#include "platform/win32/activation_context.h"
#include "platform/win32/handles.h"

namespace quenta::platform {

// An image list, given back through the library that made it.
class ImageList {
 public:
  ImageList() = default;
  // One image for each key, of this size in the middle of a cell of that one, in the system's colours of the moment;
  // disabled ones in the colour of grey text.
  ImageList(const CommonControls& controls, const std::vector<std::string>& keys, SIZE cell, int size,
            bool disabled = false);
  ~ImageList();
  ImageList(ImageList&& other) noexcept;
  ImageList& operator=(ImageList&& other) noexcept;
  HIMAGELIST get() const noexcept { return list_; }

 private:
  const CommonControls* controls_ = nullptr;
  HIMAGELIST list_ = nullptr;
};

OwnedIcon GlyphIcon(const std::string& key, int size);

}  // namespace quenta::platform
