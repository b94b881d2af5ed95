#include "platform/com/server.h"

#include <new>

#include <objidl.h>

#include "platform/com/class_factory.h"
#include "platform/com/general_object.h"
#include "platform/com/initialize_spy.h"
#include "platform/com/quenta_produtos.h"

namespace quenta::platform {
namespace {

HRESULT RequireSingleThreadedApartment() noexcept {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  const HRESULT result = CoGetApartmentType(&type, &qualifier);
  if (FAILED(result)) return result;
  return type == APTTYPE_STA || type == APTTYPE_MAINSTA ? S_OK : RPC_E_WRONG_THREAD;
}

}  // namespace

Server::Server(HMODULE module, Compose compose) : module_(module), compose_(std::move(compose)) {}

Server::~Server() {
  End();
}

HRESULT Server::GetClassObject(REFCLSID class_id, REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(class_id, __uuidof(::General))) return CLASS_E_CLASSNOTAVAILABLE;
  const auto factory = ComPtr<IClassFactory>::Adopt(new (std::nothrow) ClassFactory(*this));
  return factory ? factory->QueryInterface(iid, object) : E_OUTOFMEMORY;
}

HRESULT Server::CanUnload() noexcept {
  if (uses_ > 0) return S_FALSE;
  if (owner_ == 0) return S_OK;
  // Without a composition one is being built, or ends.
  if (!OnOwningThread() || claims_ > 0 || !composition_ || composition_->Busy()) return S_FALSE;
  End();
  return S_OK;
}

HRESULT Server::ComposeAndWatch() noexcept {
  std::shared_ptr<Composition> composition;
  try {
    composition = compose_();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
  // A creation that came from a message meanwhile was first: all objects share its component.
  if (composition_) return S_OK;
  auto spy = ComPtr<IInitializeSpy>::Adopt(new (std::nothrow) InitializeSpy(*this));
  const HRESULT watched = spy ? CoRegisterInitializeSpy(spy.Get(), &spy_cookie_) : E_OUTOFMEMORY;
  if (FAILED(watched)) return watched;
  spy_ = spy.As<IUnknown>();
  composition_ = std::move(composition);
  return S_OK;
}

HRESULT Server::Claim() noexcept {
  const HRESULT apartment = RequireSingleThreadedApartment();
  if (FAILED(apartment)) return apartment;
  DWORD nobody = 0;
  if (!owner_.compare_exchange_strong(nobody, GetCurrentThreadId()) && !OnOwningThread()) return RPC_E_WRONG_THREAD;
  if (ending_) return CO_E_SERVER_STOPPING;
  if (composition_) return S_OK;
  ++claims_;
  const HRESULT composed = ComposeAndWatch();
  if (--claims_ == 0 && !composition_) owner_ = 0;
  return composition_ ? S_OK : composed;
}

HRESULT Server::CreateGeneral(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  const HRESULT claimed = Claim();
  if (FAILED(claimed)) return claimed;
  try {
    return ComPtr<_General>::Adopt(new GeneralObject(*this, composition_))->QueryInterface(iid, object);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

void Server::End() noexcept {
  if (!OnOwningThread()) return;
  // Held to the end: closing the windows may release the last objects, and their end may lead here again.
  const std::shared_ptr<Composition> ending = std::move(composition_);
  if (!ending) return;
  ending_ = true;
  ending->End();
  // Must go before COM does: a spy left behind is called through memory that the library no longer owns.
  CoRevokeInitializeSpy(spy_cookie_);
  spy_.Reset();
  ending_ = false;
  if (claims_ == 0) owner_ = 0;
}

}  // namespace quenta::platform
