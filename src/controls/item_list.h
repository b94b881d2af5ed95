// Entries with a text and a number each (the item data), as whatever fills a list sees them: a combo box, a list box.
#pragma once

#include <cstdint>
#include <string>

namespace quenta::controls {

class ItemList {
 public:
  virtual ~ItemList() = default;
  virtual void Clear() = 0;
  virtual void AddItem(std::string text) = 0;
  virtual int NewIndex() const noexcept = 0;  // of the entry added last, from 0
  virtual void SetItemData(int index, std::int32_t data) = 0;

  // While one lives, changes of entries are gathered and shown as one at its end.
  class Update {
   public:
    explicit Update(ItemList& list) noexcept : list_(list) { list_.BeginUpdate(); }
    ~Update() { list_.EndUpdate(); }
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

   private:
    ItemList& list_;
  };

 protected:
  virtual void BeginUpdate() noexcept {}
  virtual void EndUpdate() noexcept {}
};

}  // namespace quenta::controls
