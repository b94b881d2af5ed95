// Labels, date pickers and progress bars.
#include "base/date.h"
#include "controls/simple_controls.h"
#include "platform/win32/control_window.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;

// A label is made before the field that it belongs to: that is how Windows and assistive tools find the field's name
// and mnemonic. (For edits this is confirmed; for combo boxes and lists only Windows itself can show it.)
class LabelWindow final : public ControlWindow {
 public:
  LabelWindow(ControlOwner& owner, controls::Label& label) : ControlWindow(owner, label), label_(label) {}

  void Create(HWND parent) override {
    // Where it names no field it shows data, in which "&" is a letter like any other.
    const DWORD prefix = owner().LeadsToField(label_) ? 0 : SS_NOPREFIX;
    CreateControl(parent, WC_STATICW, label_.caption(), SS_LEFTNOWORDWRAP | SS_ENDELLIPSIS | prefix);
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect == Aspect::kCaption) SetWindowTextW(window(), Wide(label_.caption()).c_str());
  }

 private:
  controls::Label& label_;
};

class DateWindow final : public ControlWindow {
 public:
  DateWindow(ControlOwner& owner, controls::DatePicker& picker) : ControlWindow(owner, picker), picker_(picker) {}

  void Create(HWND parent) override {
    CreateControl(parent, DATETIMEPICK_CLASSW, {}, DTS_SHORTDATECENTURYFORMAT);
    ModelChanged(Aspect::kValue);
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect != Aspect::kValue) return;
    const Silence silence(*this);
    const base::CalendarTime time = base::ToCalendar(picker_.value());
    SYSTEMTIME day{};
    day.wYear = static_cast<WORD>(time.year);
    day.wMonth = static_cast<WORD>(time.month);
    day.wDay = static_cast<WORD>(time.day);
    Send(DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&day));
  }

  std::optional<LRESULT> OnNotify(NMHDR& notification) noexcept override {
    if (notification.code != DTN_DATETIMECHANGE) return std::nullopt;
    if (!silent()) {
      const auto& change = reinterpret_cast<const NMDATETIMECHANGE&>(notification);
      owner().Event([&] {
        const base::CalendarTime before = base::ToCalendar(picker_.value());
        const base::CalendarTime day{change.st.wYear, change.st.wMonth, change.st.wDay, 0, 0, 0};
        // The control repeats itself; a time of day that the model holds is no reason to report the day again.
        if (day.year == before.year && day.month == before.month && day.day == before.day) return;
        if (const auto date = base::MakeDate(day)) picker_.Picked(*date);
      });
    }
    return 0;
  }

 private:
  controls::DatePicker& picker_;
};

class ProgressWindow final : public ControlWindow {
 public:
  ProgressWindow(ControlOwner& owner, controls::ProgressBar& bar) : ControlWindow(owner, bar), bar_(bar) {}

  void Create(HWND parent) override {
    CreateControl(parent, PROGRESS_CLASSW, {}, PBS_SMOOTH);
    ModelChanged(Aspect::kValue);
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect != Aspect::kValue) return;
    Send(PBM_SETRANGE32, 0, bar_.maximum());
    Send(PBM_SETPOS, static_cast<WPARAM>(bar_.value()));
  }

 private:
  controls::ProgressBar& bar_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeProgressWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<ProgressWindow>(owner, static_cast<controls::ProgressBar&>(model));
}

std::unique_ptr<ControlWindow> MakeLabelWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<LabelWindow>(owner, static_cast<controls::Label&>(model));
}

std::unique_ptr<ControlWindow> MakeDateWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<DateWindow>(owner, static_cast<controls::DatePicker&>(model));
}

}  // namespace quenta::platform
