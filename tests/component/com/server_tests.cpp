#include "platform/com/server.h"

#include <thread>

#include "component/com/com_fixture.h"

namespace quenta::tests {
namespace {

using platform::Server;

HRESULT CreateOn(Server& server) {
  ComPtr<IUnknown> general;
  return server.CreateGeneral(IID_IUnknown, general.ReceiveVoid());
}

// Runs the body on a thread of its own and gives its answer.
template <typename Body>
HRESULT OnThread(Body body) {
  HRESULT result = E_UNEXPECTED;
  std::thread([&] { result = body(); }).join();
  return result;
}

// Without an apartment of its own, so that each test says where it stands.
class ServerTest : public testing::Test {
 protected:
  World world;
  Server server{GetModuleHandleW(nullptr), ComposeOn(world)};
};

TEST_F(ServerTest, BelongsToTheFirstSingleThreadedApartment) {
  EXPECT_EQ(OnThread([&] { return CreateOn(server); }), CO_E_NOTINITIALIZED);
  EXPECT_EQ(OnThread([&] {
              const Apartment many(COINIT_MULTITHREADED);
              return CreateOn(server);
            }),
            RPC_E_WRONG_THREAD);
  EXPECT_EQ(world.compositions, 0) << "a refused creation builds nothing";

  const Apartment apartment;
  ComPtr<_General> general;
  ASSERT_EQ(server.CreateGeneral(__uuidof(_General), general.ReceiveVoid()), S_OK);
  EXPECT_EQ(world.compositions, 1);
  EXPECT_EQ(CreateOn(server), S_OK);
  EXPECT_EQ(world.compositions, 1) << "all objects share one component";
  EXPECT_EQ(OnThread([&] {
              const Apartment other;
              return CreateOn(server);
            }),
            RPC_E_WRONG_THREAD);
  EXPECT_EQ(OnThread([&] {
              const Apartment other;
              VARIANT_BOOL result = VARIANT_TRUE;
              BSTR text = nullptr;
              return general->Login(&text, &text, &result);
            }),
            RPC_E_WRONG_THREAD)
      << "a pointer carried over by hand";
}

TEST_F(ServerTest, EndsBeforeComDoesAndCanBeBuiltAgain) {
  for (int life = 1; life <= 3; ++life) {
    EXPECT_EQ(OnThread([&] {
                const Apartment outer;
                {
                  const Apartment inner;
                  EXPECT_EQ(CreateOn(server), S_OK);
                }
                EXPECT_EQ(world.ended, life - 1) << "COM goes on while any initialisation lasts";
                return S_OK;
              }),
              S_OK);
    EXPECT_EQ(world.ended, life);
    EXPECT_EQ(world.compositions, 0);
  }
}

TEST_F(ServerTest, ObjectsThatOutliveComFindNoSession) {
  OnThread([&] {
    ComPtr<_General> general;
    {
      const Apartment apartment;
      EXPECT_EQ(server.CreateGeneral(__uuidof(_General), general.ReceiveVoid()), S_OK);
    }
    EXPECT_EQ(world.ended, 1);
    VARIANT_BOOL result = VARIANT_TRUE;
    BSTR text = nullptr;
    EXPECT_EQ(general->Login(&text, &text, &result), RPC_E_WRONG_THREAD);
    EXPECT_EQ(result, VARIANT_FALSE);
    return S_OK;
  });
  EXPECT_EQ(world.compositions, 0);
}

TEST_F(ServerTest, StaysLoadedWhileAnythingIsInUse) {
  const Apartment apartment;
  EXPECT_EQ(server.CanUnload(), S_OK);
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(server.GetClassObject(__uuidof(::General), IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  EXPECT_EQ(server.CanUnload(), S_FALSE) << "a class object";
  factory->LockServer(TRUE);
  ComPtr<_General> general;
  ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(_General), general.ReceiveVoid()), S_OK);
  factory.Reset();
  EXPECT_EQ(server.CanUnload(), S_FALSE) << "an object and a lock";
  general.Reset();
  EXPECT_EQ(server.CanUnload(), S_FALSE) << "a lock";
  ASSERT_EQ(server.GetClassObject(__uuidof(::General), IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  factory->LockServer(FALSE);
  factory.Reset();

  world.busy = true;
  EXPECT_EQ(server.CanUnload(), S_FALSE) << "windows, timers, hooks, threads";
  world.busy = false;
  EXPECT_EQ(OnThread([&] { return server.CanUnload(); }), S_FALSE) << "only its own apartment can end the component";
  EXPECT_EQ(world.ended, 0);
  EXPECT_EQ(server.CanUnload(), S_OK);
  EXPECT_EQ(world.ended, 1) << "nothing that points into the library may be left behind";
  EXPECT_EQ(CreateOn(server), S_OK) << "and a host that keeps the library can go on";
}

TEST_F(ServerTest, CreationsThatComeInMeanwhileAreAnsweredAtOnce) {
  int attempts = 0;
  Server entered(GetModuleHandleW(nullptr), [&]() -> std::unique_ptr<platform::Composition> {
    if (++attempts == 1) {
      // As from a timer of the host's, if building the component let messages through.
      EXPECT_EQ(OnThread([&] {
                  const Apartment other;
                  return CreateOn(entered);
                }),
                RPC_E_WRONG_THREAD);
      EXPECT_EQ(entered.CanUnload(), S_FALSE);
      EXPECT_EQ(CreateOn(entered), S_OK);
      EXPECT_EQ(entered.CanUnload(), S_FALSE) << "the other creation is still on its way";
    }
    return std::make_unique<RecordingComposition>(world);
  });
  const Apartment apartment;
  EXPECT_EQ(CreateOn(entered), S_OK);
  EXPECT_EQ(world.compositions, 1) << "both share the component that was built first";
  world.while_ending = [&] { EXPECT_EQ(CreateOn(entered), CO_E_SERVER_STOPPING); };
  EXPECT_EQ(entered.CanUnload(), S_OK);
  EXPECT_EQ(world.ended, 1);
  EXPECT_EQ(world.compositions, 0);
  world.while_ending = nullptr;
  EXPECT_EQ(CreateOn(entered), S_OK) << "and afterwards as ever";
  EXPECT_EQ(entered.CanUnload(), S_OK);
}

TEST_F(ServerTest, AFailedCompositionLeavesTheServerUsable) {
  int attempts = 0;
  Server failing(GetModuleHandleW(nullptr), [&]() -> std::unique_ptr<platform::Composition> {
    if (++attempts == 1) throw base::Error(base::error_number::kInternal, "no windows");
    return std::make_unique<RecordingComposition>(world);
  });
  const Apartment apartment;
  EXPECT_EQ(CreateOn(failing), E_FAIL);
  EXPECT_EQ(failing.CanUnload(), S_OK);
  EXPECT_EQ(CreateOn(failing), S_OK);
  EXPECT_EQ(failing.CanUnload(), S_OK);
}

}  // namespace
}  // namespace quenta::tests
