#include "support/fake_module.h"

#include "mox/core/registry.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/frame/class_table.h"
#include "zyn/frame/plugin_containers.h"

namespace fake_module {

namespace {

std::atomic<int> live = 0;
std::atomic<int> made = 0;

class Counted : public FakeObject {
 public:
  Counted() {
    ++live;
    ++made;
  }
  ~Counted() override { --live; }
  Counted(Counted const&) = delete;
  Counted& operator=(Counted const&) = delete;

  std::string name() const override { return "moxFake"; }
  std::shared_ptr<FakeObject> self() override { return {}; }
};

class InternalObject final : public Counted {};
class StaticObject final : public Counted {};
class CoreStaticObject final : public Counted {};
class SessionObject final : public Counted {};

class SelfKnowing final : public Counted, public std::enable_shared_from_this<SelfKnowing> {
 public:
  std::shared_ptr<FakeObject> self() override { return shared_from_this(); }
};

template <class Container>
void enter(moxPluginRegistry& registry, char const* registeredName) {
  registry.registerClass(std::make_unique<Container>(registeredName));
}

int registerClasses(moxPluginRegistry* registry) {
  registry->setLibraryName(kLibraryName);
  enter<moxInternalPluginContainer<InternalObject>>(*registry, kInternal);
  enter<moxInternalStaticPluginContainer<StaticObject>>(*registry, kInternalStatic);
  enter<moxCorePluginContainer<SelfKnowing>>(*registry, kCore);
  enter<moxCoreStaticPluginContainer<CoreStaticObject>>(*registry, kCoreStatic);
  enter<moxCoreStaticSessionPluginContainer<SessionObject>>(*registry, kCoreStaticSession);
  return 1;
}

}  // namespace

int liveObjects() {
  return live;
}

int madeObjects() {
  return made;
}

// The globals are those of the linked module: its containers read them.
moxModuleEntryPoints entryPoints() {
  return {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
          [](VELMORApplication* application, moxSessionService* session) {
            moxPlugIn_EntryPoint(application, session);
          },
          registerClasses};
}

}  // namespace fake_module
