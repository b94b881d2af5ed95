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
  if (!OnOwningThread() || composition_->Busy()) return S_FALSE;
  End();
  return S_OK;
}

HRESULT Server::Claim() noexcept {
  const HRESULT apartment = RequireSingleThreadedApartment();
  if (FAILED(apartment)) return apartment;
  const std::lock_guard lock(claim_);
  if (owner_ != 0) return OnOwningThread() ? S_OK : RPC_E_WRONG_THREAD;
  try {
    composition_ = compose_();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
  auto spy = ComPtr<IInitializeSpy>::Adopt(new (std::nothrow) InitializeSpy(*this));
  const HRESULT watched = spy ? CoRegisterInitializeSpy(spy.Get(), &spy_cookie_) : E_OUTOFMEMORY;
  if (FAILED(watched)) {
    composition_.reset();
    return watched;
  }
  spy_ = spy.As<IUnknown>();
  owner_ = GetCurrentThreadId();
  return S_OK;
}

HRESULT Server::CreateGeneral(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  const HRESULT claimed = Claim();
  if (FAILED(claimed)) return claimed;
  const auto general = ComPtr<_General>::Adopt(new (std::nothrow) GeneralObject(*this, composition_));
  return general ? general->QueryInterface(iid, object) : E_OUTOFMEMORY;
}

void Server::End() noexcept {
  if (!OnOwningThread()) return;
  // Held to the end: closing the windows may release the last objects, and their end may lead here again.
  const std::shared_ptr<Composition> ending = std::move(composition_);
  if (!ending) return;
  ending->End();
  // Must go before COM does: a spy left behind is called through memory that the library no longer owns.
  CoRevokeInitializeSpy(spy_cookie_);
  spy_.Reset();
  owner_ = 0;
}

}  // namespace quenta::platform
