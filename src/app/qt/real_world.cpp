#include "app/qt/real_world.h"

#include "app/linux/folders.h"
#include "log/log.h"
#include "platform/linux/display_environment.h"

namespace wegslot {

RealWorld::RealWorld(Scheduler& scheduler, const Clock& clock)
    : forgeries(clock),
      systemBus(dbus::systemBus(forgeries), pump, scheduler),
      sessionBus(dbus::sessionBus(forgeries, dbus::Bus::Files::allowed), pump, scheduler),
      bluetoothBus(dbus::systemBus(forgeries), pumpInBatches, scheduler,
                   dbus::Connection::Complaints::none),
      links(descriptors, scheduler),
      identities(secrets),
      identitiesFile(IdentitiesFile::pathUnder(folders::data()), secrets),
      central(bluetoothBus, scheduler, clock, links, identities),
      couplingRadio(
          dbus::systemBus(forgeries), pump, scheduler, links, [this] { return central.lend(); },
          coupling::PairableNote::pathUnder(folders::data())),
      session(systemBus),
      savers(sessionBus, scheduler),
      processes(descriptors),
      lockers(processes, scheduler, lockerPatterns({})),
      watcher(session, savers, lockers),
      mutterIdle(sessionBus),
      waylandIdle(displayEnvironment(), clock, scheduler, descriptors),
      x11Idle(displayEnvironment(), scheduler),
      pipeWireCameras(descriptors, scheduler),
      applicationNames(ApplicationNames::dataFolders(
          folders::home(), folders::variable("XDG_DATA_HOME"), folders::variable("XDG_DATA_DIRS"))),
      microphone(scheduler, applicationNames),
      activity({&mutterIdle, &waylandIdle, &x11Idle}, {&pipeWireCameras, &captureDevices},
               {&microphone}),
      logindLock(session),
      saverLock(savers),
      lockerLock(processes, lockers, LockCommand{}, displayKind(displayEnvironment())),
      lock({&logindLock, &saverLock, &lockerLock}, scheduler, watcher),
      platform{clock, scheduler, watcher, activity, lock} {}

void RealWorld::readIdentities() {
    const auto kept = identitiesFile.read();
    if (!kept) return Log::say(kept.failure().message);
    for (const KnownIdentity& known : *kept)
        identities.put(known);
}

} // namespace wegslot
