// The real world around the core: all adapters to radio, session and screen, connected to one
// another.
#pragma once

#include "app/qt/bus_pump.h"
#include "app/qt/qt_descriptors.h"
#include "base/clock.h"
#include "base/scheduler.h"
#include "coupling/bluez/bluez_coupling_radio.h"
#include "dbus/connection.h"
#include "dbus/forgeries.h"
#include "identity/identities.h"
#include "identity/linux/identities_file.h"
#include "identity/linux/locked_memory.h"
#include "monitor/monitor.h"
#include "platform/activity_sources.h"
#include "platform/linux/idle/mutter_idle.h"
#include "platform/linux/idle/wayland_idle.h"
#include "platform/linux/idle/x11_idle.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/login_session.h"
#include "platform/linux/logind_lock.h"
#include "platform/linux/media/application_names.h"
#include "platform/linux/media/capture_devices.h"
#include "platform/linux/media/pipewire_cameras.h"
#include "platform/linux/media/pulse_microphone.h"
#include "platform/linux/screen_lock_watcher.h"
#include "platform/linux/screen_savers.h"
#include "platform/lock_sequence.h"
#include "platform/locker_lock.h"
#include "scanner/bluez/bluez_central.h"
#include "scanner/bluez/hci_links.h"

namespace wegslot {

struct RealWorld {
    RealWorld(Scheduler& scheduler, const Clock& clock);

    /// Takes in the identities that are kept, for who only looks.
    void readIdentities();

    dbus::Forgeries forgeries;
    dbus::Connection systemBus;
    dbus::Connection sessionBus;   ///< with files: a recording goes into one that is sent
    dbus::Connection bluetoothBus; ///< the radio's own, for it may have to be left
    QtDescriptors descriptors;
    bluez::HciLinks links;
    LockedMemory secrets;
    Identities identities; ///< none until they are read
    IdentitiesFile identitiesFile;
    BluezCentral central;
    coupling::BluezCouplingRadio couplingRadio; ///< borrows the central's radio
    LoginSession session;
    ScreenSavers savers;
    LinuxProcesses processes;
    LockerWatch lockers;
    ScreenLockWatcher watcher;
    MutterIdle mutterIdle;
    WaylandIdle waylandIdle;
    X11Idle x11Idle;
    PipeWireCameras pipeWireCameras;
    CaptureDevices captureDevices;
    ApplicationNames applicationNames;
    PulseMicrophone microphone;
    ActivitySources activity;
    LogindLock logindLock;
    ScreenSaverLock saverLock;
    LockerLock lockerLock;
    LockSequence lock;
    Monitor::Platform platform;
};

} // namespace wegslot
