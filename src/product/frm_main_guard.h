// The error convention of the product form's procedures; included by the files that hold them.
#pragma once

#include "component/session/guarded.h"
#include "product/frm_main.h"

namespace quenta::product {

inline constexpr session::Labels kFormLabels{"Programa de Contabilidade", "Quenta_Produtos", "frmMain",
                                             session::DescriptionStyle::kAlone};

// While one lives, the form fills its own fields and nothing counts as a change by the user.
class FillingMark {
 public:
  explicit FillingMark(bool& filling) noexcept : filling_(filling), before_(filling) { filling_ = true; }
  ~FillingMark() { filling_ = before_; }
  FillingMark(const FillingMark&) = delete;
  FillingMark& operator=(const FillingMark&) = delete;

 private:
  bool& filling_;
  bool before_;
};

template <typename Body, typename... Untold>
auto frmMain::Guarded(const char* procedure, Body&& body, Untold&&... untold) noexcept {
  const Operation operation(*this);
  return session::Guarded(session_.ports().error_reporting, kFormLabels, procedure, body, untold...);
}

}  // namespace quenta::product
