// Completes what the user types into a box from the entries of its list.
#pragma once

#include "controls/combo_box.h"

namespace quenta::controls {

// Called with a UTF-16 unit that is about to be typed. At the end of the text, or in place of a selection that reaches
// to it, the list opens; the first entry that begins with the new text, without regard to case, replaces it with all
// that the user has not typed selected. Without such an entry the new text stands alone. The key is then consumed: it
// becomes 0. Elsewhere in the text, for control characters, and where the box has no room left, key and box stay as
// they are.
void AutoCompletarCombo(ComboBox& box, int& key);

}  // namespace quenta::controls
